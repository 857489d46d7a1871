#pragma once

#include "records/annotation.h"
#include "records/media.h"
#include "records/notedraftline.h"
#include "records/noteline.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvel {

// One line of a note as the editor holds it. `key` is made here when the line is made and stays
// with it across saves: it names the line in the undo history and in margin requests before the
// server has given it an `id`.
struct Draft {
    QUuid key = QUuid::createUuid();
    std::optional<int> id{};
    QString text{};
    std::optional<Media> media{};
    QString source{};
    QString kind{};
    QList<Annotation> annotations{};

    bool operator==(const Draft &) const = default;

    // A fresh empty line, or one holding text.
    static Draft empty() { return Draft{}; }
    static Draft withText(const QString &text)
    {
        Draft draft;
        draft.text = text;
        return draft;
    }
    // The editor's copy of a stored line (a fresh key).
    static Draft fromLine(const NoteLine &line)
    {
        Draft draft;
        draft.id = line.id;
        draft.text = line.text;
        draft.media = line.media;
        draft.source = line.source;
        draft.kind = line.kind;
        draft.annotations = line.annotations;
        return draft;
    }
    // What a save sends for this line.
    NoteDraftLine toDraftLine() const
    {
        NoteDraftLine line;
        line.id = id;
        line.text = text;
        if (media)
            line.mediaId = media->id;
        line.source = source;
        line.kind = kind;
        line.annotations = annotations;
        return line;
    }
    // Blank lines without a picture are not sent: a note keeps only what was written.
    bool kept() const
    {
        for (const QChar c : text)
            if (c != u' ' && c != u'\t')
                return true;
        return media.has_value();
    }
};

} // namespace orvel
