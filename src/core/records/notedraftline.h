#pragma once

#include "records/annotation.h"
#include "records/field.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// A note line as the client sends it when saving a note. `id` is absent for a new
// line and `mediaId` when the line has no picture; both are then left out of the body.
struct NoteDraftLine {
    Q_GADGET
    Q_PROPERTY(std::optional<int> id MEMBER id)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(std::optional<int> mediaId MEMBER mediaId)
    Q_PROPERTY(QString source MEMBER source)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QList<Annotation> annotations MEMBER annotations)
public:
    std::optional<int> id{};
    QString text{};
    std::optional<int> mediaId{};
    QString source{};
    QString kind{};
    QList<Annotation> annotations{};

    bool operator==(const NoteDraftLine &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &NoteDraftLine::id), json::field("text", &NoteDraftLine::text),
        json::field("mediaId", &NoteDraftLine::mediaId),
        json::field("source", &NoteDraftLine::source), json::field("kind", &NoteDraftLine::kind),
        json::field("annotations", &NoteDraftLine::annotations));
};

} // namespace orvel
