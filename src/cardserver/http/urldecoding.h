#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cardserver {

// Reading a request target: percent-decoding, and a query (or form) into its pairs.
class UrlDecoding {
public:
    // %XX sequences decoded (malformed ones kept as they are); '+' read as a space when asked.
    static std::string decoded(std::string_view s, bool plusIsSpace);
    // "a=1&b=x+y&a=2" appended as (a,1) (b,"x y") (a,2); empty keys skipped.
    static void parseQuery(std::string_view query,
                           std::vector<std::pair<std::string, std::string>> &out);
};

} // namespace cardserver
