#pragma once

#include "records/decksummary.h"
#include "records/folder.h"
#include "study/studyset.h"

#include <qcoro/qcorotask.h>
#include <QList>

namespace orvel {

class APIClient;

// A session over every deck filed in a folder.
//
// The decks' cards are put one after another, deck by deck in the order the decks are listed,
// and the whole lot is then ordered like one deck. So the cards that most need study come first
// whichever deck holds them (a weak card of the third deck is not kept waiting behind the strong
// cards of the first), while cards never seen stay grouped deck by deck, so a run of new words
// does not switch language at every card. Each card is spoken in its own deck's language.
class FolderStudy {
public:
    // The decks filed in `folder`, in the order given.
    static QList<DeckSummary> decksIn(const Folder &folder, const QList<DeckSummary> &decks);
    // Loads the cards of the decks filed in `folder` (out of `decks`); the set is titled with
    // the folder's name. The first deck that cannot be loaded fails the whole set with the
    // server's error.
    static QCoro::Task<StudySet> gather(APIClient &api, Folder folder, QList<DeckSummary> decks);
    // Loads the cards of the decks with these ids, in this order. The set is titled `title`, or
    // with the decks' names ("Deutsch, Français") when it is empty.
    static QCoro::Task<StudySet> gather(APIClient &api, QString title, QList<int> deckIds);
    // Deck ids as the study command carries them ("12", "3,5,9"); parts that are not ids are
    // left out.
    static QList<int> parseIds(const QString &text);
    // Whether a folder has anything to study: a deck of its with at least one card.
    static bool canStudy(const Folder &folder, const QList<DeckSummary> &decks);
};

} // namespace orvel
