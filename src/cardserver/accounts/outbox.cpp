#include "accounts/outbox.h"

#include "text/clock.h"

#include <cstdio>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace cardserver {

Outbox::Outbox(QString dir, bool logLinks) : m_dir(std::move(dir)), m_logLinks(logLinks)
{
    QDir().mkpath(m_dir);
}

QString Outbox::post(const QString &to, const QString &subject, const QString &body,
                     const QString &link)
{
    std::lock_guard lock(m_lock);
    QString safe = to;
    safe.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9@._-]")), QStringLiteral("_"));
    const QString name = QStringLiteral("%1-%2-%3.eml")
                             .arg(QDateTime::currentMSecsSinceEpoch())
                             .arg(++m_sequence)
                             .arg(safe);
    const QString path = QDir(m_dir).filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        const QString message = QStringLiteral("To: %1\nSubject: %2\nDate: %3\n"
                                               "Content-Type: text/plain; charset=utf-8\n\n%4\n")
                                    .arg(to, subject, Clock::nowText(), body);
        file.write(message.toUtf8());
    }
    if (m_logLinks)
        std::fprintf(stderr, "mail to %s: %s — %s\n", qPrintable(to), qPrintable(subject),
                     qPrintable(link));
    else
        std::fprintf(stderr, "mail to %s: %s — written to %s\n", qPrintable(to),
                     qPrintable(subject), qPrintable(name));
    std::fflush(stderr);
    return path;
}

} // namespace cardserver
