#pragma once

#include <QSettings>
#include <QString>

namespace orvel {

// The app's one store of local settings: $XDG_CONFIG_HOME/orvel/orvel.conf, keys such as
// "zelon.appearance". Tests point it at a file of their own before anything reads it.
class LocalSettings {
public:
    static QSettings &store();
    // Replaces the store with one backed by the given INI file (tests, or a second profile).
    static void useFile(const QString &path);
    static QString defaultPath();
};

} // namespace orvel
