#include "localsettings.h"

#include <memory>
#include <QStandardPaths>

namespace orvel {

namespace {
std::unique_ptr<QSettings> &instance()
{
    static std::unique_ptr<QSettings> settings;
    return settings;
}
} // namespace

QString LocalSettings::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/orvel/orvel.conf");
}

QSettings &LocalSettings::store()
{
    auto &settings = instance();
    if (!settings)
        settings = std::make_unique<QSettings>(defaultPath(), QSettings::IniFormat);
    return *settings;
}

void LocalSettings::useFile(const QString &path)
{
    instance() = std::make_unique<QSettings>(path, QSettings::IniFormat);
}

} // namespace orvel
