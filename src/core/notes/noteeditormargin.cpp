// The margin side of the note editor: the runs over the note, margin as you go, remarks edited,
// taken deeper and folded, and cards made from lines.
#include "app/appstate.h"
#include "app/timings.h"
#include "library/cardchanges.h"
#include "notes/noteeditor.h"
#include "notes/notetexts.h"
#include "notes/notetitle.h"
#include "server/apiclient.h"

#include <algorithm>

namespace orvel {

namespace {

bool blankText(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c == u' ' || c == u'\t'; });
}

} // namespace

QString NoteEditor::askText() const
{
    const int pending = pendingCount();
    return pending > 0 ? notetexts::askText(pending) : QString();
}

QString NoteEditor::askTitle() const
{
    const int pending = pendingCount();
    return pending > 0 ? notetexts::askTitle(pending) : QString();
}

QString NoteEditor::allAnnotatedText() const
{
    if (pendingCount() > 0)
        return {};
    // A note with nothing written has no margin to speak of.
    const QList<Draft> &drafts = m_lines->drafts();
    const bool written = std::any_of(drafts.begin(), drafts.end(),
                                     [](const Draft &draft) { return !blankText(draft.text); });
    return written ? notetexts::allAnnotated() : QString();
}

QString NoteEditor::hint() const
{
    const int pending = pendingCount();
    return pending > 0 ? notetexts::hint(pending) : QString();
}

QString NoteEditor::progressText() const
{
    return m_annotating && m_reading ? notetexts::reading(m_done, m_total) : QString();
}

void NoteEditor::setOutcome(const QString &outcome)
{
    if (m_outcome == outcome)
        return;
    m_outcome = outcome;
    emit runChanged();
}

void NoteEditor::setCardMade(const QString &text)
{
    if (m_cardMade == text)
        return;
    m_cardMade = text;
    emit cardMadeChanged();
}

void NoteEditor::takeMargin(const Note &note)
{
    QHash<int, QList<Annotation>> margins;
    for (const NoteLine &line : note.lines) {
        const int row = m_lines->rowOfId(line.id);
        if (row < 0)
            continue;
        margins.insert(line.id, line.annotations);
        Draft draft = m_lines->at(row);
        if (draft.annotations != line.annotations) {
            draft.annotations = line.annotations;
            m_lines->replace(row, draft);
        }
        m_lines->setAnnotatedText(draft.key, line.annotatedText);
    }
    // The server holds this margin already: it is neither a change to save nor one to undo.
    for (NoteDraftLine &held : m_acknowledged.lines)
        if (held.id && margins.contains(*held.id))
            held.annotations = margins.value(*held.id);
    m_history.patch([&margins](Draft &draft) {
        if (draft.id && margins.contains(*draft.id))
            draft.annotations = margins.value(*draft.id);
    });
    emit linesChanged();
    emit marginChanged();
}

// Runs over the note.

void NoteEditor::askForMargin()
{
    if (pendingCount() > 0)
        annotate(false);
}

void NoteEditor::annotateAll()
{
    annotate(true);
}

QCoro::Task<> NoteEditor::annotate(bool all)
{
    if (m_annotating || !m_loaded || m_deleted)
        co_return;
    const auto alive = m_alive;
    const quint64 generation = m_generation;
    m_annotating = true;
    m_reading = false;
    m_done = m_total = 0;
    m_outcome.clear();
    m_marginTimer.stop();
    emit runChanged();
    // The server annotates what it holds, so it first gets what is on screen.
    const bool saved = co_await settle();
    if (!*alive)
        co_return;
    if (!saved || generation != m_generation) {
        m_annotating = false;
        emit runChanged();
        co_return;
    }
    m_reading = true;
    m_calls.setTrouble({});
    emit runChanged();
    try {
        EventStream<AnnotateEvent> stream = m_api.annotate(m_noteId, all);
        m_stream = stream.handle();
        while (std::optional<AnnotateEvent> event = co_await stream.next()) {
            if (!*alive)
                co_return;
            if (generation != m_generation)
                break;
            switch (event->kind) {
            case AnnotateEvent::Kind::Start:
                m_total = event->total;
                break;
            case AnnotateEvent::Kind::Progress:
                m_done = event->done;
                m_total = event->total;
                break;
            case AnnotateEvent::Kind::Failed:
                m_calls.setTrouble(event->message);
                break;
            case AnnotateEvent::Kind::Done: {
                takeMargin(event->note);
                m_outcome = notetexts::annotated(event->annotated);
                if (blankText(m_title)) {
                    QList<Draft> lines;
                    for (const NoteLine &line : event->note.lines)
                        lines.append(Draft::fromLine(line));
                    const QString title = orvel::suggestedTitle(lines);
                    if (!title.isEmpty())
                        setTitle(title);
                }
                break;
            }
            case AnnotateEvent::Kind::Unknown:
                break;
            }
            emit runChanged();
        }
    } catch (const ServerError &error) {
        if (!*alive)
            co_return;
        m_calls.setTrouble(error.message());
    }
    if (!*alive)
        co_return;
    m_stream = nullptr;
    m_annotating = false;
    m_reading = false;
    emit runChanged();
}

// Margin as you go.

bool NoteEditor::marginAsYouGo() const
{
    const std::optional<Preferences> &preferences = m_state.preferences();
    return preferences && preferences->marginAsYouGo.value_or(false);
}

void NoteEditor::armMarginAsYouGo()
{
    if (marginAsYouGo() && !m_annotating && unread() >= 0)
        m_marginTimer.start(Timings::shared().marginAsYouGo);
}

int NoteEditor::unread() const
{
    for (int row = 0; row < m_lines->count(); ++row) {
        const Draft &draft = m_lines->at(row);
        // Never a line the server has not got, one with remarks (a stale margin is replaced only
        // when asked), a blank one, or the line being typed in.
        if (!draft.id || !draft.annotations.isEmpty() || blankText(draft.text) || row == m_caret)
            continue;
        if (m_lines->pending(row))
            return row;
    }
    return -1;
}

QCoro::Task<> NoteEditor::annotateQuietly()
{
    if (m_annotating || !m_loaded || m_deleted || dirty() || !marginAsYouGo())
        co_return;
    const int row = unread();
    if (row < 0)
        co_return;
    const auto alive = m_alive;
    const quint64 generation = m_generation;
    const int lineId = *m_lines->at(row).id;
    auto reply =
        co_await m_calls.run(m_api.annotateLine(m_noteId, lineId), CallOptions().background());
    if (!*alive || reply.gone() || generation != m_generation)
        co_return;
    // A failure leaves the line pending; the next save tries again.
    if (!reply)
        co_return;
    Note one = *reply;
    one.lines.removeIf([lineId](const NoteLine &line) { return line.id != lineId; });
    takeMargin(one);
    // The next line that wants a margin gets it after the same pause, unless typing resumes.
    if (!dirty() && !m_saveTimer.isActive() && !m_saving)
        armMarginAsYouGo();
}

// Remarks.

void NoteEditor::editRemark(int line, int remark, const QString &body)
{
    if (!m_lines->hasRemark(line, remark))
        return;
    Draft draft = m_lines->at(line);
    if (blankText(body)) {
        m_lines->remarkRemoved(line, remark);
        draft.annotations.remove(remark);
    } else {
        Annotation &edited = draft.annotations[remark];
        if (edited.body == body)
            return;
        edited.body = body;
        edited.edited = true;
    }
    m_lines->replace(line, draft);
    changed();
}

void NoteEditor::setRemarkKind(int line, int remark, const QString &kind)
{
    if (!m_lines->hasRemark(line, remark))
        return;
    Draft draft = m_lines->at(line);
    if (!Annotation::kindFromRawValue(kind)) {
        m_calls.setTrouble(notetexts::unknownKind(kind));
        return;
    }
    Annotation &edited = draft.annotations[remark];
    if (edited.kind == kind)
        return;
    edited.kind = kind;
    edited.edited = true;
    m_lines->replace(line, draft);
    changed();
}

void NoteEditor::deeper(int line, int remark)
{
    if (!m_loaded || !m_lines->hasRemark(line, remark))
        return;
    const Draft &draft = m_lines->at(line);
    const QList<Deeper> &levels = draft.annotations[remark].deeper;
    const int shown = m_lines->unfolded(line, remark);
    // Levels already written are unfolded without asking the server again.
    if (shown < levels.size()) {
        m_lines->setUnfolded(line, remark, shown + 1);
        return;
    }
    if ((shown > 0 && levels[shown - 1].last) || m_lines->deepening())
        return;
    deepen(draft.key, remark);
}

void NoteEditor::lessDeep(int line, int remark)
{
    const int shown = m_lines->unfolded(line, remark);
    if (shown > 0)
        m_lines->setUnfolded(line, remark, shown - 1);
}

QCoro::Task<> NoteEditor::deepen(QUuid key, int remark)
{
    const auto alive = m_alive;
    const quint64 generation = m_generation;
    m_lines->setDeepening(key, remark);
    int row = m_lines->rowOf(key);
    if (!m_lines->at(row).id) {
        const bool saved = co_await settle();
        if (!*alive)
            co_return;
        row = m_lines->rowOf(key);
        if (!saved || row < 0 || !m_lines->at(row).id || generation != m_generation) {
            m_lines->clearDeepening();
            co_return;
        }
    }
    const int lineId = *m_lines->at(row).id;
    auto reply = co_await m_calls.run(m_api.deepen(m_noteId, lineId, remark));
    if (!*alive || reply.gone())
        co_return;
    m_lines->clearDeepening();
    row = m_lines->rowOf(key);
    if (!reply || generation != m_generation || row < 0)
        co_return;
    Draft draft = m_lines->at(row);
    if (remark >= draft.annotations.size())
        co_return;
    draft.annotations[remark].deeper.append(*reply);
    m_lines->replace(row, draft);
    m_lines->setUnfolded(row, remark, int(draft.annotations[remark].deeper.size()));
    changed();
}

// Cards.

void NoteEditor::makeCard(int line)
{
    if (!m_loaded || m_makingCard || line < 0 || line >= m_lines->count())
        return;
    if (blankText(m_lines->at(line).text))
        return;
    cardFrom(m_lines->at(line).key);
}

QCoro::Task<> NoteEditor::cardFrom(QUuid key)
{
    const auto alive = m_alive;
    const quint64 generation = m_generation;
    m_makingCard = true;
    m_cardMade.clear();
    emit cardMadeChanged();
    int row = m_lines->rowOf(key);
    if (!m_lines->at(row).id) {
        const bool saved = co_await settle();
        if (!*alive)
            co_return;
        row = m_lines->rowOf(key);
        if (!saved || row < 0 || !m_lines->at(row).id || generation != m_generation) {
            m_makingCard = false;
            emit cardMadeChanged();
            co_return;
        }
    }
    const Draft &draft = m_lines->at(row);
    // The word the margin picked out of the line, or (none) the server takes the line itself.
    std::optional<QString> term;
    for (const Annotation &remark : draft.annotations) {
        if (!blankText(remark.term)) {
            term = remark.term;
            break;
        }
    }
    auto reply = co_await m_calls.run(m_api.cardFromLine(m_noteId, *draft.id, term));
    if (!*alive || reply.gone())
        co_return;
    m_makingCard = false;
    if (reply && generation == m_generation)
        m_cardMade = notetexts::cardMade(reply->card.term, reply->already);
    emit cardMadeChanged();
    if (!reply)
        co_return;
    // The deck's card list shows the card: a new one goes first, a known one is refreshed.
    if (reply->already)
        CardChanges::shared().announce(reply->card);
    else
        CardChanges::shared().announceAdded(reply->card);
}

} // namespace orvel
