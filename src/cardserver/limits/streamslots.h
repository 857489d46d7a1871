#pragma once
#include <memory>
#include <mutex>
#include <QHash>

namespace cardserver {

// How many event streams (card writing, imports, margins) each account runs at once. A slot
// is held for the whole of a stream's job and given back when the last copy of it goes, so a
// job that never started gives its slot back too.
class StreamSlots {
public:
    explicit StreamSlots(int perAccount) : m_perAccount(perAccount) {}

    using Slot = std::shared_ptr<void>;
    // A slot, or ApiError 429 when the account already runs as many streams as it may.
    Slot take(qint64 userId);

private:
    void give(qint64 userId);

    const int m_perAccount;
    std::mutex m_lock;
    QHash<qint64, int> m_running;
};

} // namespace cardserver
