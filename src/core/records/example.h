#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One example sentence of a card.
struct Example {
    Q_GADGET
    Q_PROPERTY(QString sentence MEMBER sentence)
    Q_PROPERTY(QString translation MEMBER translation)
    Q_PROPERTY(QString note MEMBER note)
public:
    QString sentence{};
    QString translation{};
    QString note{};

    bool operator==(const Example &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("sentence", &Example::sentence),
        json::field("translation", &Example::translation), json::field("note", &Example::note));
};

} // namespace orvel
