#include "library/deckactions.h"

#include "app/appcommands.h"
#include "library/shelf.h"
#include "library/shelftexts.h"
#include "server/apiclient.h"

#include <QStringList>

namespace orvel {

DeckActions::DeckActions(Shelf &shelf, QObject *parent) : QObject(parent), m_shelf(shelf) {}

QString DeckActions::deleteQuestion(int deckId) const
{
    const auto deck = m_shelf.deckById(deckId);
    return shelftexts::deckDeleteQuestion(deck ? deck->name : QString());
}

QString DeckActions::deleteDetail(int deckId) const
{
    const auto deck = m_shelf.deckById(deckId);
    return shelftexts::deckDeleteDetail(deck ? deck->cardCount : 0, deck ? deck->noteCount : 0);
}

QCoro::Task<> DeckActions::remove(int deckId)
{
    const auto removed =
        co_await m_shelf.calls().run(m_shelf.api().deleteDeck(deckId), CallOptions().quiet());
    if (removed)
        m_shelf.removeDeck(deckId);
}

void DeckActions::requestRemove(int deckId)
{
    remove(deckId);
}

QString DeckActions::studyText(const QList<int> &deckIds)
{
    QStringList ids;
    for (int id : deckIds)
        ids.append(QString::number(id));
    return ids.join(u',');
}

void DeckActions::study(int deckId)
{
    if (!m_shelf.deckById(deckId))
        return;
    AppCommands::shared().post(AppCommand::Study, studyText({deckId}));
}

QString DeckActions::studyButtonText(const QString &keyName) const
{
    return shelftexts::studyThisDeck(keyName);
}

QString DeckActions::emptyDeckGuidance(const QString &lessonKeyName) const
{
    return shelftexts::emptyDeckGuidance(lessonKeyName);
}

} // namespace orvel
