#include "notes/notespanel.h"

#include "app/services.h"
#include "notes/noteeditor.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

namespace orvel {

NotesPanel::NotesPanel(QObject *parent)
    : QAbstractListModel(parent), m_api(Services::current().api()), m_editor(new NoteEditor(this)),
      m_rail(LocalSettings::store().value(settingskeys::notesRail(), true).toBool())
{
    connect(m_editor, &NoteEditor::saved, this, &NotesPanel::noteSaved);
    connect(m_editor, &NoteEditor::removed, this, &NotesPanel::noteRemoved);
    connect(m_editor, &NoteEditor::marginChanged, this, &NotesPanel::marginTaken);
}

NotesPanel::~NotesPanel() = default;

int NotesPanel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shelf.size());
}

QVariant NotesPanel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const NoteSummary &note = m_shelf[index.row()];
    switch (role) {
    case IdRole:
        return note.id;
    case TitleRole:
        return note.title;
    case Qt::DisplayRole:
    case ShownTitleRole:
        return shownTitle(note.title);
    case LineCountRole:
        return note.lineCount;
    case PendingRole:
        return note.pendingCount;
    default:
        return {};
    }
}

QHash<int, QByteArray> NotesPanel::roleNames() const
{
    return {{IdRole, "noteId"},
            {TitleRole, "title"},
            {ShownTitleRole, "shownTitle"},
            {LineCountRole, "lineCount"},
            {PendingRole, "pendingCount"}};
}

QCoro::Task<> NotesPanel::load(int deckId, QString language)
{
    if (deckId != m_deckId) {
        beginResetModel();
        m_shelf.clear();
        m_notes.clear();
        m_deckId = deckId;
        m_language = language;
        m_opened = 0;
        const bool wasReading = !m_reading.isEmpty();
        m_reading.clear();
        endResetModel();
        if (wasReading)
            emit openingChanged();
        setLoaded(false);
        emit countChanged();
        emit deckChanged();
        emit openedChanged();
        m_editor->close();
    }
    const auto notes = co_await m_calls.run(m_api.notes(deckId), CallOptions().latest());
    if (!notes)
        co_return;
    beginResetModel();
    m_shelf = *notes;
    endResetModel();
    setLoaded(true);
    emit countChanged();
    emit openedChanged();
}

void NotesPanel::openDeck(int deckId, const QString &language)
{
    load(deckId, language);
}

QCoro::Task<> NotesPanel::openNote(int noteId)
{
    if (noteId == m_opened && m_editor->noteId() == noteId)
        co_return;
    if (const auto known = m_notes.constFind(noteId); known != m_notes.constEnd()) {
        show(*known);
        co_return;
    }
    // A note already on its way is not asked for again; the answer opens it.
    const bool first = m_reading.isEmpty();
    if (m_reading.contains(noteId)) {
        m_opened = noteId;
        emit openedChanged();
        co_return;
    }
    m_reading.insert(noteId);
    m_opened = noteId;
    emit openedChanged();
    if (first)
        emit openingChanged();
    const auto note = co_await m_calls.run(m_api.note(noteId));
    if (note.gone())
        co_return;
    m_reading.remove(noteId);
    if (m_reading.isEmpty())
        emit openingChanged();
    if (!note)
        co_return;
    if (note->deckId != m_deckId && note->deckId != 0)
        co_return; // the learner went to another deck meanwhile
    m_notes.insert(noteId, *note);
    if (m_opened == noteId)
        show(*note);
}

void NotesPanel::open(int noteId)
{
    openNote(noteId);
}

QCoro::Task<> NotesPanel::create()
{
    if (m_starting || m_deckId == 0)
        co_return;
    m_starting = true;
    emit startingChanged();
    const int deckId = m_deckId;
    const auto note = co_await m_calls.run(m_api.createNote(deckId, QString(), QString()));
    if (note.gone())
        co_return;
    m_starting = false;
    emit startingChanged();
    if (!note || deckId != m_deckId)
        co_return;
    NoteSummary summary;
    summary.id = note->id;
    summary.title = note->title;
    summary.createdAt = note->createdAt;
    summary.updatedAt = note->updatedAt;
    summary.lineCount = int(note->lines.size());
    // A listing asked for at the same time may already hold the new note.
    if (rowOf(note->id) < 0) {
        beginInsertRows({}, 0, 0);
        m_shelf.prepend(summary);
        endInsertRows();
        emit countChanged();
    }
    m_notes.insert(note->id, *note);
    show(*note);
}

void NotesPanel::newNote()
{
    create();
}

int NotesPanel::openedRow() const
{
    return rowOf(m_opened);
}

void NotesPanel::setRail(bool shown)
{
    if (shown == m_rail)
        return;
    m_rail = shown;
    LocalSettings::store().setValue(settingskeys::notesRail(), shown);
    emit railChanged();
}

QString NotesPanel::railToggleText() const
{
    return m_rail ? QStringLiteral("Hide the list of notes")
                  : QStringLiteral("Show the list of notes");
}

QString NotesPanel::emptyTitle()
{
    return QStringLiteral("Nothing written down yet");
}

QString NotesPanel::emptyText()
{
    return QStringLiteral("A note is a page of phrases and questions — the things you heard and "
                          "didn’t quite catch. Write them as they come, then ask for the margin.");
}

QString NotesPanel::shownTitle(const QString &title)
{
    return title.trimmed().isEmpty() ? QStringLiteral("Untitled note") : title;
}

void NotesPanel::show(const Note &note)
{
    m_opened = note.id;
    emit openedChanged();
    m_editor->open(note, m_deckId, m_language);
}

void NotesPanel::noteSaved(const Note &note)
{
    // The editor holds the newest lines now; the copy kept here follows, so reopening the note
    // shows what was saved rather than what was first read.
    if (m_notes.contains(note.id))
        m_notes.insert(note.id, note);
    const int row = rowOf(note.id);
    if (row < 0)
        return;
    NoteSummary &summary = m_shelf[row];
    summary.title = note.title;
    summary.updatedAt = note.updatedAt;
    summary.lineCount = int(note.lines.size());
    int pending = 0;
    for (const NoteLine &line : note.lines)
        pending += line.state != NoteLine::rawValue(NoteLine::State::Annotated);
    summary.pendingCount = pending;
    emit dataChanged(index(row), index(row));
}

void NotesPanel::marginTaken()
{
    const int row = m_editor->loaded() ? rowOf(m_editor->noteId()) : -1;
    if (row < 0)
        return;
    NoteSummary &summary = m_shelf[row];
    const int pending = m_editor->pendingCount();
    if (summary.pendingCount == pending)
        return;
    summary.pendingCount = pending;
    emit dataChanged(index(row), index(row), {PendingRole});
}

void NotesPanel::noteRemoved(int noteId)
{
    m_notes.remove(noteId);
    const int row = rowOf(noteId);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    m_shelf.removeAt(row);
    endRemoveRows();
    emit countChanged();
    if (m_opened == noteId) {
        m_opened = 0;
        emit openedChanged();
        // The note that took its place in the list opens, so the page is never left blank while
        // the deck has notes.
        if (!m_shelf.isEmpty())
            open(m_shelf[qMin(row, int(m_shelf.size()) - 1)].id);
    }
}

int NotesPanel::rowOf(int noteId) const
{
    for (int row = 0; row < m_shelf.size(); ++row)
        if (m_shelf[row].id == noteId)
            return row;
    return -1;
}

void NotesPanel::setLoaded(bool loaded)
{
    if (loaded == m_loaded)
        return;
    m_loaded = loaded;
    emit loadedChanged();
}

} // namespace orvel
