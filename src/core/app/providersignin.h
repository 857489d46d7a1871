#pragma once

#include <memory>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QUrl>

namespace orvel {

// One sign-in through Google or Apple in the learner's default browser. The start address opens
// in the browser; the server's last page sends the browser to orvel://…, which the desktop
// launches as `orvel orvel://…`; that process hands the address to this one over the instance
// channel, and deliver() completes the session waiting for it. Closing the session from the
// waiting screen (cancel()) gives the cancelled outcome.
class Resumer;

class ProviderSignIn : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by SignInView")
    Q_PROPERTY(bool waiting READ waiting NOTIFY waitingChanged)

public:
    struct Outcome {
        enum class Kind { code, failed, cancelled };
        Kind kind = Kind::cancelled;
        QString text; // the code, or the message to show

        static Outcome code(QString value) { return {Kind::code, std::move(value)}; }
        static Outcome failed(QString message) { return {Kind::failed, std::move(message)}; }
        static Outcome cancelled() { return {Kind::cancelled, {}}; }
        bool operator==(const Outcome &) const = default;
    };

    explicit ProviderSignIn(QObject *parent = nullptr);
    ~ProviderSignIn() override;

    // Runs one session: opens start in the browser (Browser) and waits for its callback or for
    // cancel().
    QCoro::Task<Outcome> run(QUrl start);
    bool waiting() const { return m_waiting; }

    // Ends the waiting session with the cancelled outcome.
    Q_INVOKABLE void cancel();

    // Hands a callback address to the session that waits for one. False when none waits.
    static bool deliver(const QUrl &callback);

    // How a callback address reads: its first non-empty `code`, else its `error`, else a message.
    static Outcome readCallback(const QUrl &callback);

signals:
    void waitingChanged();
    void settled();

private:
    void settle(Outcome outcome);

    bool m_waiting = false;
    std::optional<Outcome> m_outcome;
    quint64 m_session = 0; // counts runs, so that a run overtaken by a newer one knows it
    std::shared_ptr<Resumer> m_resumer; // wakes the current run once it has settled
};

} // namespace orvel
