#include "http/httprequest.h"

#include <strings.h>

namespace cardserver {

const std::string *HttpRequest::header(const char *name, size_t n) const
{
    for (const auto &[key, value] : headers)
        if (strcasecmp(key.c_str(), name) == 0 && n-- == 0)
            return &value;
    return nullptr;
}

size_t HttpRequest::headerCount(const char *name) const
{
    size_t count = 0;
    for (const auto &header : headers)
        if (strcasecmp(header.first.c_str(), name) == 0)
            ++count;
    return count;
}

const std::string *HttpRequest::param(const char *name) const
{
    for (const auto &[key, value] : params)
        if (key == name)
            return &value;
    return nullptr;
}

} // namespace cardserver
