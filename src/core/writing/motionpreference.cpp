#include "writing/motionpreference.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

namespace orvel {

MotionPreference::MotionPreference(QObject *parent)
    : QObject(parent), m_reduced(desktopAsksForReducedMotion())
{}

bool MotionPreference::desktopAsksForReducedMotion()
{
    const QByteArray forced = qgetenv("ORVEL_REDUCE_MOTION");
    if (!forced.isEmpty())
        return forced != "0";

    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    if (desktop.contains(QLatin1String("KDE"), Qt::CaseInsensitive)) {
        const QString path = QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                                    QStringLiteral("kdeglobals"));
        if (!path.isEmpty()) {
            QSettings kde(path, QSettings::IniFormat);
            const QVariant factor = kde.value(QStringLiteral("KDE/AnimationDurationFactor"));
            if (factor.isValid())
                return factor.toDouble() == 0.0;
        }
        return false;
    }

    // GNOME and the desktops that share its settings.
    if (QStandardPaths::findExecutable(QStringLiteral("gsettings")).isEmpty())
        return false;
    QProcess gsettings;
    gsettings.start(QStringLiteral("gsettings"),
                    {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                     QStringLiteral("enable-animations")});
    if (!gsettings.waitForFinished(500)) {
        gsettings.kill();
        gsettings.waitForFinished(100);
        return false;
    }
    return gsettings.exitCode() == 0 &&
           gsettings.readAllStandardOutput().trimmed() == QByteArrayLiteral("false");
}

} // namespace orvel
