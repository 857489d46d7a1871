#include "notes/journalclaim.h"

#include "notes/claimnotice.h"

#include <QHash>

#include <utility>

namespace orvel {

namespace {

// Note id → number of live claims.
QHash<int, int> &holders()
{
    static QHash<int, int> counts;
    return counts;
}

} // namespace

JournalClaim::JournalClaim(int noteId) : m_noteId(noteId)
{
    if (m_noteId != 0)
        ++holders()[m_noteId];
}

JournalClaim::~JournalClaim()
{
    release();
}

JournalClaim::JournalClaim(JournalClaim &&other) noexcept
    : m_noteId(std::exchange(other.m_noteId, 0))
{}

JournalClaim &JournalClaim::operator=(JournalClaim &&other) noexcept
{
    if (this != &other) {
        release();
        m_noteId = std::exchange(other.m_noteId, 0);
    }
    return *this;
}

void JournalClaim::release()
{
    if (m_noteId == 0)
        return;
    auto &counts = holders();
    const int noteId = std::exchange(m_noteId, 0);
    const auto it = counts.find(noteId);
    if (it != counts.end() && --it.value() <= 0) {
        counts.erase(it);
        emit ClaimNotice::shared().released(noteId);
    }
}

bool JournalClaim::claimed(int noteId)
{
    return noteId != 0 && holders().value(noteId) > 0;
}

} // namespace orvel
