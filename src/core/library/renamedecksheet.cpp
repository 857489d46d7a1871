#include "library/renamedecksheet.h"

#include "app/services.h"
#include "library/homeview.h"
#include "library/learnerinput.h"
#include "server/apiclient.h"

namespace orvel {

RenameDeckSheet::RenameDeckSheet(QObject *parent)
    : QObject(parent), m_api(Services::current().api())
{
    // Whether the sheet can save depends on whether it is already saving.
    connect(this, &RenameDeckSheet::workingChanged, this, &RenameDeckSheet::nameChanged);
}

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
    const auto deck = m_home ? m_home->shelf()->deckById(deckId) : std::nullopt;
    m_description = deck ? deck->description : QString();
    setName(deck ? deck->name : QString());
    m_calls.setTrouble({});
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
    return !working() && m_deckId != 0 && !trimSpacesAndTabs(m_name).isEmpty();
}

QCoro::Task<std::optional<DeckSummary>> RenameDeckSheet::save()
{
    if (!canSave())
        co_return std::nullopt;
    auto renamed =
        co_await m_calls.run(m_api.renameDeck(m_deckId, trimSpacesAndTabs(m_name), m_description));
    if (!renamed)
        co_return std::nullopt;
    if (m_home)
        m_home->shelf()->replaceDeck(*renamed);
    emit saved(*renamed);
    co_return *renamed;
}

void RenameDeckSheet::requestSave()
{
    save();
}

} // namespace orvel
