#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One further level of explanation of a remark; `last` marks the deepest level the
// server offers.
struct Deeper {
    Q_GADGET
    Q_PROPERTY(int level MEMBER level)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(bool last MEMBER last)
public:
    int level = 1;
    QString body{};
    bool last = false;

    // Every key may be missing or null; the member initialisers are the defaults.
    static constexpr bool lenient = true;

    bool operator==(const Deeper &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("level", &Deeper::level), json::field("body", &Deeper::body),
                        json::field("last", &Deeper::last));
};

} // namespace orvel
