#pragma once

#include "records/card.h"
#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The card made from a note line; `already` when it existed before.
struct Made {
    Q_GADGET
    Q_PROPERTY(Card card MEMBER card)
    Q_PROPERTY(bool already MEMBER already)
public:
    Card card{};
    bool already = false;

    bool operator==(const Made &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("card", &Made::card), json::field("already", &Made::already));
};

} // namespace orvel
