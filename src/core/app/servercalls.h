#pragma once

#include "server/servererror.h"

#include <functional>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <type_traits>
#include <utility>

namespace orvel {

// What a server call run through ServerCalls gave back. False when the call failed, when the
// screen that ran it was destroyed while it ran, or when a newer call of the latest-only kind
// replaced it; in the last two cases `gone()` is true and the caller must touch nothing.
template <typename T> class CallReply {
public:
    explicit operator bool() const { return m_value.has_value(); }
    T &operator*() { return *m_value; }
    const T &operator*() const { return *m_value; }
    T *operator->() { return &*m_value; }
    const T *operator->() const { return &*m_value; }
    std::optional<T> &value() { return m_value; }
    bool gone() const { return m_gone; }
    // Failed while the screen is still there (the failure's text is already in `trouble`).
    bool failed() const { return !m_gone && !m_value; }
    const QString &failure() const { return m_failure; }
    // The HTTP status of a refused call (403, …); 0 when the call went through or never got an
    // answer.
    int status() const { return m_status; }

private:
    template <typename> friend class CallRunner;
    std::optional<T> m_value;
    QString m_failure;
    int m_status = 0;
    bool m_gone = false;
};

template <> class CallReply<void> {
public:
    explicit operator bool() const { return m_done; }
    bool gone() const { return m_gone; }
    bool failed() const { return !m_gone && !m_done; }
    const QString &failure() const { return m_failure; }
    int status() const { return m_status; }

private:
    template <typename> friend class CallRunner;
    bool m_done = false;
    QString m_failure;
    int m_status = 0;
    bool m_gone = false;
};

// How one call shows on its screen; the default clears `trouble`, reads as working while it
// runs and puts a failure's own message into `trouble`. Chain the changes:
// CallOptions().quiet().failingWith(text).
struct CallOptions {
    // Whether the screen reads as working while the call runs.
    bool showsWorking = true;
    // What `trouble` says when the call fails; empty means the server's own message.
    QString failureText;
    // Whether `trouble` is cleared when the call starts.
    bool clearsTrouble = true;
    // Whether a failure goes into `trouble`.
    bool showsFailure = true;
    // Only the newest such call counts: starting one (or abandonLatest()) makes the one still
    // running come back gone, without touching the screen (a list that opens another deck).
    bool latestOnly = false;

    CallOptions quiet() const { return with(&CallOptions::showsWorking, false); }
    CallOptions failingWith(const QString &text) const
    {
        CallOptions options = *this;
        options.failureText = text;
        return options;
    }
    CallOptions keepingTrouble() const { return with(&CallOptions::clearsTrouble, false); }
    // Bookkeeping the screen does without when it fails: no working, no trouble either way.
    CallOptions background() const
    {
        return quiet().keepingTrouble().with(&CallOptions::showsFailure, false);
    }
    CallOptions latest() const { return with(&CallOptions::latestOnly, true); }

private:
    CallOptions with(bool CallOptions::*flag, bool value) const
    {
        CallOptions options = *this;
        options.*flag = value;
        return options;
    }
};

// A screen's server calls: whether any is running (`working`) and the message of the last one
// that failed (`trouble`). The screen owns one, exposes both values as properties, and gets its
// change signals called. run() wraps a call: trouble cleared, working while it runs, a failure's
// message into trouble, and nothing touched when the screen was destroyed meanwhile.
class ServerCalls {
public:
    template <typename Screen>
    ServerCalls(Screen *screen, void (Screen::*workingChanged)(), void (Screen::*troubleChanged)())
        : m_screen(screen),
          m_workingChanged([screen, workingChanged] { (screen->*workingChanged)(); }),
          m_troubleChanged([screen, troubleChanged] { (screen->*troubleChanged)(); })
    {}
    ServerCalls(const ServerCalls &) = delete;
    ServerCalls &operator=(const ServerCalls &) = delete;

    bool working() const { return m_running > 0; }
    const QString &trouble() const { return m_trouble; }
    // For a screen's own checks before any call ("Type your password", …); empty clears.
    void setTrouble(const QString &trouble);

    template <typename T>
    QCoro::Task<CallReply<T>> run(QCoro::Task<T> call, CallOptions options = {});

    // The latest-only call still running, if any, will come back gone; working ends for it now.
    void abandonLatest();

private:
    template <typename> friend class CallRunner;
    // Gives the call's ticket: the latest-only generation, or 0.
    quint64 begin(const CallOptions &options);
    // False when the call was superseded: it must then touch nothing.
    bool end(const CallOptions &options, quint64 ticket, bool failed, const QString &failure);
    void setRunning(int running);

    QObject *m_screen;
    std::function<void()> m_workingChanged;
    std::function<void()> m_troubleChanged;
    int m_running = 0;
    quint64 m_latest = 0;
    bool m_latestRunning = false;
    QString m_trouble;
};

template <typename T> class CallRunner {
public:
    static QCoro::Task<CallReply<T>> run(ServerCalls &calls, QCoro::Task<T> call,
                                         CallOptions options)
    {
        // The calls object lives inside its screen: the guard on the screen guards both.
        QPointer<QObject> screen(calls.m_screen);
        const quint64 ticket = calls.begin(options);
        CallReply<T> reply;
        bool failed = false;
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(call);
                reply.m_done = true;
            } else {
                reply.m_value = co_await std::move(call);
            }
        } catch (const ServerError &error) {
            if (const auto *refused = dynamic_cast<const APIError *>(&error))
                reply.m_status = refused->status();
            failed = true;
            reply.m_failure = options.failureText.isEmpty() ? error.message() : options.failureText;
        }
        if (!screen || !calls.end(options, ticket, failed, reply.m_failure)) {
            reply.m_gone = true;
            if constexpr (std::is_void_v<T>)
                reply.m_done = false;
            else
                reply.m_value.reset();
            co_return reply;
        }
        co_return reply;
    }
};

template <typename T>
QCoro::Task<CallReply<T>> ServerCalls::run(QCoro::Task<T> call, CallOptions options)
{
    return CallRunner<T>::run(*this, std::move(call), std::move(options));
}

} // namespace orvel
