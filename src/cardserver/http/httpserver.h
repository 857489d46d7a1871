#pragma once
#include <httplib.h>

namespace cardserver {

// cpp-httplib's server with a deeper accept queue: the library listens with a backlog of 5,
// which drops connection attempts when a few hundred learners connect at once.
class HttpServer : public httplib::Server {
public:
    // Call after binding.
    bool widenBacklog(int backlog);
};

} // namespace cardserver
