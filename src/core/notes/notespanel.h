#pragma once

#include "app/servercalls.h"
#include "records/note.h"
#include "records/notesummary.h"

#include <QAbstractListModel>
#include <qcoro/qcorotask.h>
#include <QHash>
#include <QList>
#include <QSet>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class NoteEditor;

// The notes page of a deck: the list of its notes (the rail beside the editor, a row per note
// in the server's order) and the one note open in the editor. Notes are loaded when opened and
// kept by id, so a note asked for twice is read once; the editor's saves keep the rows' titles
// and counts current.
class NotesPanel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int deckId READ deckId NOTIFY deckChanged)
    Q_PROPERTY(QString language READ language NOTIFY deckChanged)
    Q_PROPERTY(orvel::NoteEditor *editor READ editor CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool loaded READ loaded NOTIFY loadedChanged)
    Q_PROPERTY(bool empty READ empty NOTIFY countChanged)
    Q_PROPERTY(int openedId READ openedId NOTIFY openedChanged)
    Q_PROPERTY(int openedRow READ openedRow NOTIFY openedChanged)
    Q_PROPERTY(bool opening READ opening NOTIFY openingChanged)
    Q_PROPERTY(bool starting READ starting NOTIFY startingChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(bool rail READ rail WRITE setRail NOTIFY railChanged)
    Q_PROPERTY(QString railToggleText READ railToggleText NOTIFY railChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    enum Role { IdRole = Qt::UserRole + 1, TitleRole, ShownTitleRole, LineCountRole, PendingRole };
    Q_ENUM(Role)

    explicit NotesPanel(QObject *parent = nullptr);
    ~NotesPanel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Shows the notes of a deck (in its language) and loads their list; the same deck again
    // refreshes the list and keeps the open note.
    QCoro::Task<> load(int deckId, QString language);
    Q_INVOKABLE void openDeck(int deckId, const QString &language);
    // Opens a note of the list in the editor, loading it first if it was not read yet.
    QCoro::Task<> openNote(int noteId);
    Q_INVOKABLE void open(int noteId);
    // "New note": an empty note made on the server, added first to the list and opened.
    QCoro::Task<> create();
    Q_INVOKABLE void newNote();
    Q_INVOKABLE void toggleRail() { setRail(!m_rail); }

    int deckId() const { return m_deckId; }
    QString language() const { return m_language; }
    NoteEditor *editor() const { return m_editor; }
    int count() const { return int(m_shelf.size()); }
    bool loaded() const { return m_loaded; }
    bool empty() const { return m_loaded && m_shelf.isEmpty(); }
    int openedId() const { return m_opened; }
    int openedRow() const;
    bool opening() const { return !m_reading.isEmpty(); }
    bool starting() const { return m_starting; }
    bool working() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }
    bool rail() const { return m_rail; }
    void setRail(bool shown);
    // "Hide the list of notes" while it is shown, "Show the list of notes" while hidden.
    QString railToggleText() const;
    static QString emptyTitle();
    static QString emptyText();
    // "Untitled note" for a note without a title.
    static QString shownTitle(const QString &title);

signals:
    void deckChanged();
    void countChanged();
    void loadedChanged();
    void openedChanged();
    void openingChanged();
    void startingChanged();
    void workingChanged();
    void troubleChanged();
    void railChanged();

private:
    void show(const Note &note);
    void noteSaved(const Note &note);
    // The open note's lines gained or lost their margin: its row says how many still wait.
    void marginTaken();
    void noteRemoved(int noteId);
    int rowOf(int noteId) const;
    void setLoaded(bool loaded);

    APIClient &m_api;
    ServerCalls m_calls{this, &NotesPanel::workingChanged, &NotesPanel::troubleChanged};
    NoteEditor *m_editor;
    int m_deckId = 0;
    QString m_language;
    QList<NoteSummary> m_shelf;
    QHash<int, Note> m_notes;
    QSet<int> m_reading;
    int m_opened = 0;
    bool m_loaded = false;
    bool m_starting = false;
    bool m_rail = true;
};

} // namespace orvel
