#pragma once
#include <QString>

namespace cardserver {

// What the routes need to know of a deck they act on.
struct DeckInfo {
    qint64 id = 0;
    QString name;
    QString language;
    QString nativeLanguage;
};

} // namespace cardserver
