#pragma once

#include "records/card.h"

#include <QJsonObject>
#include <QString>

namespace orvel {

// One event of the stream that writes a list of words as cards. `index` is the word's position
// in the submitted list. Only the fields of the event's kind are set.
struct BatchEvent {
    enum class Kind {
        Start,   // `total` words will be written
        Word,    // work on word `index` (`term`) has begun
        Card,    // word `index` became `card`
        Skipped, // word `index` (`term`) was skipped, for `reason`
        Failed,  // word `index` (`term`) failed, for `reason`
        Done,    // the batch is finished
        Unknown, // a type the client does not know; ignored
    };

    Kind kind = Kind::Unknown;
    int total = 0;
    int index = 0;
    QString term{};
    orvel::Card card{};
    QString reason{};

    bool operator==(const BatchEvent &) const = default;

    // Reads one "data:" object. The reason of a skipped or failed word is `reason`, else
    // `error`, else empty. A missing required key or a wrong type throws json::DecodeError.
    static BatchEvent fromJson(const QJsonObject &object);
};

} // namespace orvel
