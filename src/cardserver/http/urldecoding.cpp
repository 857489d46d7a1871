#include "http/urldecoding.h"

namespace cardserver {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

std::string UrlDecoding::decoded(std::string_view s, bool plusIsSpace)
{
    std::string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (c == '%' && i + 2 < s.size()) {
            const int hi = hexDigit(s[i + 1]), lo = hexDigit(s[i + 2]);
            if (hi >= 0 && lo >= 0) {
                out += char(hi * 16 + lo);
                i += 2;
                continue;
            }
        }
        out += (plusIsSpace && c == '+') ? ' ' : c;
    }
    return out;
}

void UrlDecoding::parseQuery(std::string_view query,
                             std::vector<std::pair<std::string, std::string>> &out)
{
    while (!query.empty()) {
        const size_t amp = query.find('&');
        const std::string_view item = query.substr(0, amp);
        query = amp == std::string_view::npos ? std::string_view() : query.substr(amp + 1);
        if (item.empty())
            continue;
        const size_t eq = item.find('=');
        const std::string_view key = item.substr(0, eq);
        if (key.empty())
            continue;
        const std::string_view value =
            eq == std::string_view::npos ? std::string_view() : item.substr(eq + 1);
        out.emplace_back(decoded(key, true), decoded(value, true));
    }
}

} // namespace cardserver
