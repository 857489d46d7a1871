#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A word related to a card; `relation` says how, as the server words it.
struct Related {
    Q_GADGET
    Q_PROPERTY(QString word MEMBER word)
    Q_PROPERTY(QString translation MEMBER translation)
    Q_PROPERTY(QString relation MEMBER relation)
public:
    QString word{};
    QString translation{};
    QString relation{};

    bool operator==(const Related &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("word", &Related::word), json::field("translation", &Related::translation),
        json::field("relation", &Related::relation));
};

} // namespace orvel
