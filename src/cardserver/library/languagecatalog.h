#pragma once
#include <QJsonArray>
#include <QString>

namespace cardserver {

// The languages a deck may be in or written for: code, English name, own name, and the
// script or variety where it is worth saying.
class LanguageCatalog {
public:
    static QJsonArray all();
    static bool contains(const QString &code);
    static QString name(const QString &code); // the English name, or the code itself
};

} // namespace cardserver
