#pragma once

#include "records/note.h"

#include <QJsonObject>
#include <QString>

namespace orvel {

// One event of the stream that writes the margin of a whole note. Only the fields of the
// event's kind are set.
struct AnnotateEvent {
    enum class Kind {
        Start,    // `total` lines to annotate
        Progress, // `done` of `total` lines annotated
        Failed,   // the job failed: `message`
        Done,     // finished: the `note` as it now stands, `annotated` lines received remarks
        Unknown,  // a type the client does not know; ignored
    };

    Kind kind = Kind::Unknown;
    int total = 0;
    int done = 0;
    QString message{};
    Note note{};
    int annotated = 0;

    bool operator==(const AnnotateEvent &) const = default;

    // Reads one "data:" object. `annotated` defaults to 0 when missing or null. A missing
    // required key or a wrong type throws json::DecodeError.
    static AnnotateEvent fromJson(const QJsonObject &object);
};

} // namespace orvel
