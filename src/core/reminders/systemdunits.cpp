#include "reminders/systemdunits.h"

#include <QStringList>

namespace orvel::systemdunits {

std::optional<QString> timer(int hour, const QString &service)
{
    if (hour < 0 || hour > 23)
        return std::nullopt;
    return QStringLiteral("# Written by orvel for its daily reminder; orvel's settings turn it "
                          "off.\n"
                          "[Unit]\n"
                          "Description=orvel daily reminder at %1:00\n"
                          "\n"
                          "[Timer]\n"
                          "OnCalendar=*-*-* %1:00:00\n"
                          "Persistent=false\n"
                          "Unit=%2\n"
                          "\n"
                          "[Install]\n"
                          "WantedBy=timers.target\n")
        .arg(hour, 2, 10, QLatin1Char('0'))
        .arg(service);
}

std::optional<QString> service(const QString &program)
{
    if (!program.startsWith(QLatin1Char('/')) || program.contains(QLatin1Char('\n')) ||
        program.contains(QLatin1Char('\r')))
        return std::nullopt;
    return QStringLiteral("# Written by orvel for its daily reminder; orvel's settings turn it "
                          "off.\n"
                          "[Unit]\n"
                          "Description=orvel daily reminder notification\n"
                          "\n"
                          "[Service]\n"
                          "Type=oneshot\n"
                          "ExecStart=%1 --remind\n")
        .arg(execWord(program));
}

QString execWord(const QString &word)
{
    QString escaped;
    escaped.reserve(word.size() + 2);
    bool quote = word.isEmpty();
    for (const QChar c : word) {
        if (c == QLatin1Char('%')) {
            escaped += QStringLiteral("%%");
        } else if (c == QLatin1Char('$')) {
            escaped += QStringLiteral("$$");
        } else if (c == QLatin1Char('\\') || c == QLatin1Char('"')) {
            escaped += QLatin1Char('\\');
            escaped += c;
            quote = true;
        } else {
            quote = quote || c.isSpace() || c == QLatin1Char('\'');
            escaped += c;
        }
    }
    return quote ? QLatin1Char('"') + escaped + QLatin1Char('"') : escaped;
}

bool managerRunning(const QByteArray &isSystemRunningOutput)
{
    static const QStringList running{QStringLiteral("initializing"), QStringLiteral("starting"),
                                     QStringLiteral("running"),      QStringLiteral("degraded"),
                                     QStringLiteral("maintenance"),  QStringLiteral("stopping")};
    return running.contains(QString::fromUtf8(isSystemRunningOutput).trimmed());
}

} // namespace orvel::systemdunits
