#pragma once

#include "notes/draft.h"
#include "records/notedraftline.h"

#include <QList>
#include <QString>
#include <QUuid>

namespace orvel {

// What one save of a note sends: the title and every kept line (words or a picture) in order,
// with the keys of the drafts they came from, so the reply's ids can go back to those drafts
// whatever happened to the lines meanwhile.
struct NoteSave {
    QString title{};
    QList<QUuid> keys{};
    QList<NoteDraftLine> lines{};

    bool operator==(const NoteSave &) const = default;

    static NoteSave of(const QString &title, const QList<Draft> &drafts)
    {
        NoteSave save;
        save.title = title;
        save.keys.reserve(drafts.size());
        save.lines.reserve(drafts.size());
        for (const Draft &draft : drafts) {
            if (!draft.kept())
                continue;
            save.keys.append(draft.key);
            save.lines.append(draft.toDraftLine());
        }
        return save;
    }
};

} // namespace orvel
