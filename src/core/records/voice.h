#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// One voice of the catalogue, with an optional sample clip.
struct Voice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(std::optional<QString> gender MEMBER gender)
    Q_PROPERTY(std::optional<QString> previewUrl MEMBER previewUrl)
public:
    QString id{};
    QString name{};
    std::optional<QString> gender{};
    std::optional<QString> previewUrl{};

    bool operator==(const Voice &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &Voice::id), json::field("name", &Voice::name),
        json::field("gender", &Voice::gender), json::field("previewUrl", &Voice::previewUrl));
};

} // namespace orvel
