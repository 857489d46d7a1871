#include "notes/draftkeeper.h"

#include "app/timings.h"

namespace orvel {

DraftKeeper::DraftKeeper(std::function<JournalEntry()> current, std::function<bool()> needed,
                         QObject *parent)
    : QObject(parent), m_current(std::move(current)), m_needed(std::move(needed))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { now(); });
}

DraftKeeper::~DraftKeeper() = default;

std::optional<JournalEntry> DraftKeeper::open(int noteId)
{
    m_timer.stop();
    m_noteId = noteId;
    m_claim = JournalClaim(noteId);
    m_kept = m_journal.read(noteId);
    return m_kept;
}

void DraftKeeper::soon()
{
    if (m_noteId != 0)
        m_timer.start(Timings::shared().draftKeep);
}

bool DraftKeeper::now()
{
    m_timer.stop();
    if (m_noteId == 0)
        return true;
    if (!m_needed()) {
        forgetKept();
        return true;
    }
    JournalEntry entry = m_current();
    if (m_kept == entry)
        return true;
    const bool kept = m_journal.keep(entry);
    if (kept)
        m_kept = std::move(entry);
    if (m_failed != !kept) {
        m_failed = !kept;
        emit errorChanged();
    }
    return kept;
}

void DraftKeeper::drop()
{
    m_timer.stop();
    if (m_noteId == 0)
        return;
    // Whatever is on disk for the note, this keeper's or an older one.
    if (const std::optional<JournalEntry> stored = m_journal.read(m_noteId))
        m_journal.forget(m_noteId, *stored);
    m_kept.reset();
    m_noteId = 0;
    m_claim.release();
}

void DraftKeeper::leave()
{
    now();
    m_kept.reset();
    m_noteId = 0;
    m_claim.release();
}

void DraftKeeper::forgetKept()
{
    if (!m_kept)
        return;
    m_journal.forget(m_noteId, *m_kept);
    m_kept.reset();
}

} // namespace orvel
