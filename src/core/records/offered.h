#pragma once

#include "records/byte.h"
#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The reply of a lesson request.
struct Offered {
    Q_GADGET
    Q_PROPERTY(Byte byte MEMBER byte)
public:
    Byte byte{};

    bool operator==(const Offered &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("byte", &Offered::byte));
};

} // namespace orvel
