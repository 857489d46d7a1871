#pragma once

#include "records/card.h"

#include <QJsonObject>
#include <QString>

namespace orvel {

// One event of the stream that writes a single card. Only the fields of the event's kind are
// set; build one in tests with designated initialisers, e.g.
// CardEvent{.kind = CardEvent::Kind::Text, .field = "translation", .value = "dog"}.
struct CardEvent {
    enum class Kind {
        Text,    // `field` of the card has been written: `value`
        Count,   // the list `field` now holds `count` items
        Card,    // the finished card; the job's result
        Failed,  // the job failed: `message`, shown as it stands
        Unknown, // a type the client does not know (or progress without value or count); ignored
    };

    Kind kind = Kind::Unknown;
    QString field{};
    QString value{};
    int count = 0;
    orvel::Card card{};
    QString message{};

    bool operator==(const CardEvent &) const = default;

    // Reads one "data:" object. A missing required key or a value of the wrong type throws
    // json::DecodeError; an unknown `type` gives Kind::Unknown.
    static CardEvent fromJson(const QJsonObject &object);
};

} // namespace orvel
