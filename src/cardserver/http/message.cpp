#include "http/message.h"

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

void HttpResponse::setHeader(const std::string &name, std::string value)
{
    for (auto &header : headers)
        if (strcasecmp(header.first.c_str(), name.c_str()) == 0) {
            header.second = std::move(value);
            return;
        }
    headers.emplace_back(name, std::move(value));
}

bool HttpResponse::hasHeader(const char *name) const
{
    for (const auto &header : headers)
        if (strcasecmp(header.first.c_str(), name) == 0)
            return true;
    return false;
}

} // namespace cardserver
