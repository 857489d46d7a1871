#pragma once

#include "app/servercalls.h"
#include "library/sidebarmodel.h"
#include "records/decksummary.h"
#include "records/folder.h"

#include <functional>
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

// The learner's decks and folders as the sidebar shows them: the listings, which folders are
// shut (kept in the local settings), and the sidebar's rows. Every change to the shelf goes
// through here; the folder and deck actions run their calls on its `calls()`, so one `trouble`
// says what last went wrong on the shelf.
class Shelf : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shelf belongs to HomeView")
    Q_PROPERTY(orvel::SidebarModel *sidebar READ sidebar CONSTANT)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool loaded READ loaded NOTIFY changed)
    Q_PROPERTY(bool empty READ empty NOTIFY changed)
    Q_PROPERTY(bool hasDecks READ hasDecks NOTIFY changed)
    Q_PROPERTY(QVariantList folderChoices READ folderChoices NOTIFY changed)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
public:
    // The type a dragged deck row carries (with the deck's id).
    static QString deckDragType();
    Q_INVOKABLE QString dragType() const { return deckDragType(); }

    explicit Shelf(QObject *parent = nullptr);

    SidebarModel *sidebar() const { return m_sidebar; }
    const QList<DeckSummary> &decks() const { return m_decks; }
    const QList<Folder> &folders() const { return m_folders; }
    const QSet<int> &shut() const { return m_shut; }
    bool loading() const { return m_calls.working(); }
    bool loaded() const { return m_loaded; }
    bool empty() const { return m_loaded && m_decks.isEmpty() && m_folders.isEmpty(); }
    bool hasDecks() const { return !m_decks.isEmpty(); }
    // [{id, name}] of every folder, in listing order (the "Move to" menu).
    QVariantList folderChoices() const;
    QString trouble() const { return m_calls.trouble(); }
    ServerCalls &calls() { return m_calls; }
    APIClient &api() const { return m_api; }

    std::optional<DeckSummary> deckById(int id) const;
    std::optional<Folder> folderById(int id) const;
    // The deck that Ctrl+<n> opens (the n-th deck of the sidebar, 1 to 9), or 0.
    Q_INVOKABLE int deckForShortcut(int n) const;

    // How many cards of a deck are still to be taken off a fresh listing: a card whose deletion
    // is still pending is still counted by the server.
    void setPendingRemovals(std::function<int(int deckId)> pending);
    // Reads the deck and folder listings and replaces what the shelf holds; a failure keeps
    // it and says "Couldn't load your decks".
    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    // Opens or shuts a folder in the sidebar; the shut folders are stored at once.
    Q_INVOKABLE void setOpen(int folderId, bool open);
    Q_INVOKABLE bool isOpen(int folderId) const { return !m_shut.contains(folderId); }

    // Edits after a call went through: each updates the sidebar and says the shelf changed.
    void addDeck(const DeckSummary &deck);
    void replaceDeck(const DeckSummary &deck);
    void removeDeck(int deckId);
    void adjustCardCount(int deckId, int by);
    // A new folder shows open.
    void addFolder(const Folder &folder);
    void replaceFolder(const Folder &folder);
    // The folder's decks stay, loose.
    void removeFolder(int folderId);

signals:
    void changed();
    void loadingChanged();
    void troubleChanged();

private:
    void edited();

    APIClient &m_api;
    SidebarModel *m_sidebar = nullptr;
    QList<DeckSummary> m_decks;
    QList<Folder> m_folders;
    QSet<int> m_shut;
    bool m_loaded = false;
    std::function<int(int)> m_pending;
    ServerCalls m_calls{this, &Shelf::loadingChanged, &Shelf::troubleChanged};
};

} // namespace orvel
