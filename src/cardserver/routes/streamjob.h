#pragma once
#include <functional>

namespace cardserver {

class Call;
class EventStream;
struct Services;

// An event stream that runs on one of the signed-in account's stream slots: an account that
// already runs as many as it may is answered 429 before anything starts.
class StreamJob {
public:
    static void start(Call &call, Services &s, std::function<void(EventStream &)> job);
};

} // namespace cardserver
