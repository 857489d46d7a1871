#pragma once

#include <QList>
#include <QSet>

namespace orvel {

// The folders shut in the sidebar, kept in the local settings under "zelon.sidebar.shutFolders"
// as the folder ids in ascending order.
class ShutFolders {
public:
    // What was stored; entries that are not whole numbers are skipped.
    static QSet<int> read();
    // Stores the set, ascending.
    static void write(const QSet<int> &shut);
    // The set as it is stored: ascending.
    static QList<int> ascending(const QSet<int> &shut);
};

} // namespace orvel
