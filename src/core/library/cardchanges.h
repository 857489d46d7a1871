#pragma once

#include "records/card.h"

#include <QObject>

namespace orvel {

// The notice board for cards the server sent back changed by something other than the card
// list itself (an answer in a study session, which may arrive after the session closed): every
// card list that holds the card takes the new version. One instance per process (shared()).
class CardChanges : public QObject {
    Q_OBJECT
public:
    explicit CardChanges(QObject *parent = nullptr) : QObject(parent) {}
    static CardChanges &shared();

    void announce(const Card &card) { emit changed(card); }

signals:
    void changed(const orvel::Card &card);
};

} // namespace orvel
