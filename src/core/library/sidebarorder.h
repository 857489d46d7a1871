#pragma once

#include "library/sidebarrow.h"
#include "records/decksummary.h"
#include "records/folder.h"

#include <QList>
#include <QSet>

namespace orvel {

// The sidebar in order: the heading "Decks" with the loose decks in listing order, then the
// heading "Folders" with each folder in listing order, followed by its decks unless the folder is
// shut. The first nine deck rows carry the shortcut numbers 1 to 9.
QList<SidebarRow> sidebarRows(const QList<DeckSummary> &decks, const QList<Folder> &folders,
                              const QSet<int> &shut);

// Decks in no folder: without a folder id, or with one that names no folder in the listing.
QList<DeckSummary> looseDecks(const QList<DeckSummary> &decks, const QList<Folder> &folders);

// The decks filed in the folder, in listing order.
QList<DeckSummary> decksInFolder(const QList<DeckSummary> &decks, int folderId);

} // namespace orvel
