#pragma once

#include "records/deeper.h"
#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The reply of a deepen call.
struct Answer {
    Q_GADGET
    Q_PROPERTY(Deeper deeper MEMBER deeper)
public:
    Deeper deeper{};

    bool operator==(const Answer &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("deeper", &Answer::deeper));
};

} // namespace orvel
