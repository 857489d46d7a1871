#include "library/foldernaming.h"

#include <QSet>

namespace orvel {

QString untitledFolderName(const QList<Folder> &folders)
{
    QSet<QString> taken;
    taken.reserve(folders.size());
    for (const Folder &folder : folders)
        taken.insert(folder.name.toLower());

    const QString base = QStringLiteral("untitled folder");
    if (!taken.contains(base))
        return base;
    // At most folders.size() names can be taken, so a free number turns up within that many.
    for (qsizetype n = 2;; ++n) {
        const QString candidate = base + u' ' + QString::number(n);
        if (!taken.contains(candidate))
            return candidate;
    }
}

} // namespace orvel
