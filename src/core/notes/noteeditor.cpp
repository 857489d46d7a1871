#include "notes/noteeditor.h"

#include "app/appstate.h"
#include "app/services.h"
#include "app/timings.h"
#include "notes/journalclaim.h"
#include "notes/notetexts.h"
#include "notes/notetitle.h"
#include "server/apiclient.h"
#include "server/resumer.h"
#include "server/streamreply.h"

#include <QMetaObject>
#include <QSet>

#include <algorithm>
#include <utility>

namespace orvel {

namespace {

QString trimmedOfSpaces(QString text)
{
    qsizetype from = 0;
    while (from < text.size() && (text[from] == u' ' || text[from] == u'\t'))
        ++from;
    qsizetype to = text.size();
    while (to > from && (text[to - 1] == u' ' || text[to - 1] == u'\t'))
        --to;
    return text.mid(from, to - from);
}

QList<NoteEditor *> &liveEditors()
{
    static QList<NoteEditor *> editors;
    return editors;
}

} // namespace

NoteEditor::NoteEditor(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_state(Services::current().state()),
      m_calls(this, &NoteEditor::workingChanged, &NoteEditor::troubleChanged),
      m_lines(new NoteLines(this)), m_commands(new NoteCommands(*this, this)),
      m_pictures(new NotePictures(*this, this))
{
    for (QTimer *timer : {&m_saveTimer, &m_settleTimer, &m_marginTimer, &m_retryTimer})
        timer->setSingleShot(true);
    connect(&m_saveTimer, &QTimer::timeout, this, [this] { save(); });
    connect(&m_settleTimer, &QTimer::timeout, this, &NoteEditor::recordNow);
    connect(&m_marginTimer, &QTimer::timeout, this, [this] { annotateQuietly(); });
    connect(&m_retryTimer, &QTimer::timeout, this, [this] {
        if (dirty())
            save();
    });
    liveEditors().append(this);
}

const QList<NoteEditor *> &NoteEditor::editors()
{
    return liveEditors();
}

NoteEditor::~NoteEditor()
{
    liveEditors().removeOne(this);
    // What the server has not acknowledged stays in the journal for the next time.
    if (m_loaded && !m_deleted)
        m_keeper.now();
    *m_alive = false;
    // A margin run reading its stream wakes from the event loop, sees the editor gone and drops
    // the stream, which closes the connection.
    if (m_stream) {
        QPointer<StreamReply> stream = m_stream;
        QMetaObject::invokeMethod(
            stream, [stream] { stream->cancel(); }, Qt::QueuedConnection);
    }
    // Whoever waits for a save under way wakes, sees the editor gone and stops.
    wakeSaveWaiters();
}

void NoteEditor::open(const Note &note, int deckId, const QString &language)
{
    m_commands->stop();
    m_pictures->closePicker();
    // Lines of the note before that the server has not got stay in the journal.
    if (m_loaded && !m_deleted)
        m_keeper.now();
    for (QTimer *timer : {&m_saveTimer, &m_settleTimer, &m_marginTimer, &m_retryTimer})
        timer->stop();
    ++m_generation;
    m_noteId = note.id;
    m_deckId = deckId != 0 ? deckId : note.deckId;
    m_language = language;
    QList<Draft> stored;
    stored.reserve(note.lines.size());
    for (const NoteLine &line : note.lines)
        stored.append(Draft::fromLine(line));

    // Lines typed here that never reached the server come back in place of the server's.
    const std::optional<JournalEntry> kept = m_keeper.open(note.id);
    const NoteSave held = NoteSave::of(note.title, stored);
    bool restoring = false;
    if (kept) {
        const NoteSave journaled = NoteSave::of(kept->title, kept->drafts);
        restoring = journaled.title != held.title || journaled.lines != held.lines;
    }
    QList<Draft> drafts = restoring ? recovered(*kept, note) : stored;
    if (drafts.isEmpty())
        drafts.append(Draft::empty());
    m_lines->reset(drafts);
    for (const NoteLine &line : note.lines) {
        const int row = m_lines->rowOfId(line.id);
        if (row >= 0)
            m_lines->setAnnotatedText(m_lines->at(row).key, line.annotatedText);
    }
    m_title = restoring ? kept->title : note.title;
    m_acknowledged = held;
    m_history.reset(moment());
    m_loaded = true;
    m_deleted = false;
    m_confirmingDelete = false;
    m_failures = 0;
    m_saveAgain = false;
    m_annotating = false;
    m_reading = false;
    m_outcome.clear();
    m_cardMade.clear();
    m_calls.setTrouble({});
    setRecovered(restoring ? notetexts::recovered() : QString());
    setLocalOnly(restoring);
    m_caret = -1;
    m_caretPlace = LinePlace::Keep;
    emit noteChanged();
    emit titleChanged();
    emit linesChanged();
    emit historyChanged();
    emit confirmingDeleteChanged();
    emit marginChanged();
    emit runChanged();
    emit cardMadeChanged();
    // A new note starts with the caret in its one empty line; an old one waits for a click.
    if (note.lines.isEmpty() && m_lines->count() == 1 && m_lines->at(0).text.isEmpty())
        setCaret(0, LinePlace::End);
    else
        emit caretChanged();
    if (restoring)
        save();
    else
        m_keeper.now(); // an entry the server already holds is forgotten
}

QList<Draft> NoteEditor::recovered(const JournalEntry &kept, const Note &note) const
{
    QList<Draft> drafts = kept.drafts;
    QSet<int> claimed;
    for (const Draft &draft : drafts)
        if (draft.id)
            claimed.insert(*draft.id);
    for (Draft &draft : drafts) {
        if (draft.id || !draft.kept())
            continue;
        for (const NoteLine &line : note.lines) {
            if (!claimed.contains(line.id) && line.text == draft.text) {
                draft.id = line.id;
                claimed.insert(line.id);
                break;
            }
        }
    }
    return drafts;
}

JournalEntry NoteEditor::journalEntry() const
{
    return JournalEntry{m_noteId, m_deckId, m_title, m_lines->drafts()};
}

void NoteEditor::setRecovered(const QString &text)
{
    if (m_recovered == text)
        return;
    m_recovered = text;
    emit recoveredChanged();
}

// Title and texts.

void NoteEditor::setTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    emit titleChanged();
    changed();
}

QString NoteEditor::titlePlaceholder() const
{
    return notetexts::untitled();
}

QString NoteEditor::suggestedTitle() const
{
    return orvel::suggestedTitle(m_lines->drafts());
}

QString NoteEditor::localOnlyText() const
{
    return m_localOnly ? notetexts::localOnly() : QString();
}

QString NoteEditor::deleteQuestion() const
{
    // The lines the note holds: blank ones are not kept, but a note is never said to have none.
    const QList<Draft> &drafts = m_lines->drafts();
    const auto kept = std::count_if(drafts.begin(), drafts.end(),
                                    [](const Draft &draft) { return draft.kept(); });
    return notetexts::deleteQuestion(std::max(1, int(kept)));
}

QString NoteEditor::placeholder() const
{
    return notetexts::linePlaceholder();
}

QString NoteEditor::remarkHint() const
{
    return notetexts::remarkHint();
}

QString NoteEditor::lessDeepText() const
{
    return notetexts::lessDeep();
}

QString NoteEditor::makeCardText() const
{
    return notetexts::makeCard();
}

// Keys and typing.

bool NoteEditor::key(int index, int lineKey)
{
    if (!m_loaded)
        return false;
    const auto which = LineKey(lineKey);
    // A command line's menu has the arrows, Return and Escape while it is open.
    if (index >= 0 && index == m_commands->row()) {
        if ((which == LineKey::Up && m_commands->move(-1)) ||
            (which == LineKey::Down && m_commands->move(1)) ||
            (which == LineKey::Newline && m_commands->returnPressed(index)) ||
            (which == LineKey::Escape && m_commands->escape()))
            return true;
    }
    switch (which) {
    case LineKey::Undo:
        return step(true);
    case LineKey::Redo:
        return step(false);
    case LineKey::CommandReturn:
        askForMargin();
        return true;
    case LineKey::Escape:
        if (m_confirmingDelete) {
            cancelDelete();
            return true;
        }
        if (!m_cardMade.isEmpty()) {
            setCardMade({});
            return true;
        }
        if (!m_outcome.isEmpty()) {
            setOutcome({});
            return true;
        }
        return false;
    case LineKey::PasteImage:
        return false;
    default:
        break;
    }
    if (index < 0 || index >= m_lines->count())
        return false;
    switch (which) {
    case LineKey::Newline:
        addLine(index);
        return true;
    case LineKey::DeleteEmpty:
        // Reported for an empty line only; a line with words backspaces as usual.
        if (!m_lines->at(index).text.isEmpty())
            return false;
        deleteLine(index);
        return true;
    case LineKey::DeleteLine:
        deleteLine(index);
        return true;
    case LineKey::Up:
    case LineKey::CrossUp:
    case LineKey::BackTab:
        return go(index, -1, LinePlace::End);
    case LineKey::Down:
    case LineKey::CrossDown:
        return go(index, 1, LinePlace::Start);
    case LineKey::Tab:
        return go(index, 1, LinePlace::End);
    case LineKey::MoveUp:
        return reorder(index, -1);
    case LineKey::MoveDown:
        return reorder(index, 1);
    default:
        return false;
    }
}

bool NoteEditor::pasteText(int index, const QString &text)
{
    if (!m_loaded || index < 0 || index >= m_lines->count())
        return false;
    QStringList pieces;
    for (QString piece : text.split(u'\n')) {
        piece.remove(u'\r');
        piece = trimmedOfSpaces(piece);
        if (!piece.isEmpty())
            pieces.append(piece);
    }
    if (pieces.size() < 2)
        return false;
    m_lines->setText(index, pieces.first());
    for (qsizetype i = 1; i < pieces.size(); ++i)
        m_lines->insert(index + int(i), Draft::withText(pieces[i]));
    setCaret(index + int(pieces.size()) - 1, LinePlace::End);
    changed();
    return true;
}

void NoteEditor::edit(int index, const QString &text)
{
    if (!m_loaded || index < 0 || index >= m_lines->count() || m_lines->at(index).text == text)
        return;
    m_lines->setText(index, text);
    setCaretQuietly(index);
    changed();
    m_commands->lineEdited(index, text);
}

void NoteEditor::rewriteLine(int index, const QString &text)
{
    if (!m_loaded || index < 0 || index >= m_lines->count())
        return;
    settleTyping();
    m_lines->setText(index, text);
    setCaret(index, LinePlace::End);
    changed();
}

void NoteEditor::replaceLine(int index, const QStringList &texts, const QString &source)
{
    if (!m_loaded || index < 0 || index >= m_lines->count() || texts.isEmpty())
        return;
    settleTyping();
    m_lines->remove(index);
    for (qsizetype i = 0; i < texts.size(); ++i) {
        Draft line = Draft::withText(texts[i]);
        line.source = source;
        m_lines->insert(index + int(i), line);
    }
    setCaret(index + int(texts.size()) - 1, LinePlace::End);
    changed();
}

void NoteEditor::setPicture(const QUuid &key, const std::optional<Media> &media,
                            const std::optional<QString> &text)
{
    const int row = m_lines->rowOf(key);
    if (!m_loaded || row < 0)
        return;
    settleTyping();
    Draft line = m_lines->at(row);
    line.media = media;
    if (text)
        line.text = *text;
    m_lines->replace(row, line);
    changed();
}

void NoteEditor::placeCaret(int index)
{
    if (index < -1 || index >= m_lines->count())
        return;
    setCaretQuietly(index);
}

void NoteEditor::setCaret(int index, LinePlace place)
{
    m_commands->caretMoved(index);
    m_caret = index;
    m_caretPlace = place;
    ++m_caretMoves;
    emit caretChanged();
}

void NoteEditor::setCaretQuietly(int index)
{
    if (m_caret == index)
        return;
    m_commands->caretMoved(index);
    m_caret = index;
    m_caretPlace = LinePlace::Keep;
    emit caretChanged();
}

void NoteEditor::addLine(int after)
{
    m_lines->insert(after + 1, Draft::empty());
    setCaret(after + 1, LinePlace::Start);
    changed();
}

void NoteEditor::deleteLine(int index)
{
    m_lines->remove(index);
    if (m_lines->count() == 0)
        m_lines->insert(0, Draft::empty()); // a note always has a line to write in
    setCaret(std::max(0, index - 1), LinePlace::End);
    changed();
}

bool NoteEditor::go(int index, int step, LinePlace place)
{
    const int target = index + step;
    if (target < 0 || target >= m_lines->count())
        return false;
    setCaret(target, place);
    return true;
}

bool NoteEditor::reorder(int index, int step)
{
    const int target = index + step;
    if (m_lines->count() < 2 || target < 0 || target >= m_lines->count())
        return false;
    m_lines->move(index, target);
    setCaret(target, LinePlace::Keep);
    changed();
    return true;
}

// Undo history.

Moment NoteEditor::moment() const
{
    Moment now{m_lines->drafts(), m_title, std::nullopt};
    if (m_caret >= 0 && m_caret < m_lines->count())
        now.caret = m_lines->at(m_caret).key;
    return now;
}

void NoteEditor::remember()
{
    const bool was = canUndo();
    m_settleTimer.start(Timings::shared().undoSnapshot);
    if (was != canUndo())
        emit historyChanged();
}

void NoteEditor::settleTyping()
{
    // What was typed just before a command's change is a step of its own, so undo brings the
    // command line back whatever the timing of the server's answer.
    if (m_settleTimer.isActive())
        recordNow();
}

void NoteEditor::recordNow()
{
    m_settleTimer.stop();
    m_history.record(moment());
    emit historyChanged();
}

bool NoteEditor::step(bool back)
{
    // A change not yet recorded is a step of its own: undo goes back over it first.
    if (m_settleTimer.isActive())
        recordNow();
    const std::optional<Moment> to = back ? m_history.undo() : m_history.redo();
    if (!to)
        return false;
    m_lines->assign(to->drafts);
    if (m_title != to->title) {
        m_title = to->title;
        emit titleChanged();
    }
    const int row = to->caret ? m_lines->rowOf(*to->caret) : -1;
    if (row >= 0)
        setCaret(row, LinePlace::End);
    else if (m_caret >= m_lines->count())
        setCaret(m_lines->count() - 1, LinePlace::End);
    emit historyChanged();
    changed();
    return true;
}

// Saving.

bool NoteEditor::dirty() const
{
    return m_loaded && payload() != m_acknowledged;
}

void NoteEditor::changed()
{
    if (!m_loaded || m_deleted)
        return;
    remember();
    m_marginTimer.stop();
    m_saveTimer.start(Timings::shared().save);
    m_keeper.soon();
    if (!m_saving && !m_localOnly)
        setRecovered({});
    emit linesChanged();
    emit marginChanged();
}

QCoro::Task<bool> NoteEditor::save()
{
    m_saveTimer.stop();
    if (!m_loaded || m_deleted)
        co_return false;
    if (m_saving) {
        m_saveAgain = true;
        co_return false;
    }
    const NoteSave sent = payload();
    if (sent == m_acknowledged)
        co_return true;
    const auto alive = m_alive;
    const quint64 generation = m_generation;
    m_retryTimer.stop();
    // On disk before it goes: whatever happens to the call, the lines are not lost.
    m_keeper.now();
    // Held until the answer is in, also when another note is opened meanwhile: a save of the
    // journal's newer lines for this note must not overtake this one and be overwritten by it.
    const JournalClaim inFlight(m_noteId);
    setSaving(true);
    auto reply = co_await m_calls.run(m_api.saveNote(m_noteId, sent.title, sent.lines),
                                      CallOptions().quiet());
    if (!*alive || reply.gone())
        co_return false;
    setSaving(false);
    const bool again = m_saveAgain;
    m_saveAgain = false;
    const bool current = generation == m_generation && !m_deleted;
    const bool ok = current && bool(reply);
    if (ok) {
        acknowledge(sent, *reply);
        m_failures = 0;
        // Forgotten when the server holds everything; otherwise kept again with the new ids.
        m_keeper.now();
        setLocalOnly(false);
        if (!m_recovered.isEmpty())
            setRecovered(notetexts::recoveredSaved());
    } else if (current) {
        ++m_failures;
        setLocalOnly(true);
        scheduleRetry();
    }
    wakeSaveWaiters();
    if (!current) {
        // The reply was about the note before: the one open now may have its own to send.
        if (!m_deleted && !m_saving && dirty())
            save();
        co_return false;
    }
    if (ok) {
        emit saved(*reply);
        if (!*alive)
            co_return ok;
        if (again && !m_saveTimer.isActive() && !m_saving && dirty())
            save();
        else if (!dirty() && !m_saveTimer.isActive())
            armMarginAsYouGo();
    }
    co_return ok;
}

QCoro::Task<bool> NoteEditor::settle()
{
    const auto alive = m_alive;
    m_saveTimer.stop();
    while (m_saving) {
        Resumer woken;
        m_saveWaiters.append(&woken);
        co_await woken.wait();
        if (!*alive)
            co_return false;
    }
    if (!dirty())
        co_return m_loaded && !m_deleted;
    const bool ok = co_await save();
    co_return *alive &&ok;
}

QCoro::Task<bool> NoteEditor::flush()
{
    m_keeper.now();
    return settle();
}

void NoteEditor::acknowledge(const NoteSave &sent, const Note &reply)
{
    NoteSave held = sent;
    QHash<QUuid, int> ids;
    const qsizetype paired = std::min(sent.keys.size(), reply.lines.size());
    for (qsizetype i = 0; i < paired; ++i) {
        const NoteLine &line = reply.lines[i];
        const QUuid &key = sent.keys[i];
        held.lines[i].id = line.id;
        held.lines[i].annotations = line.annotations;
        ids.insert(key, line.id);
        const int row = m_lines->rowOf(key);
        if (row < 0)
            continue; // deleted while the save was on its way
        Draft draft = m_lines->at(row);
        draft.id = line.id;
        // The server's margin, unless the learner changed the remarks since they were sent.
        if (draft.annotations == sent.lines[i].annotations)
            draft.annotations = line.annotations;
        if (!(draft == m_lines->at(row)))
            m_lines->replace(row, draft);
        m_lines->setAnnotatedText(key, line.annotatedText);
    }
    held.keys.resize(paired);
    held.lines.resize(paired);
    m_acknowledged = held;
    m_history.patch([&ids](Draft &draft) {
        const auto id = ids.constFind(draft.key);
        if (id != ids.cend())
            draft.id = *id;
    });
    emit marginChanged();
}

void NoteEditor::scheduleRetry()
{
    // 2 s, 4 s, … up to 64 s between attempts while the note stays open.
    const int doublings = std::min(m_failures - 1, 5);
    m_retryTimer.start(Timings::shared().saveRetry * (1 << std::max(0, doublings)));
}

void NoteEditor::wakeSaveWaiters()
{
    // Each waiter resumes from the event loop, never inside this call.
    for (const QPointer<Resumer> &waiter : std::exchange(m_saveWaiters, {}))
        if (waiter)
            waiter->wake();
}

void NoteEditor::setSaving(bool saving)
{
    if (m_saving == saving)
        return;
    m_saving = saving;
    emit savingChanged();
}

void NoteEditor::setLocalOnly(bool localOnly)
{
    if (m_localOnly == localOnly)
        return;
    m_localOnly = localOnly;
    emit localOnlyChanged();
}

// Deleting the note.

void NoteEditor::requestDelete()
{
    if (!m_loaded || m_confirmingDelete)
        return;
    m_confirmingDelete = true;
    emit confirmingDeleteChanged();
}

void NoteEditor::cancelDelete()
{
    if (!m_confirmingDelete)
        return;
    m_confirmingDelete = false;
    emit confirmingDeleteChanged();
}

void NoteEditor::confirmDelete()
{
    if (m_confirmingDelete && !m_deleted)
        deleteNote();
}

QCoro::Task<> NoteEditor::deleteNote()
{
    const auto alive = m_alive;
    const int id = m_noteId;
    // No save may recreate lines of a note on its way out.
    m_deleted = true;
    for (QTimer *timer : {&m_saveTimer, &m_marginTimer, &m_retryTimer})
        timer->stop();
    auto reply = co_await m_calls.run(m_api.deleteNote(id));
    if (!*alive || reply.gone())
        co_return;
    m_confirmingDelete = false;
    emit confirmingDeleteChanged();
    if (!reply) {
        m_deleted = false;
        if (dirty())
            m_saveTimer.start(Timings::shared().save);
        co_return;
    }
    m_keeper.drop();
    m_loaded = false;
    emit noteChanged();
    emit removed(id);
}

void NoteEditor::close()
{
    m_commands->stop();
    m_pictures->closePicker();
    if (!m_loaded)
        return;
    if (!m_deleted)
        m_keeper.leave();
    for (QTimer *timer : {&m_saveTimer, &m_settleTimer, &m_marginTimer, &m_retryTimer})
        timer->stop();
    ++m_generation;
    m_loaded = false;
    m_noteId = 0;
    m_lines->reset({});
    m_title.clear();
    emit noteChanged();
    emit titleChanged();
    emit linesChanged();
}

} // namespace orvel
