#pragma once

#include "records/field.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// The reply of a compose call; `lines` is absent when the server sends none.
struct ComposeReply {
    Q_GADGET
    Q_PROPERTY(std::optional<QList<QString>> lines MEMBER lines)
public:
    std::optional<QList<QString>> lines{};

    bool operator==(const ComposeReply &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("lines", &ComposeReply::lines));
};

} // namespace orvel
