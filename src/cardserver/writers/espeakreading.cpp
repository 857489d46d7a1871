#include "espeakreading.h"

#include "limits/workgate.h"

#include <QProcess>

namespace cardserver {

QString espeakReading(const QString &language, const QString &text, WorkGate *tools)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || language.isEmpty())
        return {};
    const std::optional<WorkGate::Pass> pass = tools ? tools->enter() : std::nullopt;
    if (tools && !pass)
        return {};
    QProcess process;
    // "--" keeps a text starting with "-" from being read as an option.
    process.start(QStringLiteral("espeak-ng"),
                  {QStringLiteral("-q"), QStringLiteral("--ipa"), QStringLiteral("-v"),
                   language.toLower(), QStringLiteral("--"), trimmed});
    if (!process.waitForStarted(3000))
        return {};
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(1000);
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput()).simplified();
}

} // namespace cardserver
