#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cardserver {

class EventStream;

// The reply a route fills in. A status of 0 means "not set" (200 once a route ran).
struct HttpResponse {
    int status = 0;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    std::string contentType;
    // Set by EventStream::start: the reply is a chunked event stream written by this job.
    std::function<void(EventStream &)> streamJob;

    void addHeader(std::string name, std::string value)
    {
        headers.emplace_back(std::move(name), std::move(value));
    }
    void setHeader(const std::string &name, std::string value);
    bool hasHeader(const char *name) const;
};

} // namespace cardserver
