#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One word taken out of a pasted text, with the form it was seen in and where.
struct Candidate {
    Q_GADGET
    Q_PROPERTY(QString term MEMBER term)
    Q_PROPERTY(QString seenAs MEMBER seenAs)
    Q_PROPERTY(QString gloss MEMBER gloss)
    Q_PROPERTY(QString sentence MEMBER sentence)
    Q_PROPERTY(QString level MEMBER level)
public:
    QString term{};
    QString seenAs{};
    QString gloss{};
    QString sentence{};
    QString level{};

    bool operator==(const Candidate &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("term", &Candidate::term), json::field("seenAs", &Candidate::seenAs),
        json::field("gloss", &Candidate::gloss), json::field("sentence", &Candidate::sentence),
        json::field("level", &Candidate::level));
};

} // namespace orvel
