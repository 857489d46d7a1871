#include "records/decodeerror.h"

namespace orvel::json {

DecodeError::DecodeError(std::string message, Place place)
    : std::runtime_error(std::move(message)), place_(place)
{}

DecodeError DecodeError::notJson(std::string_view what, std::ptrdiff_t offset)
{
    return DecodeError("not JSON: " + std::string(what) + " at offset " + std::to_string(offset),
                       Place::Text);
}

DecodeError DecodeError::within(std::string_view segment) const
{
    if (place_ == Place::Text)
        return *this;
    std::string message(segment);
    const std::string_view inner = what();
    if (place_ == Place::Unknown)
        message += ": ";
    else if (!inner.starts_with('['))
        message += '.';
    message += inner;
    return DecodeError(std::move(message), Place::Located);
}

} // namespace orvel::json
