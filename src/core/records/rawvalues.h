#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace orvel {

// The raw string values of an enumeration, in the order of its cases: the one table that
// both directions (case -> text, text -> case) and "all cases" read.
template <class E, std::size_t N> struct RawValues {
    std::array<std::pair<E, QStringView>, N> table;

    QString of(E value) const
    {
        for (const auto &[e, raw] : table)
            if (e == value)
                return raw.toString();
        return {};
    }

    std::optional<E> find(QStringView raw) const
    {
        for (const auto &[e, text] : table)
            if (text == raw)
                return e;
        return std::nullopt;
    }

    std::array<E, N> all() const
    {
        std::array<E, N> cases{};
        for (std::size_t i = 0; i < N; ++i)
            cases[i] = table[i].first;
        return cases;
    }
};

template <class E, class... Pairs> constexpr auto rawValues(Pairs... pairs)
{
    return RawValues<E, sizeof...(Pairs)>{{std::pair<E, QStringView>(pairs)...}};
}

} // namespace orvel
