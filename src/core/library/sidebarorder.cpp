#include "library/sidebarorder.h"

#include <QHash>

namespace orvel {

namespace {

bool inKnownFolder(const DeckSummary &deck, const QSet<int> &folderIds)
{
    return deck.folderId && folderIds.contains(*deck.folderId);
}

QSet<int> idsOf(const QList<Folder> &folders)
{
    QSet<int> ids;
    ids.reserve(folders.size());
    for (const Folder &folder : folders)
        ids.insert(folder.id);
    return ids;
}

SidebarRow deckRow(const DeckSummary &deck, int folderId, int &shortcuts)
{
    SidebarRow row;
    row.kind = SidebarRow::Kind::Deck;
    row.id = deck.id;
    row.key = deck.sidebarKey();
    row.name = deck.name;
    row.count = deck.cardCount;
    row.folderId = folderId;
    row.depth = folderId ? 1 : 0;
    if (shortcuts < 9)
        row.shortcut = ++shortcuts;
    return row;
}

} // namespace

QList<SidebarRow> sidebarRows(const QList<DeckSummary> &decks, const QList<Folder> &folders,
                              const QSet<int> &shut)
{
    QList<SidebarRow> rows;
    rows.reserve(decks.size() + folders.size() + 2);
    const QSet<int> folderIds = idsOf(folders);
    int shortcuts = 0;

    SidebarRow decksHeading;
    decksHeading.kind = SidebarRow::Kind::DecksHeading;
    decksHeading.key = QStringLiteral("decks");
    decksHeading.name = QStringLiteral("Decks");
    rows.append(decksHeading);

    // Filed decks grouped by folder, each group in listing order.
    QHash<int, QList<qsizetype>> filed;
    filed.reserve(folders.size());
    for (qsizetype i = 0; i < decks.size(); ++i) {
        const DeckSummary &deck = decks[i];
        if (inKnownFolder(deck, folderIds))
            filed[*deck.folderId].append(i);
        else
            rows.append(deckRow(deck, 0, shortcuts));
    }

    SidebarRow foldersHeading;
    foldersHeading.kind = SidebarRow::Kind::FoldersHeading;
    foldersHeading.key = QStringLiteral("folders");
    foldersHeading.name = QStringLiteral("Folders");
    rows.append(foldersHeading);

    for (const Folder &folder : folders) {
        const auto group = filed.constFind(folder.id);
        SidebarRow row;
        row.kind = SidebarRow::Kind::Folder;
        row.id = folder.id;
        row.key = folder.sidebarKey();
        row.name = folder.name;
        row.count = group == filed.constEnd() ? 0 : int(group->size());
        row.open = !shut.contains(folder.id);
        rows.append(row);
        if (!row.open || group == filed.constEnd())
            continue;
        for (qsizetype i : *group)
            rows.append(deckRow(decks[i], folder.id, shortcuts));
    }
    return rows;
}

QList<DeckSummary> looseDecks(const QList<DeckSummary> &decks, const QList<Folder> &folders)
{
    const QSet<int> folderIds = idsOf(folders);
    QList<DeckSummary> loose;
    for (const DeckSummary &deck : decks)
        if (!inKnownFolder(deck, folderIds))
            loose.append(deck);
    return loose;
}

QList<DeckSummary> decksInFolder(const QList<DeckSummary> &decks, int folderId)
{
    QList<DeckSummary> inside;
    for (const DeckSummary &deck : decks)
        if (deck.folderId == folderId)
            inside.append(deck);
    return inside;
}

} // namespace orvel
