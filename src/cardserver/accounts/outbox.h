#pragma once
#include <mutex>
#include <QString>

namespace cardserver {

// Outgoing mail. The server sends no mail itself: each message is written as a file under
// <data>/outbox/ (for a mail relay or the person running the server to pick up) and noted on
// standard error. The link itself (a confirmation or a password reset, as good as the
// account) reaches the log only when `logLinks` is set: a one-person machine (--local),
// where whoever reads the log is the learner.
class Outbox {
public:
    Outbox(QString dir, bool logLinks);

    // Writes the message and returns the file's path.
    QString post(const QString &to, const QString &subject, const QString &body,
                 const QString &link);

private:
    QString m_dir;
    bool m_logLinks;
    std::mutex m_lock;
    int m_sequence = 0;
};

} // namespace cardserver
