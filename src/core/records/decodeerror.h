#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvel::json {

// A JSON value that does not fit the record asked for: bad JSON, a missing required key, null
// where a value is required, or a value of the wrong type. The message names where it happened,
// e.g. "cards[3].examples: missing".
class DecodeError : public std::runtime_error {
public:
    using runtime_error::runtime_error;

    // Text that is not JSON at all: the message carries the offset and no path is added to it.
    static DecodeError notJson(std::string_view what, std::ptrdiff_t offset);

    // The same failure seen from one level further out: `segment` is a key ("cards") or an
    // index ("[3]") that is put in front of the path already recorded.
    [[nodiscard]] DecodeError within(std::string_view segment) const;

private:
    enum class Place { Unknown, Located, Text };
    DecodeError(std::string message, Place place);
    Place place_ = Place::Unknown;
};

} // namespace orvel::json
