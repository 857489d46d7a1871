#pragma once

#include <QString>

namespace orvel {

// The shelf's own texts that are put together from counts and names, each built in one place.
namespace shelftexts {

// "Couldn't load your decks": the deck or folder listing failed.
QString couldNotLoadDecks();
// "Couldn't file that": a filing, a folder make or a move failed.
QString couldNotFile();
// "Delete the folder “Travel”?"
QString folderDeleteQuestion(const QString &name);
// "Its 1 deck moves out of the folder. …", "Its 3 decks move out of the folder. …", or "The
// folder is empty."
QString folderDeleteDetail(int decks);
// "Delete Deutsch?", or "Delete this deck?" when the name is not at hand.
QString deckDeleteQuestion(const QString &name);
// "12 cards and 2 notes go too. This cannot be undone." or "12 cards go too. …" without notes.
QString deckDeleteDetail(int cards, int notes);
// The deck menu's "Move to" item that files the deck into a new folder: "New Folder with
// “Deutsch”".
QString newFolderWith(const QString &deckName);
// "Study this deck (Ctrl+R)", with the key named as the desktop names it.
QString studyThisDeck(const QString &keyName);
// "Deleted Hund": the undo bar after a card is deleted.
QString deletedCard(const QString &term);

// An empty deck's guidance in place of its list: "Type a word below and the card writes itself.
// …", naming the key that writes a short lesson (Ctrl+Return).
QString emptyDeckGuidance(const QString &lessonKeyName);

} // namespace shelftexts

} // namespace orvel
