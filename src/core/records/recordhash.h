#pragma once

#include "records/field.h"

#include <QByteArray>
#include <QHashFunctions>
#include <QString>

#include <optional>
#include <tuple>
#include <type_traits>

namespace orvel {

#ifndef Q_MOC_RUN
namespace detail {

template <class T> size_t hashMember(const T &value, size_t seed)
{
    if constexpr (requires {
                      value.has_value();
                      *value;
                  }) {
        return value ? hashMember(*value, seed) : qHash(-1, seed);
    } else if constexpr (requires {
                             typename T::value_type;
                             value.begin();
                         } &&
                         !std::is_same_v<T, QString> && !std::is_same_v<T, QByteArray>) {
        // Lists are walked here rather than through Qt's qHashRange, whose noexcept clause
        // asks for a one-argument qHash that records deliberately do not have.
        QtPrivate::QHashCombine combine;
        for (const auto &element : value)
            seed = combine(seed, hashMember(element, 0));
        return seed;
    } else {
        return qHash(value, seed);
    }
}

} // namespace detail

// Hashing of every record over all of its fields, so that records can key a QHash or fill a
// QSet; it agrees with operator==, which also covers every field. (Records holding a
// dictionary, such as Preferences, are not hashable.) The seed has no default: with one, Qt's
// own one-argument forwarding overload would make every call ambiguous.
template <json::Record R> size_t qHash(const R &record, size_t seed)
{
    QtPrivate::QHashCombine combine;
    std::apply(
        [&](const auto &...f) {
            ((seed = combine(seed, detail::hashMember(record.*f.member, 0))), ...);
        },
        R::fields);
    return seed;
}
#endif

} // namespace orvel
