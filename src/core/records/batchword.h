#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One word of a batch of cards to write, with the text it came from.
struct BatchWord {
    Q_GADGET
    Q_PROPERTY(QString term MEMBER term)
    Q_PROPERTY(QString source MEMBER source)
public:
    QString term{};
    QString source{};

    bool operator==(const BatchWord &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("term", &BatchWord::term),
                                                   json::field("source", &BatchWord::source));
};

} // namespace orvel
