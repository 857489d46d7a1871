#pragma once

#include "app/servercalls.h"
#include "library/cardbin.h"
#include "library/carddetail.h"
#include "library/cardlist.h"
#include "library/sidebarmodel.h"
#include "records/decksummary.h"
#include "records/folder.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;

// The home screen's logic: the shelf of decks and folders (loading, the sidebar, opening and
// shutting folders, filing decks, making, renaming and deleting folders and decks), the chosen
// deck with its card list and card detail, the undoable card deletion, and the study entry
// points. Every server failure lands in `trouble`, which the next attempt replaces.
class HomeView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::SidebarModel *sidebar READ sidebar CONSTANT)
    Q_PROPERTY(orvel::CardList *cards READ cards CONSTANT)
    Q_PROPERTY(orvel::CardDetail *detail READ detail CONSTANT)
    Q_PROPERTY(orvel::CardBin *bin READ bin CONSTANT)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool loaded READ loaded NOTIFY shelfChanged)
    Q_PROPERTY(bool shelfEmpty READ shelfEmpty NOTIFY shelfChanged)
    Q_PROPERTY(bool hasDecks READ hasDecks NOTIFY shelfChanged)
    Q_PROPERTY(QVariantList folderChoices READ folderChoices NOTIFY shelfChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(int selectedDeckId READ selectedDeckId WRITE selectDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(bool hasSelectedDeck READ hasSelectedDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(orvel::DeckSummary selectedDeck READ selectedDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(QString selectedDeckName READ selectedDeckName NOTIFY selectedDeckChanged)
    Q_PROPERTY(int editingFolderId READ editingFolderId WRITE setEditingFolderId NOTIFY
                   editingFolderIdChanged)
public:
    // The type a dragged deck row carries (with the deck's id).
    static QString deckDragType() { return QStringLiteral("dev.zelon.app.deck"); }
    Q_INVOKABLE QString dragType() const { return deckDragType(); }

    explicit HomeView(QObject *parent = nullptr);
    ~HomeView() override;

    SidebarModel *sidebar() const { return m_sidebar; }
    CardList *cards() const { return m_cards; }
    CardDetail *detail() const { return m_detail; }
    CardBin *bin() const { return m_bin; }

    const QList<DeckSummary> &decks() const { return m_decks; }
    const QList<Folder> &folders() const { return m_folders; }
    const QSet<int> &shut() const { return m_shut; }
    bool loading() const { return m_calls.working(); }
    bool loaded() const { return m_loaded; }
    bool shelfEmpty() const { return m_loaded && m_decks.isEmpty() && m_folders.isEmpty(); }
    bool hasDecks() const { return !m_decks.isEmpty(); }
    // [{id, name}] of every folder, in listing order (the "Move to" menu).
    QVariantList folderChoices() const;
    QString trouble() const { return m_calls.trouble(); }

    std::optional<DeckSummary> deckById(int id) const;
    std::optional<Folder> folderById(int id) const;

    // Reads the deck and folder listings and replaces what the shelf holds; a failure keeps
    // it and says "Couldn't load your decks".
    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    int selectedDeckId() const { return m_selectedDeck; }
    bool hasSelectedDeck() const { return deckById(m_selectedDeck).has_value(); }
    DeckSummary selectedDeck() const { return deckById(m_selectedDeck).value_or(DeckSummary{}); }
    QString selectedDeckName() const { return selectedDeck().name; }
    // Opens a deck in the card list (0 opens none).
    void selectDeck(int deckId);

    // Opens or shuts a folder in the sidebar; the shut folders are stored at once.
    Q_INVOKABLE void setOpen(int folderId, bool open);
    Q_INVOKABLE bool isOpen(int folderId) const { return !m_shut.contains(folderId); }

    // A drop of dragged deck rows: on a folder (folderId) files them into it, on the "Decks"
    // heading (0) files them out of any folder. Accepted when at least one dragged id names a
    // deck and the folder exists; the moves then run in the background.
    Q_INVOKABLE bool file(const QVariantList &deckIds, int folderId);
    bool file(const QList<int> &deckIds, std::optional<int> folder);
    // Moves the decks one by one, skipping those already there; false after a failure
    // ("Couldn't file that").
    QCoro::Task<bool> move(QList<int> deckIds, std::optional<int> folder);

    // Makes a folder named untitled folder (2, 3, …), optionally filing a deck into it, and
    // starts naming it in place. Gives the folder, or none after a failure ("Couldn't file that").
    QCoro::Task<std::optional<Folder>> newFolder(std::optional<int> deckId);
    // 0 for a folder with no deck.
    Q_INVOKABLE void requestNewFolder(int deckId = 0);
    // The folder whose name is being edited in place (0 for none).
    int editingFolderId() const { return m_editingFolder; }
    void setEditingFolderId(int folderId);
    // Ends in-place naming with the typed name; a blank name keeps the old one.
    QCoro::Task<> renameFolder(int folderId, QString name);
    Q_INVOKABLE void finishNaming(int folderId, const QString &name);

    // The folder menu's "Delete Folder…" confirmation and its action: the folder goes, its
    // decks become loose.
    Q_INVOKABLE QString folderDeleteQuestion(int folderId) const;
    Q_INVOKABLE QString folderDeleteDetail(int folderId) const;
    QCoro::Task<> deleteFolder(int folderId);
    Q_INVOKABLE void requestDeleteFolder(int folderId);

    // The deck menu's delete confirmation and its action: the deck goes with its cards and notes.
    Q_INVOKABLE QString deckDeleteQuestion(int deckId) const;
    Q_INVOKABLE QString deckDeleteDetail(int deckId) const;
    QCoro::Task<> deleteDeck(int deckId);
    Q_INVOKABLE void requestDeleteDeck(int deckId);

    // A deck the new-deck sheet made: it joins the shelf and opens.
    Q_INVOKABLE void adopt(const orvel::DeckSummary &deck);
    // A deck the server sent back changed (renamed, moved): it replaces the old entry.
    void replaceDeck(const DeckSummary &deck);

    // The study entry points: post the study command with the decks to study. The command's
    // text is the ids of those decks in sidebar order, joined with commas ("12", "3,5,9").
    // Cards written into a deck (from its composer or a kept lesson) count on its shelf row at
    // once, without waiting for the next listing.
    Q_INVOKABLE void countNewCards(int deckId, int count) { adjustCardCount(deckId, count); }
    Q_INVOKABLE void studyDeck(int deckId);
    // The folder's decks that hold at least one card; with none, nothing is posted (false).
    Q_INVOKABLE bool studyAll(int folderId);
    QList<int> studyAllDecks(int folderId) const;
    static QString studyText(const QList<int> &deckIds);
    // "Study this deck (Ctrl+R)" with the key as the desktop names it.
    Q_INVOKABLE QString studyButtonText(const QString &keyName) const;
    // The deck that Ctrl+<n> opens (the n-th deck of the sidebar, 1 to 9), or 0.
    Q_INVOKABLE int deckForShortcut(int n) const;
    Q_INVOKABLE bool openShortcut(int n);

    // What an empty deck shows in place of its list, with the lesson key as the desktop names it.
    Q_INVOKABLE QString emptyDeckGuidance(const QString &lessonKeyName) const;

    // The deck menu's "Move to" entry: "New Folder with “Deutsch”".
    Q_INVOKABLE QString newFolderWithText(int deckId) const;

signals:
    void loadingChanged();
    void shelfChanged();
    void troubleChanged();
    void selectedDeckChanged();
    void editingFolderIdChanged();

private:
    void rebuildSidebar();
    void shelfEdited();
    void adjustCardCount(int deckId, int by);

    APIClient &m_api;
    SidebarModel *m_sidebar = nullptr;
    CardList *m_cards = nullptr;
    CardBin *m_bin = nullptr;
    CardDetail *m_detail = nullptr;
    QList<DeckSummary> m_decks;
    QList<Folder> m_folders;
    QSet<int> m_shut;
    bool m_loaded = false;
    ServerCalls m_calls{this, &HomeView::loadingChanged, &HomeView::troubleChanged};
    int m_selectedDeck = 0;
    int m_editingFolder = 0;
};

} // namespace orvel
