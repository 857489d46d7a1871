#include "library/folderactions.h"

#include "app/appcommands.h"
#include "library/deckactions.h"
#include "library/foldernaming.h"
#include "library/learnerinput.h"
#include "library/shelf.h"
#include "library/shelftexts.h"
#include "library/sidebarorder.h"
#include "server/apiclient.h"

#include <algorithm>
#include <QPointer>

namespace orvel {

namespace {

// Shelf edits run without the loading state; their failure reads as given or as the server's.
CallOptions quietly(const QString &failureText = {})
{
    return CallOptions().quiet().failingWith(failureText);
}

} // namespace

FolderActions::FolderActions(Shelf &shelf, QObject *parent) : QObject(parent), m_shelf(shelf)
{
    // A folder that went from the shelf is no longer being named.
    connect(&m_shelf, &Shelf::changed, this, [this] {
        if (m_editing && !m_shelf.folderById(m_editing))
            setEditingFolderId(0);
    });
}

bool FolderActions::file(const QVariantList &deckIds, int folderId)
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

bool FolderActions::file(const QList<int> &deckIds, std::optional<int> folder)
{
    if (folder && !m_shelf.folderById(*folder))
        return false;
    const bool anyDeck = std::any_of(deckIds.begin(), deckIds.end(),
                                     [this](int id) { return m_shelf.deckById(id).has_value(); });
    if (!anyDeck)
        return false;
    move(deckIds, folder);
    return true;
}

QCoro::Task<bool> FolderActions::move(QList<int> deckIds, std::optional<int> folder)
{
    m_shelf.calls().setTrouble({});
    for (int id : deckIds) {
        const auto deck = m_shelf.deckById(id);
        // A deck whose folder is gone from the listing counts as loose.
        const bool alreadyThere =
            deck && (folder ? deck->folderId == folder
                            : !deck->folderId || !m_shelf.folderById(*deck->folderId));
        if (!deck || alreadyThere)
            continue;
        auto moved = co_await m_shelf.calls().run(m_shelf.api().moveDeck(id, folder),
                                                  quietly(shelftexts::couldNotFile()));
        if (!moved)
            co_return false;
        m_shelf.replaceDeck(*moved);
    }
    co_return true;
}

QCoro::Task<std::optional<Folder>> FolderActions::newFolder(std::optional<int> deckId)
{
    auto made = co_await m_shelf.calls().run(
        m_shelf.api().createFolder(untitledFolderName(m_shelf.folders())),
        quietly(shelftexts::couldNotFile()));
    if (!made)
        co_return std::nullopt;
    const Folder folder = *made;
    m_shelf.addFolder(folder);
    if (deckId) {
        const QPointer<FolderActions> self(this);
        const QList<int> ids{*deckId};
        co_await move(ids, folder.id);
        if (!self)
            co_return std::nullopt;
    }
    setEditingFolderId(folder.id);
    co_return folder;
}

void FolderActions::requestNewFolder(int deckId)
{
    newFolder(deckId ? std::optional<int>(deckId) : std::nullopt);
}

QString FolderActions::newFolderWithText(int deckId) const
{
    const auto deck = m_shelf.deckById(deckId);
    return shelftexts::newFolderWith(deck ? deck->name : QString());
}

void FolderActions::setEditingFolderId(int folderId)
{
    if (folderId != 0 && !m_shelf.folderById(folderId))
        folderId = 0;
    if (m_editing == folderId)
        return;
    m_editing = folderId;
    emit editingFolderIdChanged();
}

QCoro::Task<> FolderActions::rename(int folderId, QString name)
{
    if (m_editing == folderId)
        setEditingFolderId(0);
    name = trimSpacesAndTabs(name);
    const auto folder = m_shelf.folderById(folderId);
    if (!folder || name.isEmpty() || name == folder->name)
        co_return;
    auto renamed =
        co_await m_shelf.calls().run(m_shelf.api().renameFolder(folderId, name), quietly());
    if (renamed)
        m_shelf.replaceFolder(*renamed);
}

void FolderActions::finishNaming(int folderId, const QString &name)
{
    rename(folderId, name);
}

QString FolderActions::deleteQuestion(int folderId) const
{
    const auto folder = m_shelf.folderById(folderId);
    return shelftexts::folderDeleteQuestion(folder ? folder->name : QString());
}

QString FolderActions::deleteDetail(int folderId) const
{
    return shelftexts::folderDeleteDetail(int(decksInFolder(m_shelf.decks(), folderId).size()));
}

QCoro::Task<> FolderActions::remove(int folderId)
{
    const auto removed =
        co_await m_shelf.calls().run(m_shelf.api().deleteFolder(folderId), quietly());
    if (removed)
        m_shelf.removeFolder(folderId);
}

void FolderActions::requestRemove(int folderId)
{
    remove(folderId);
}

QList<int> FolderActions::studyAllDecks(int folderId) const
{
    QList<int> ids;
    if (!m_shelf.folderById(folderId))
        return ids;
    for (const DeckSummary &deck : decksInFolder(m_shelf.decks(), folderId))
        if (deck.cardCount > 0)
            ids.append(deck.id);
    return ids;
}

bool FolderActions::studyAll(int folderId)
{
    const QList<int> ids = studyAllDecks(folderId);
    if (ids.isEmpty())
        return false;
    AppCommands::shared().post(AppCommand::Study, DeckActions::studyText(ids));
    return true;
}

} // namespace orvel
