#include "http/httpresponse.h"

#include <strings.h>

namespace cardserver {

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
