#include "library/shutfolders.h"

#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <algorithm>
#include <QVariant>
#include <QVariantList>

namespace orvel {

QSet<int> ShutFolders::read()
{
    QSet<int> shut;
    const QVariant stored = LocalSettings::store().value(settingskeys::shutFolders());
    // An INI file gives back a one-element list as a plain string, so both forms are read.
    const QVariantList items =
        stored.canConvert<QVariantList>() && stored.typeId() != QMetaType::QString
            ? stored.toList()
            : QVariantList{stored};
    for (const QVariant &item : items) {
        bool ok = false;
        const int id = item.toString().trimmed().toInt(&ok);
        if (ok)
            shut.insert(id);
    }
    return shut;
}

void ShutFolders::write(const QSet<int> &shut)
{
    QVariantList stored;
    for (int id : ascending(shut))
        stored.append(id);
    LocalSettings::store().setValue(settingskeys::shutFolders(), stored);
    LocalSettings::store().sync();
}

QList<int> ShutFolders::ascending(const QSet<int> &shut)
{
    QList<int> ids(shut.begin(), shut.end());
    std::sort(ids.begin(), ids.end());
    return ids;
}

} // namespace orvel
