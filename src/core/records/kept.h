#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One phrase kept from a lesson: its index `at`, as a card (`card` true) or a note line.
struct Kept {
    Q_GADGET
    Q_PROPERTY(int at MEMBER at)
    Q_PROPERTY(bool card MEMBER card)
public:
    int at = 0;
    bool card = false;

    bool operator==(const Kept &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("at", &Kept::at), json::field("card", &Kept::card));
};

} // namespace orvel
