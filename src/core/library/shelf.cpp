#include "library/shelf.h"

#include "app/services.h"
#include "library/shelflisting.h"
#include "library/shelftexts.h"
#include "library/shutfolders.h"
#include "library/sidebarorder.h"
#include "server/apiclient.h"
#include "server/settingskeys.h"

#include <algorithm>
#include <QVariantMap>

namespace orvel {

QString Shelf::deckDragType()
{
    return settingskeys::deckDragType();
}

Shelf::Shelf(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_sidebar(new SidebarModel(this)),
      m_shut(ShutFolders::read())
{
    edited();
}

QVariantList Shelf::folderChoices() const
{
    QVariantList choices;
    for (const Folder &folder : m_folders)
        choices.append(
            QVariantMap{{QStringLiteral("id"), folder.id}, {QStringLiteral("name"), folder.name}});
    return choices;
}

std::optional<DeckSummary> Shelf::deckById(int id) const
{
    for (const DeckSummary &deck : m_decks)
        if (deck.id == id)
            return deck;
    return std::nullopt;
}

std::optional<Folder> Shelf::folderById(int id) const
{
    for (const Folder &folder : m_folders)
        if (folder.id == id)
            return folder;
    return std::nullopt;
}

int Shelf::deckForShortcut(int n) const
{
    for (const SidebarRow &row : m_sidebar->rows())
        if (row.kind == SidebarRow::Kind::Deck && row.shortcut == n)
            return row.id;
    return 0;
}

void Shelf::setPendingRemovals(std::function<int(int deckId)> pending)
{
    m_pending = std::move(pending);
}

QCoro::Task<> Shelf::load()
{
    auto listing = co_await m_calls.run(ShelfListing::fetch(m_api),
                                        CallOptions().failingWith(shelftexts::couldNotLoadDecks()));
    if (!listing)
        co_return;
    m_decks = std::move(listing->decks);
    m_folders = std::move(listing->folders);
    if (m_pending)
        for (DeckSummary &deck : m_decks)
            deck.cardCount = std::max(0, deck.cardCount - m_pending(deck.id));
    m_loaded = true;
    edited();
}

void Shelf::reload()
{
    load();
}

void Shelf::setOpen(int folderId, bool open)
{
    const bool changed = open ? m_shut.remove(folderId) : !m_shut.contains(folderId);
    if (!open)
        m_shut.insert(folderId);
    if (!changed)
        return;
    ShutFolders::write(m_shut);
    m_sidebar->setRows(sidebarRows(m_decks, m_folders, m_shut));
}

void Shelf::addDeck(const DeckSummary &deck)
{
    if (deckById(deck.id))
        return replaceDeck(deck);
    m_decks.append(deck);
    m_loaded = true;
    edited();
}

void Shelf::replaceDeck(const DeckSummary &deck)
{
    for (DeckSummary &d : m_decks) {
        if (d.id == deck.id) {
            d = deck;
            edited();
            return;
        }
    }
}

void Shelf::removeDeck(int deckId)
{
    m_decks.removeIf([deckId](const DeckSummary &d) { return d.id == deckId; });
    edited();
}

void Shelf::adjustCardCount(int deckId, int by)
{
    for (DeckSummary &deck : m_decks) {
        if (deck.id == deckId) {
            deck.cardCount = std::max(0, deck.cardCount + by);
            edited();
            return;
        }
    }
}

void Shelf::addFolder(const Folder &folder)
{
    m_folders.append(folder);
    m_shut.remove(folder.id);
    edited();
}

void Shelf::replaceFolder(const Folder &folder)
{
    for (Folder &f : m_folders)
        if (f.id == folder.id)
            f = folder;
    edited();
}

void Shelf::removeFolder(int folderId)
{
    m_folders.removeIf([folderId](const Folder &f) { return f.id == folderId; });
    for (DeckSummary &deck : m_decks)
        if (deck.folderId == folderId)
            deck.folderId.reset();
    if (m_shut.remove(folderId))
        ShutFolders::write(m_shut);
    edited();
}

void Shelf::edited()
{
    m_sidebar->setRows(sidebarRows(m_decks, m_folders, m_shut));
    emit changed();
}

} // namespace orvel
