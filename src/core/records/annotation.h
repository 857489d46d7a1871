#pragma once

#include "records/deeper.h"
#include "records/field.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringView>

#include <optional>

namespace orvel {

// One remark in the margin of a note line.
struct Annotation {
    Q_GADGET
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString span MEMBER span)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString term MEMBER term)
    Q_PROPERTY(bool edited MEMBER edited)
    Q_PROPERTY(QList<Deeper> deeper MEMBER deeper)
public:
    QString kind = QStringLiteral("note");
    QString span{};
    QString body{};
    QString term{};
    bool edited = false;
    QList<Deeper> deeper{};

    // What the remark is; `kind` carries it as its raw value.
    enum class Kind { Translation, Gloss, Note, Caution };
    Q_ENUM(Kind)

    // "translation", "gloss", "note", "caution".
    static QString rawValue(Kind kind);
    // The case of a raw value; nullopt for a value the client does not know.
    static std::optional<Kind> kindFromRawValue(QStringView raw);

    // Every key may be missing or null; the member initialisers are the defaults.
    static constexpr bool lenient = true;

    bool operator==(const Annotation &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("kind", &Annotation::kind), json::field("span", &Annotation::span),
        json::field("body", &Annotation::body), json::field("term", &Annotation::term),
        json::field("edited", &Annotation::edited), json::field("deeper", &Annotation::deeper));
};

} // namespace orvel
