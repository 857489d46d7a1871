#pragma once

#include "records/card.h"

#include <QObject>

namespace orvel {

// The notice board for cards the server sent back changed or made by something other than the
// card list itself (an answer in a study session, which may arrive after the session closed, a
// card made from a note line): every card list that holds the card takes the new version, and
// the list of the card's deck takes a new card. One instance per process (shared()).
class CardChanges : public QObject {
    Q_OBJECT
public:
    explicit CardChanges(QObject *parent = nullptr) : QObject(parent) {}
    static CardChanges &shared();

    void announce(const Card &card) { emit changed(card); }
    void announceAdded(const Card &card) { emit added(card); }

signals:
    void changed(const orvel::Card &card);
    // A card new to its deck.
    void added(const orvel::Card &card);
};

} // namespace orvel
