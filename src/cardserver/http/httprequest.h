#pragma once
#include <string>
#include <utility>
#include <vector>

namespace cardserver {

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

} // namespace cardserver
