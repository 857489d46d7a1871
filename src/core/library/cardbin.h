#pragma once

#include "records/card.h"

#include <optional>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class CardList;

// The card deletion that can still be undone. Deleting a card takes it out of the list at once
// and shows "Deleted <term>" with "Undo"; the deletion is sent when the undo time (Timings'
// cardUndo, 7 s) has passed, or at once when another card is deleted. Undo puts the card back
// at the index it had and sends nothing. The home screen holds it, so a pending deletion
// survives opening another deck.
class CardBin : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The card bin belongs to HomeView")
    Q_PROPERTY(bool pending READ pending NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(int cardId READ cardId NOTIFY changed)
public:
    CardBin(CardList &list, QObject *parent = nullptr);

    bool pending() const { return m_binned.has_value(); }
    // "Deleted Hund" while a deletion is pending, else empty.
    QString text() const;
    int cardId() const { return m_binned ? m_binned->card.id : 0; }
    std::optional<Card> binnedCard() const;

    // Deletes a card of the open deck: commits any pending deletion first, takes the card out
    // of the list and starts the undo time. False when the card is not in the open deck.
    Q_INVOKABLE bool bin(int cardId);
    // Sends the pending deletion now (nothing when none is pending). A failure is not shown.
    Q_INVOKABLE void commitBin();
    // Sends the pending deletion and waits for the server's answer, at most `timeoutMs`. Run as
    // the app quits, so that a deletion still inside its undo time is not lost with the app.
    void commitAndWait(int timeoutMs);
    // Brings the pending card back into its deck's list; nothing is sent.
    Q_INVOKABLE void unbin();

signals:
    void changed();
    // The card left the list (its deck's count drops by one).
    void binned(const orvel::Card &card);
    // The card came back (undo).
    void restored(const orvel::Card &card);
    // The deletion was sent.
    void committed(const orvel::Card &card);
    // The server answered a deletion (whether or not it went through).
    void answered(int cardId);

private:
    struct Binned {
        Card card;
        qsizetype index = 0;
    };
    // A reload of the card's deck brings the card back from the server while its deletion is
    // still pending; it is taken out again.
    void hideFromReload(int deckId);

    APIClient &m_api;
    CardList &m_list;
    std::optional<Binned> m_binned;
    QTimer m_timer;
};

} // namespace orvel
