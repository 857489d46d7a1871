#pragma once

#include <QString>

namespace orvel {

// One row of the sidebar: a section heading, a deck or a folder.
struct SidebarRow {
    enum class Kind { DecksHeading, FoldersHeading, Deck, Folder };

    Kind kind = Kind::Deck;
    // The deck's or folder's id; 0 for headings.
    int id = 0;
    // "deck-12", "folder-3", or "decks" / "folders" for the headings.
    QString key{};
    // The heading's text, the deck's or the folder's name.
    QString name{};
    // A deck's card count, a folder's number of decks.
    int count = 0;
    // The folder a deck row stands under (0 for loose decks and other rows).
    int folderId = 0;
    // 1 for decks inside a folder, 0 otherwise.
    int depth = 0;
    // For folders: whether its decks are shown.
    bool open = true;
    // For the first nine decks in sidebar order: 1 to 9, the Ctrl+digit that opens it; else 0.
    int shortcut = 0;

    bool operator==(const SidebarRow &) const = default;
};

} // namespace orvel
