#include "library/homeview.h"

#include "app/appcommands.h"
#include "app/services.h"
#include "library/foldernaming.h"
#include "library/learnerinput.h"
#include "library/shelflisting.h"
#include "library/shelftexts.h"
#include "library/shutfolders.h"
#include "library/sidebarorder.h"
#include "server/apiclient.h"

#include <QPointer>
#include <QVariantMap>

namespace orvel {

HomeView::HomeView(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_sidebar(new SidebarModel(this)),
      m_cards(new CardList(this)), m_bin(new CardBin(*m_cards, this)),
      m_detail(new CardDetail(*m_cards, *m_bin, this)), m_shut(ShutFolders::read())
{
    connect(m_bin, &CardBin::binned, this,
            [this](const Card &card) { adjustCardCount(card.deckId, -1); });
    connect(m_bin, &CardBin::restored, this,
            [this](const Card &card) { adjustCardCount(card.deckId, +1); });
    // The study session and rewrites change a card's counts; the shelf's known count follows
    // only on the next listing, the card count never changes this way.
    rebuildSidebar();
}

HomeView::~HomeView() = default;

QVariantList HomeView::folderChoices() const
{
    QVariantList choices;
    for (const Folder &folder : m_folders)
        choices.append(
            QVariantMap{{QStringLiteral("id"), folder.id}, {QStringLiteral("name"), folder.name}});
    return choices;
}

std::optional<DeckSummary> HomeView::deckById(int id) const
{
    for (const DeckSummary &deck : m_decks)
        if (deck.id == id)
            return deck;
    return std::nullopt;
}

std::optional<Folder> HomeView::folderById(int id) const
{
    for (const Folder &folder : m_folders)
        if (folder.id == id)
            return folder;
    return std::nullopt;
}

namespace {

// Shelf edits run without the loading state; their failure reads as given or as the server's.
CallOptions quietly(const QString &failureText = {})
{
    return CallOptions().quiet().failingWith(failureText);
}

} // namespace

QCoro::Task<> HomeView::load()
{
    auto listing = co_await m_calls.run(ShelfListing::fetch(m_api),
                                        CallOptions().failingWith(shelftexts::couldNotLoadDecks()));
    if (!listing)
        co_return;
    m_decks = std::move(listing->decks);
    m_folders = std::move(listing->folders);
    // A card whose deletion is still pending is still counted by the server.
    if (const auto binned = m_bin->binnedCard())
        for (DeckSummary &deck : m_decks)
            if (deck.id == binned->deckId)
                deck.cardCount = std::max(0, deck.cardCount - 1);
    m_loaded = true;
    shelfEdited();
}

void HomeView::reload()
{
    load();
}

void HomeView::rebuildSidebar()
{
    m_sidebar->setRows(sidebarRows(m_decks, m_folders, m_shut));
}

void HomeView::shelfEdited()
{
    rebuildSidebar();
    emit shelfChanged();
    // The open deck may have gone, or been renamed.
    if (m_selectedDeck && !deckById(m_selectedDeck))
        selectDeck(0);
    else
        emit selectedDeckChanged();
}

void HomeView::adjustCardCount(int deckId, int by)
{
    for (DeckSummary &deck : m_decks) {
        if (deck.id == deckId) {
            deck.cardCount = std::max(0, deck.cardCount + by);
            shelfEdited();
            return;
        }
    }
}

void HomeView::selectDeck(int deckId)
{
    if (deckId != 0 && !deckById(deckId))
        deckId = 0;
    if (deckId == m_selectedDeck)
        return;
    m_selectedDeck = deckId;
    if (deckId)
        m_cards->open(deckId);
    else
        m_cards->close();
    emit selectedDeckChanged();
}

void HomeView::setOpen(int folderId, bool open)
{
    const bool changed = open ? m_shut.remove(folderId) : !m_shut.contains(folderId);
    if (!open)
        m_shut.insert(folderId);
    if (!changed)
        return;
    ShutFolders::write(m_shut);
    rebuildSidebar();
}

bool HomeView::file(const QVariantList &deckIds, int folderId)
{
    QList<int> ids;
    for (const QVariant &id : deckIds) {
        bool ok = false;
        const int value = id.toInt(&ok);
        if (ok)
            ids.append(value);
    }
    return file(ids, folderId ? std::optional<int>(folderId) : std::nullopt);
}

bool HomeView::file(const QList<int> &deckIds, std::optional<int> folder)
{
    if (folder && !folderById(*folder))
        return false;
    const bool anyDeck =
        std::any_of(deckIds.begin(), deckIds.end(), [this](int id) { return deckById(id); });
    if (!anyDeck)
        return false;
    move(deckIds, folder);
    return true;
}

QCoro::Task<bool> HomeView::move(QList<int> deckIds, std::optional<int> folder)
{
    m_calls.setTrouble({});
    for (int id : deckIds) {
        const auto deck = deckById(id);
        // A deck whose folder is gone from the listing counts as loose.
        const bool alreadyThere =
            deck &&
            (folder ? deck->folderId == folder : !deck->folderId || !folderById(*deck->folderId));
        if (!deck || alreadyThere)
            continue;
        auto moved =
            co_await m_calls.run(m_api.moveDeck(id, folder), quietly(shelftexts::couldNotFile()));
        if (!moved)
            co_return false;
        replaceDeck(*moved);
    }
    co_return true;
}

QCoro::Task<std::optional<Folder>> HomeView::newFolder(std::optional<int> deckId)
{
    auto made = co_await m_calls.run(m_api.createFolder(untitledFolderName(m_folders)),
                                     quietly(shelftexts::couldNotFile()));
    if (!made)
        co_return std::nullopt;
    m_folders.append(*made);
    m_shut.remove(made->id);
    shelfEdited();
    const Folder folder = *made;
    if (deckId) {
        const QPointer<HomeView> self(this);
        const QList<int> ids{*deckId};
        co_await move(ids, folder.id);
        if (!self)
            co_return std::nullopt;
    }
    setEditingFolderId(folder.id);
    co_return folder;
}

void HomeView::requestNewFolder(int deckId)
{
    newFolder(deckId ? std::optional<int>(deckId) : std::nullopt);
}

void HomeView::setEditingFolderId(int folderId)
{
    if (folderId != 0 && !folderById(folderId))
        folderId = 0;
    if (m_editingFolder == folderId)
        return;
    m_editingFolder = folderId;
    emit editingFolderIdChanged();
}

QCoro::Task<> HomeView::renameFolder(int folderId, QString name)
{
    if (m_editingFolder == folderId)
        setEditingFolderId(0);
    name = trimSpacesAndTabs(name);
    const auto folder = folderById(folderId);
    if (!folder || name.isEmpty() || name == folder->name)
        co_return;
    auto renamed = co_await m_calls.run(m_api.renameFolder(folderId, name), quietly());
    if (!renamed)
        co_return;
    for (Folder &f : m_folders)
        if (f.id == folderId)
            f = *renamed;
    shelfEdited();
}

void HomeView::finishNaming(int folderId, const QString &name)
{
    renameFolder(folderId, name);
}

QString HomeView::folderDeleteQuestion(int folderId) const
{
    const auto folder = folderById(folderId);
    return shelftexts::folderDeleteQuestion(folder ? folder->name : QString());
}

QString HomeView::folderDeleteDetail(int folderId) const
{
    return shelftexts::folderDeleteDetail(int(decksInFolder(m_decks, folderId).size()));
}

QCoro::Task<> HomeView::deleteFolder(int folderId)
{
    if (!co_await m_calls.run(m_api.deleteFolder(folderId), quietly()))
        co_return;
    m_folders.removeIf([folderId](const Folder &f) { return f.id == folderId; });
    // Its decks stay, loose.
    for (DeckSummary &deck : m_decks)
        if (deck.folderId == folderId)
            deck.folderId.reset();
    if (m_shut.remove(folderId))
        ShutFolders::write(m_shut);
    if (m_editingFolder == folderId)
        setEditingFolderId(0);
    shelfEdited();
}

void HomeView::requestDeleteFolder(int folderId)
{
    deleteFolder(folderId);
}

QString HomeView::deckDeleteQuestion(int deckId) const
{
    const auto deck = deckById(deckId);
    return shelftexts::deckDeleteQuestion(deck ? deck->name : QString());
}

QString HomeView::deckDeleteDetail(int deckId) const
{
    const auto deck = deckById(deckId);
    return shelftexts::deckDeleteDetail(deck ? deck->cardCount : 0, deck ? deck->noteCount : 0);
}

QCoro::Task<> HomeView::deleteDeck(int deckId)
{
    if (!co_await m_calls.run(m_api.deleteDeck(deckId), quietly()))
        co_return;
    m_decks.removeIf([deckId](const DeckSummary &d) { return d.id == deckId; });
    shelfEdited();
}

void HomeView::requestDeleteDeck(int deckId)
{
    deleteDeck(deckId);
}

void HomeView::adopt(const DeckSummary &deck)
{
    if (deckById(deck.id))
        replaceDeck(deck);
    else {
        m_decks.append(deck);
        m_loaded = true;
        shelfEdited();
    }
    selectDeck(deck.id);
}

void HomeView::replaceDeck(const DeckSummary &deck)
{
    for (DeckSummary &d : m_decks) {
        if (d.id == deck.id) {
            d = deck;
            shelfEdited();
            return;
        }
    }
}

QString HomeView::studyText(const QList<int> &deckIds)
{
    QStringList ids;
    for (int id : deckIds)
        ids.append(QString::number(id));
    return ids.join(u',');
}

void HomeView::studyDeck(int deckId)
{
    if (!deckById(deckId))
        return;
    AppCommands::shared().post(AppCommand::study, studyText({deckId}));
}

QList<int> HomeView::studyAllDecks(int folderId) const
{
    QList<int> ids;
    if (!folderById(folderId))
        return ids;
    for (const DeckSummary &deck : decksInFolder(m_decks, folderId))
        if (deck.cardCount > 0)
            ids.append(deck.id);
    return ids;
}

bool HomeView::studyAll(int folderId)
{
    const QList<int> ids = studyAllDecks(folderId);
    if (ids.isEmpty())
        return false;
    AppCommands::shared().post(AppCommand::study, studyText(ids));
    return true;
}

QString HomeView::studyButtonText(const QString &keyName) const
{
    return shelftexts::studyThisDeck(keyName);
}

int HomeView::deckForShortcut(int n) const
{
    for (const SidebarRow &row : m_sidebar->rows())
        if (row.kind == SidebarRow::Kind::Deck && row.shortcut == n)
            return row.id;
    return 0;
}

bool HomeView::openShortcut(int n)
{
    const int deckId = deckForShortcut(n);
    if (!deckId)
        return false;
    selectDeck(deckId);
    return true;
}

QString HomeView::newFolderWithText(int deckId) const
{
    const auto deck = deckById(deckId);
    return shelftexts::newFolderWith(deck ? deck->name : QString());
}

QString HomeView::emptyDeckGuidance(const QString &lessonKeyName) const
{
    return shelftexts::emptyDeckGuidance(lessonKeyName);
}

} // namespace orvel
