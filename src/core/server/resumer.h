#pragma once

#ifndef Q_MOC_RUN // moc does not parse <coroutine>'s concepts
#include <coroutine>
#endif
#include <QObject>
#include <QPointer>

namespace orvel {

// Lets one coroutine wait until something happens: `co_await resumer.wait()` suspends it, and
// wake() resumes it once, from the event loop (never inside the caller of wake(), which may be a
// network reply's own signal). Wakes that come before the next wait() are not kept: the waiter
// checks its condition before it waits. QCoro's signal awaiter is not used for this: it queues
// one resumption per emission, so a second emission resumes a coroutine that has moved on or
// finished.
class Resumer : public QObject {
public:
    using QObject::QObject;

    class Awaiter {
    public:
        explicit Awaiter(Resumer *resumer) : m_resumer(resumer) {}
        // Moved only before it suspends (co_await materialises it), when it holds no waiter.
        Awaiter(Awaiter &&) = default;
        Awaiter &operator=(Awaiter &&) = delete;
        ~Awaiter();
        bool await_ready() const noexcept { return !m_resumer; }
        void await_suspend(std::coroutine_handle<> waiter) noexcept;
        void await_resume() const noexcept {}

    private:
        QPointer<Resumer> m_resumer;
        std::coroutine_handle<> m_waiter;
    };

    Awaiter wait() { return Awaiter(this); }
    void wake();

private:
    std::coroutine_handle<> m_waiter;
    bool m_wakeQueued = false;
};

} // namespace orvel
