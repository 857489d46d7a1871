#include "library/renamedecksheet.h"

#include "library/homeview.h"
#include "library/learnerinput.h"
#include "library/screenapi.h"
#include "server/apiclient.h"

namespace orvel {

RenameDeckSheet::RenameDeckSheet(QObject *parent) : RenameDeckSheet(screenApi(), parent) {}

RenameDeckSheet::RenameDeckSheet(APIClient &api, QObject *parent) : QObject(parent), m_api(api) {}

void RenameDeckSheet::setHome(HomeView *home)
{
    if (m_home == home)
        return;
    m_home = home;
    emit homeChanged();
}

void RenameDeckSheet::setDeckId(int deckId)
{
    m_deckId = deckId;
    const auto deck = m_home ? m_home->deckById(deckId) : std::nullopt;
    m_description = deck ? deck->description : QString();
    setName(deck ? deck->name : QString());
    setTrouble({});
    emit deckIdChanged();
}

void RenameDeckSheet::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    emit nameChanged();
}

bool RenameDeckSheet::canSave() const
{
    return !m_working && m_deckId != 0 && !trimSpacesAndTabs(m_name).isEmpty();
}

QCoro::Task<std::optional<DeckSummary>> RenameDeckSheet::save()
{
    if (!canSave())
        co_return std::nullopt;
    QPointer self(this);
    setWorking(true);
    setTrouble({});
    std::optional<DeckSummary> renamed;
    QString failure;
    try {
        renamed = co_await m_api.renameDeck(m_deckId, trimSpacesAndTabs(m_name), m_description);
    } catch (const ServerError &error) {
        failure = error.message();
    }
    if (!self)
        co_return renamed;
    setWorking(false);
    if (!renamed) {
        setTrouble(failure);
        co_return std::nullopt;
    }
    if (m_home)
        m_home->replaceDeck(*renamed);
    emit saved(*renamed);
    co_return renamed;
}

void RenameDeckSheet::requestSave()
{
    save();
}

void RenameDeckSheet::setWorking(bool working)
{
    if (m_working == working)
        return;
    m_working = working;
    emit workingChanged();
    emit nameChanged();
}

void RenameDeckSheet::setTrouble(const QString &trouble)
{
    if (m_trouble == trouble)
        return;
    m_trouble = trouble;
    emit troubleChanged();
}

} // namespace orvel
