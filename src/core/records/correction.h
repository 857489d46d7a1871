#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A common mistake (`wrong`) and its correction (`right`).
struct Correction {
    Q_GADGET
    Q_PROPERTY(QString wrong MEMBER wrong)
    Q_PROPERTY(QString right MEMBER right)
public:
    QString wrong{};
    QString right{};

    // Every key may be missing or null; the member initialisers are the defaults.
    static constexpr bool lenient = true;

    bool operator==(const Correction &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("wrong", &Correction::wrong),
                                                   json::field("right", &Correction::right));
};

} // namespace orvel
