#include "library/cardbin.h"

#include "app/services.h"
#include "app/timings.h"
#include "library/cardlist.h"
#include "library/shelftexts.h"
#include "server/apiclient.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>

namespace orvel {

namespace {
// Holds only the client, so the deletion still goes out if the bin is gone by then.
QCoro::Task<> sendDeletion(APIClient *api, int cardId, QPointer<CardBin> bin)
{
    try {
        co_await api->deleteCard(cardId);
    } catch (const ServerError &) {
        // A failed deletion is not shown: the card simply stays on the server.
    }
    if (bin)
        emit bin->answered(cardId);
}
} // namespace

CardBin::CardBin(CardList &list, QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_list(list)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CardBin::commitBin);
    connect(&m_list, &CardList::deckLoaded, this, &CardBin::hideFromReload);
    if (QCoreApplication *app = QCoreApplication::instance())
        connect(app, &QCoreApplication::aboutToQuit, this, [this] { commitAndWait(3000); });
}

void CardBin::commitAndWait(int timeoutMs)
{
    if (!m_binned)
        return;
    QEventLoop loop;
    connect(this, &CardBin::answered, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    commitBin();
    loop.exec();
}

QString CardBin::text() const
{
    return m_binned ? shelftexts::deletedCard(m_binned->card.term) : QString();
}

std::optional<Card> CardBin::binnedCard() const
{
    return m_binned ? std::optional<Card>(m_binned->card) : std::nullopt;
}

bool CardBin::bin(int cardId)
{
    commitBin();
    auto taken = m_list.takeCard(cardId);
    if (!taken)
        return false;
    m_binned = Binned{taken->first, taken->second};
    m_timer.start(Timings::shared().cardUndo);
    emit changed();
    emit binned(m_binned->card);
    return true;
}

void CardBin::commitBin()
{
    if (!m_binned)
        return;
    m_timer.stop();
    const Card card = m_binned->card;
    m_binned.reset();
    emit changed();
    sendDeletion(&m_api, card.id, this);
    emit committed(card);
}

void CardBin::unbin()
{
    if (!m_binned)
        return;
    m_timer.stop();
    const Binned binned = *m_binned;
    m_binned.reset();
    // When another deck is open the card is simply not deleted: its deck shows it again when
    // it is next opened.
    m_list.restoreCard(binned.card, binned.index);
    emit changed();
    emit restored(binned.card);
}

void CardBin::hideFromReload(int deckId)
{
    if (m_binned && m_binned->card.deckId == deckId)
        m_list.takeCard(m_binned->card.id);
}

} // namespace orvel
