#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <QString>

namespace cardserver {

// A counting semaphore for costly work (password hashing, speech tools): at most `workers`
// holders at once; a caller that finds them all taken queues, and gives up once it has waited
// `queueDeadline`, so a flood of requests costs time, not memory or processes.
class WorkGate {
public:
    // What a caller that waited too long is told.
    static const QString BusyMessage;

    WorkGate(int workers, std::chrono::milliseconds queueDeadline);
    WorkGate(const WorkGate &) = delete;
    WorkGate &operator=(const WorkGate &) = delete;

    // One place at the gate, given back when it goes away.
    class Pass {
    public:
        explicit Pass(WorkGate *gate) : m_gate(gate) {}
        Pass(Pass &&other) noexcept : m_gate(std::exchange(other.m_gate, nullptr)) {}
        Pass &operator=(Pass &&) = delete;
        ~Pass();

    private:
        WorkGate *m_gate;
    };

    // A place, or nothing when none came free within the deadline.
    std::optional<Pass> enter();
    // A place, or ApiError 503 with BusyMessage.
    Pass enterOrBusy();

    int workers() const { return m_workers; }
    int inside() const;

private:
    void leave();

    const int m_workers;
    const std::chrono::milliseconds m_deadline;
    mutable std::mutex m_lock;
    std::condition_variable m_freed;
    int m_inside = 0;
};

} // namespace cardserver
