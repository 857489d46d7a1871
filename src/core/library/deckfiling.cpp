#include "library/deckfiling.h"

namespace orvel {

DeckFiling::DeckFiling(QObject *parent) : QObject(parent) {}

void DeckFiling::setHome(HomeView *home)
{
    if (m_home == home)
        return;
    disconnect(m_shelf);
    m_home = home;
    if (home)
        m_shelf = connect(home->shelf(), &Shelf::changed, this, &DeckFiling::changed);
    emit changed();
}

void DeckFiling::setDeckId(int deckId)
{
    if (m_deckId == deckId)
        return;
    m_deckId = deckId;
    emit changed();
}

QVariantList DeckFiling::folders() const
{
    return m_home ? m_home->shelf()->folderChoices() : QVariantList{};
}

int DeckFiling::current() const
{
    if (!m_home)
        return 0;
    const auto deck = m_home->shelf()->deckById(m_deckId);
    if (!deck || !deck->folderId || !m_home->shelf()->folderById(*deck->folderId))
        return 0;
    return *deck->folderId;
}

QString DeckFiling::newFolderText() const
{
    return m_home ? m_home->folderActions()->newFolderWithText(m_deckId) : QString();
}

bool DeckFiling::move(int folderId)
{
    return m_home && m_home->folderActions()->file(QVariantList{m_deckId}, folderId);
}

void DeckFiling::newFolder()
{
    if (m_home && m_home->shelf()->deckById(m_deckId))
        m_home->folderActions()->requestNewFolder(m_deckId);
}

} // namespace orvel
