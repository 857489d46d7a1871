#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The reply of calls whose body the client does not read: any JSON object decodes.
struct Done {
    Q_GADGET
public:
    bool operator==(const Done &) const = default;

    static constexpr auto fields = std::tuple<>();
};

} // namespace orvel
