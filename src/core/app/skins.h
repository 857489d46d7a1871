#pragma once

#include "app/skin.h"

#include <optional>
#include <QList>
#include <QObject>
#include <QtQml/qqml.h>
#include <QVariantList>
#include <QVariantMap>

namespace orvel {

// The catalogue of skins. Besides the skins' own identifiers it knows the two family names
// "light" and "dark", which the server may hold as a skin when the learner only chose an
// appearance; each stands for its family's default skin.
class Skins : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QVariantList all READ allForQml CONSTANT)

public:
    explicit Skins(QObject *parent = nullptr);

    static const QList<Skin> &all();
    static const Skin *find(const QString &id);
    // The family of a skin identifier, or none for an empty or unknown one.
    static std::optional<SkinFamily> familyOf(const QString &id);
    // "paper" for light, "ink" for dark.
    static QString defaultFor(SkinFamily family);
    // The skin to draw with: the chosen one when it is of the family shown, else the family's
    // default.
    static QString effective(const QString &chosen, SkinFamily shown);

    // Colours of a skin by role, for the Theme; the default light skin's for an unknown id.
    Q_INVOKABLE QVariantMap palette(const QString &id) const;
    Q_INVOKABLE bool isDark(const QString &id) const;

private:
    QVariantList allForQml() const;
};

} // namespace orvel
