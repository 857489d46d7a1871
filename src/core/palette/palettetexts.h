#pragma once

#include "records/decksummary.h"
#include "records/wordtype.h"

#include <QString>

namespace orvel {

// The palette's own texts: section titles, item titles and the texts put together from names and
// counts, each built in one place.
namespace palettetexts {

// "Find a deck, a card, a note — or say what to do": the field's placeholder.
QString placeholder();
// "Find or Do": what a screen reader calls the palette.
QString name();
// "Nothing matches." for a query that finds nothing, "Nothing to show yet." for an empty start.
QString nothingMatches();
QString nothingYet();

// Section titles.
QString inDeck(const QString &deckName); // "In Deutsch"
QString start();
QString jumpBackTo();
QString commands();
QString moreCommands();
QString manual();
QString notInAnyDeck();
QString cards();
QString decks();
QString folders();
QString notes();
QString lines();
QString doSection(); // "Do"
QString sameLanguage();
QString otherLanguages();

// "1 card", "12 cards".
QString cardCount(int cards);
// A deck row's meta: "12 cards" while nothing is learned, "3 of 12 learned" after.
QString deckProgress(const DeckSummary &deck);
// "3 decks", "1 deck".
QString deckCount(int decks);
// The note beside "Cards": "2 in 1 deck", "5 in 3 decks".
QString cardsFound(int cards, int decks);
// A card row's subtitle for its kind of word: "noun", "verb", "adjective", "adverb", "phrase",
// "grammar word"; other words show their own part of speech, if any.
QString cardKind(WordType type, const QString &partOfSpeech = {});
// "Untitled" for a note without a title.
QString untitled();
// A found line's subtitle: "in the note “Tiere” · Deutsch" ("in the note Untitled note · …"
// for a note without a title).
QString lineSubtitle(const QString &noteTitle, const QString &deckName);

// Starting point and commands.
QString writeEmpty();         // "Write a card…"
QString writeEmptySubtitle(); // "Type a word, then ↩"
QString addFromText();        // "Add from Text…"
QString newNote();
QString newDeck();
QString newFolder();
QString study(const QString &deckName);     // "Study Deutsch"
QString studyFolder(const QString &folder); // "Study All Decks in Travel"
QString studyPick();                        // "Study a Deck…"
QString appearance(const QString &mode);    // "Appearance: Dark" for "dark"
QString settings();                         // "Settings…"
QString orvelManual();                      // "Orvel Manual"
QString help();
QString helpSubtitle(); // "Open the Orvel Manual"

// Writing items.
QString writeFor(const QString &query);        // "Write a card for “hund”"
QString writeForIn(const QString &query);      // "Write a card for “hund” in…"
QString writesItself(const QString &deckName); // "Deutsch · the card writes itself"
QString writeElsewhere();                      // "Write It in Another Deck…"
QString hear(const QString &query);            // "Hear “hund”"

// Stages.
QString whatToDo(); // "What to do with it"
QString openCard();
QString hearIt();
QString rewriteCard();
QString deleteCard();
QString pressAgainToDelete();              // "Press ↩ again to delete"
QString openDeck(const QString &deckName); // "Open Deutsch"
QString studyAll();                        // "Study All Decks"
QString showInSidebar();
QString moveTo(const QString &deckName);                          // "Move Deutsch to…"
QString moveInto(const QString &deckName, const QString &folder); // "Move Deutsch to Travel"
QString moveOut(const QString &deckName, const QString &folder);  // "Move Deutsch Out of Travel"
QString whichFolder();
QString noFolder();
QString whichDeck();

// Footer key hints.
QString hintOpen();
QString hintActions();
QString hintClose();
QString hintDoIt();
QString hintBack();

} // namespace palettetexts

} // namespace orvel
