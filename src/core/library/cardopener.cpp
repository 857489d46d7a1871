#include "library/cardopener.h"

#include "library/homeview.h"

namespace orvel {

CardOpener::CardOpener(HomeView &home) : QObject(&home), m_home(home)
{
    CardList *cards = home.cards();
    connect(cards, &CardList::deckLoaded, this, [this](int deckId) {
        if (m_pending && m_pending->deckId == deckId)
            settle();
    });
    connect(cards, &CardList::troubleChanged, this, [this, cards] {
        if (!cards->trouble().isEmpty())
            m_pending.reset();
    });
    connect(&home, &HomeView::selectedDeckChanged, this, [this] {
        if (m_pending && m_pending->deckId != m_home.selectedDeckId())
            m_pending.reset();
    });
}

bool CardOpener::open(int deckId, int cardId, Then then)
{
    m_pending.reset();
    m_home.selectDeck(deckId);
    if (m_home.selectedDeckId() != deckId || deckId == 0)
        return false;
    m_home.showNotes(false);
    m_pending = Pending{deckId, cardId, then};
    const CardList *cards = m_home.cards();
    if (cards->hasDeck() && cards->deckId() == deckId && !cards->loading())
        settle();
    return true;
}

void CardOpener::settle()
{
    const Pending pending = *m_pending;
    m_pending.reset();
    CardList *cards = m_home.cards();
    // A card hidden by the list's filters is shown by clearing them.
    if (cards->rowOf(pending.cardId) < 0) {
        cards->setQuery(QString());
        cards->setKind(QString());
        cards->setLearned(CardList::LearnedFilter::Any);
    }
    cards->select(pending.cardId);
    if (cards->selectedCardId() != pending.cardId)
        return; // no longer in its deck
    switch (pending.then) {
    case Then::Show:
        break;
    case Then::Rewrite:
        m_home.detail()->requestRewrite();
        break;
    case Then::Delete:
        m_home.bin()->bin(pending.cardId);
        break;
    }
}

} // namespace orvel
