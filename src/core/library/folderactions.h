#pragma once

#include "records/folder.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class Shelf;

// What the sidebar does with folders: filing decks into them (by drop and by menu), making a
// folder and naming it in place, renaming and deleting one, and studying all its decks.
class FolderActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The folder actions belong to HomeView")
    Q_PROPERTY(int editingFolderId READ editingFolderId WRITE setEditingFolderId NOTIFY
                   editingFolderIdChanged)
public:
    explicit FolderActions(Shelf &shelf, QObject *parent = nullptr);

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
    // The deck menu's "Move to" entry: "New Folder with “Deutsch”".
    Q_INVOKABLE QString newFolderWithText(int deckId) const;

    // The folder whose name is being edited in place (0 for none).
    int editingFolderId() const { return m_editing; }
    void setEditingFolderId(int folderId);
    // Ends in-place naming with the typed name; a blank name keeps the old one.
    QCoro::Task<> rename(int folderId, QString name);
    Q_INVOKABLE void finishNaming(int folderId, const QString &name);

    // The folder menu's "Delete Folder…" confirmation and its action: the folder goes, its
    // decks become loose.
    Q_INVOKABLE QString deleteQuestion(int folderId) const;
    Q_INVOKABLE QString deleteDetail(int folderId) const;
    QCoro::Task<> remove(int folderId);
    Q_INVOKABLE void requestRemove(int folderId);

    // "Study All Decks": posts the study command with the folder's decks that hold at least
    // one card, in sidebar order; with none, nothing is posted (false).
    Q_INVOKABLE bool studyAll(int folderId);
    QList<int> studyAllDecks(int folderId) const;

signals:
    void editingFolderIdChanged();

private:
    Shelf &m_shelf;
    int m_editing = 0;
};

} // namespace orvel
