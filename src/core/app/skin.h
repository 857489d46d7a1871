#pragma once

#include <QMap>
#include <QString>

namespace orvel {

// Whether a skin is drawn light on dark or dark on light.
enum class SkinFamily { light, dark };

// One colour theme: a stable identifier (stored under "zelon.skin" and sent to the server), the
// name shown in the look pane, its family, and its colours as "#RRGGBB" by role.
struct Skin {
    QString id;
    QString name;
    SkinFamily family = SkinFamily::light;
    QMap<QString, QString> colours;

    // The roles every skin defines (window, surface, sidebar, text, secondaryText, accent,
    // accentText, accentWash, line, good, danger).
    static QStringList roles();
};

} // namespace orvel
