#include "notes/journalreplay.h"

#include "app/appstate.h"
#include "app/services.h"
#include "app/timings.h"
#include "notes/claimnotice.h"
#include "notes/journalclaim.h"
#include "server/apiclient.h"

#include <QPointer>

namespace orvel {

namespace {

QList<NoteDraftLine> keptLines(const QList<Draft> &drafts)
{
    QList<NoteDraftLine> lines;
    for (const Draft &draft : drafts)
        if (draft.kept())
            lines.append(draft.toDraftLine());
    return lines;
}

} // namespace

JournalReplay::JournalReplay(QObject *parent)
    : QObject(parent), m_state(Services::current().state()), m_api(Services::current().api())
{
    m_retry.setSingleShot(false);
    connect(&m_retry, &QTimer::timeout, this, &JournalReplay::tick);
    connect(&m_state, &AppState::authChanged, this, &JournalReplay::authChanged);
    // A note its editor let go of (another note opened, the editor closed) may leave lines the
    // server lacks: they go now, not on the next round. Queued, so that an editor that takes the
    // note straight back keeps it, and so that nothing starts while the app is shutting down.
    connect(&ClaimNotice::shared(), &ClaimNotice::released, this, &JournalReplay::replay,
            Qt::QueuedConnection);
    refreshWaiting();
    authChanged();
}

void JournalReplay::replay()
{
    if (!m_state.signedIn())
        return;
    if (m_running) {
        m_again = true;
        return;
    }
    replaying();
}

void JournalReplay::authChanged()
{
    if (!m_state.signedIn()) {
        m_retry.stop();
        return;
    }
    m_retry.start(Timings::shared().journalRetry);
    replay();
}

void JournalReplay::tick()
{
    // Entries appear on disk from open editors too (a save that failed before the editor was
    // closed), so each tick looks again rather than only after a failed run. A tick during a run
    // adds nothing: that run reads every entry, and asking it to go round again would keep a run
    // that takes longer than the retry interval from ever ending.
    refreshWaiting();
    if (m_running)
        return;
    const QList<int> notes = m_journal.notes();
    for (const int note : notes)
        if (!JournalClaim::claimed(note)) {
            replay();
            return;
        }
}

void JournalReplay::refreshWaiting()
{
    const int waiting = int(m_journal.notes().size());
    if (waiting == m_waiting)
        return;
    m_waiting = waiting;
    emit waitingChanged();
}

QCoro::Task<> JournalReplay::replaying()
{
    QPointer<JournalReplay> self(this);
    m_running = true;
    do {
        m_again = false;
        const QList<int> notes = m_journal.notes();
        for (const int note : notes) {
            if (JournalClaim::claimed(note))
                continue;
            std::optional<JournalEntry> entry = m_journal.read(note);
            if (!entry)
                continue;
            const Outcome outcome = co_await save(std::move(*entry));
            if (outcome == Outcome::Gone || !self)
                co_return;
            refreshWaiting();
            if (outcome == Outcome::Unreachable)
                break;
        }
    } while (m_again && m_state.signedIn());
    m_running = false;
    refreshWaiting();
    emit replayed();
}

QCoro::Task<JournalReplay::Outcome> JournalReplay::save(JournalEntry entry)
{
    const auto saved = co_await m_calls.run(
        m_api.saveNote(entry.noteId, entry.title, keptLines(entry.drafts)), CallOptions().quiet());
    if (saved.gone())
        co_return Outcome::Gone;
    if (saved) {
        m_journal.forget(entry.noteId, entry);
        co_return Outcome::Saved;
    }
    if (saved.status() == 404) {
        const Outcome outcome = co_await recreate(std::move(entry));
        co_return outcome;
    }
    co_return saved.status() == 0 ? Outcome::Unreachable : Outcome::Kept;
}

QCoro::Task<JournalReplay::Outcome> JournalReplay::recreate(JournalEntry entry)
{
    if (entry.deckId <= 0)
        co_return Outcome::Kept;
    const auto made = co_await m_calls.run(m_api.createNote(entry.deckId, entry.title, QString()),
                                           CallOptions().quiet());
    if (made.gone())
        co_return Outcome::Gone;
    if (!made)
        co_return made.status() == 0 ? Outcome::Unreachable : Outcome::Kept;

    // The lines move to the new note: as new lines there, since their ids named lines of the
    // note that is gone. The entry moves with them first, so that a failed save below is
    // retried on the new note rather than making yet another one.
    JournalEntry moved = entry;
    moved.noteId = made->id;
    for (Draft &draft : moved.drafts)
        draft.id.reset();
    const bool movedOnDisk = m_journal.keep(moved);
    if (movedOnDisk)
        m_journal.forget(entry.noteId, entry);

    const auto saved = co_await m_calls.run(
        m_api.saveNote(moved.noteId, moved.title, keptLines(moved.drafts)), CallOptions().quiet());
    if (saved.gone())
        co_return Outcome::Gone;
    if (!saved)
        co_return saved.status() == 0 ? Outcome::Unreachable : Outcome::Kept;
    if (movedOnDisk)
        m_journal.forget(moved.noteId, moved);
    else
        m_journal.forget(entry.noteId, entry);
    co_return Outcome::Saved;
}

} // namespace orvel
