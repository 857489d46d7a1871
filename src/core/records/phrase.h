#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One phrase of a short lesson.
struct Phrase {
    Q_GADGET
    Q_PROPERTY(QString phrase MEMBER phrase)
    Q_PROPERTY(QString reading MEMBER reading)
    Q_PROPERTY(QString meaning MEMBER meaning)
    Q_PROPERTY(QString when MEMBER when)
public:
    QString phrase{};
    QString reading{};
    QString meaning{};
    QString when{};

    // Every key may be missing or null; the member initialisers are the defaults.
    static constexpr bool lenient = true;

    bool operator==(const Phrase &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("phrase", &Phrase::phrase), json::field("reading", &Phrase::reading),
        json::field("meaning", &Phrase::meaning), json::field("when", &Phrase::when));
};

} // namespace orvel
