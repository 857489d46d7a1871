#pragma once
#include <mutex>
#include <QString>

namespace cardserver {

// Outgoing mail. The server sends no mail itself: each message is written as a file under
// <data>/outbox/ (for a mail relay or the person running the server to pick up) and its
// link is logged on standard error.
class Outbox {
public:
    explicit Outbox(QString dir);

    // Writes the message and returns the file's path.
    QString post(const QString &to, const QString &subject, const QString &body,
                 const QString &link);

private:
    QString m_dir;
    std::mutex m_lock;
    int m_sequence = 0;
};

} // namespace cardserver
