#pragma once

#include "manual/manualpage.h"

#include <optional>
#include <QList>
#include <QString>
#include <QStringList>

namespace orvel {

// The manual's fixed table of chapters and pages, the text of each page (shipped as resources
// "manual-<id>.md"), and search over them.
class ManualBook {
public:
    static const QList<ManualChapter> &chapters();
    // Every page in chapter order.
    static const QList<ManualPage> &pages();
    static std::optional<ManualPage> page(const QString &id);
    static std::optional<ManualChapter> chapterOf(const QString &id);
    // The page's text; a page whose file is missing or unreadable still shows its title and a
    // line saying so. Empty for an id that names no page.
    static QString text(const QString &id);
    // The same, looking in the given folders in turn (":/" and ":/Manual/" for the app's own).
    static QString text(const QString &id, const QStringList &folders);
    // The pages whose title, question or text hold every word of the query (case and accents
    // folded, anywhere in a word), in chapter order. A blank query finds every page.
    static QList<ManualPage> search(const QString &query);
    // The first page, and the one the Help entries open.
    static QString firstPage() { return QStringLiteral("first-deck"); }
    static QString helpPage() { return QStringLiteral("shortcuts"); }
};

} // namespace orvel
