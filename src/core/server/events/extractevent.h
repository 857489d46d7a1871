#pragma once

#include "records/candidate.h"

#include <QJsonObject>
#include <QList>
#include <QString>

namespace orvel {

// One event of the stream that takes the words out of a pasted text. Only the fields of the
// event's kind are set.
struct ExtractEvent {
    enum class Kind {
        Reading, // the server is reading `characters` characters of the text
        Word,    // one word found: `word`
        Failed,  // the job failed: `message`
        Done,    // finished: `summary`, all `words`, `skipped` and `unread` counts
        Unknown, // a type the client does not know; ignored
    };

    Kind kind = Kind::Unknown;
    int characters = 0;
    Candidate word{};
    QString message{};
    QString summary{};
    QList<Candidate> words{};
    int skipped = 0;
    int unread = 0;

    bool operator==(const ExtractEvent &) const = default;

    // Reads one "data:" object. Every key of "done" may be missing or null. A missing required
    // key or a wrong type throws json::DecodeError.
    static ExtractEvent fromJson(const QJsonObject &object);
};

} // namespace orvel
