#pragma once

#include "records/annotation.h"
#include "records/field.h"
#include "records/media.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringView>

#include <optional>

namespace orvel {

// One line of a note as stored, with its margin (`annotations`).
struct NoteLine {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(int noteId MEMBER noteId)
    Q_PROPERTY(int ordinal MEMBER ordinal)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(std::optional<Media> media MEMBER media)
    Q_PROPERTY(QString source MEMBER source)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QList<Annotation> annotations MEMBER annotations)
    Q_PROPERTY(QString annotatedText MEMBER annotatedText)
    Q_PROPERTY(QString state MEMBER state)
    Q_PROPERTY(std::optional<int> cardId MEMBER cardId)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
public:
    int id = 0;
    int noteId = 0;
    int ordinal = 0;
    QString text{};
    std::optional<Media> media{};
    QString source{};
    QString kind{};
    QList<Annotation> annotations{};
    QString annotatedText{};
    QString state{};
    std::optional<int> cardId{};
    QString createdAt{};

    // The margin's state: current, out of date since the line changed, or no margin at all.
    enum class State { Annotated, Stale, Blank };
    Q_ENUM(State)

    // "annotated", "stale", "blank".
    static QString rawValue(State state);
    // The case of a raw value; nullopt for a value the client does not know.
    static std::optional<State> stateFromRawValue(QStringView raw);

    bool operator==(const NoteLine &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &NoteLine::id), json::field("noteId", &NoteLine::noteId),
        json::field("ordinal", &NoteLine::ordinal), json::field("text", &NoteLine::text),
        json::field("media", &NoteLine::media), json::field("source", &NoteLine::source),
        json::field("kind", &NoteLine::kind), json::field("annotations", &NoteLine::annotations),
        json::field("annotatedText", &NoteLine::annotatedText),
        json::field("state", &NoteLine::state), json::field("cardId", &NoteLine::cardId),
        json::field("createdAt", &NoteLine::createdAt));
};

} // namespace orvel
