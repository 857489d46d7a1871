#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cardserver {

class EventStream;

// A request as the HTTP layer read it: what routes see through Call. Header names keep the
// client's spelling and are looked up without regard to case.
struct HttpRequest {
    std::string method;
    std::string target; // as sent: path and query
    std::string path;   // percent-decoded, without the query
    std::vector<std::pair<std::string, std::string>> headers;
    // The query's key/value pairs in order (percent-decoded, '+' read as a space); a key may
    // come more than once.
    std::vector<std::pair<std::string, std::string>> params;
    // The groups the route's pattern captured, [0] being the whole path.
    std::vector<std::string> matches;
    std::string body;
    std::string remoteAddr;

    // The n-th value of a header (0-based), or nullptr.
    const std::string *header(const char *name, size_t n = 0) const;
    size_t headerCount(const char *name) const;
    const std::string *param(const char *name) const;
};

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
