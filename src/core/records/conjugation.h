#pragma once

#include "records/field.h"
#include "records/form.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// One table of forms of a card, headed by `tense`.
struct Conjugation {
    Q_GADGET
    Q_PROPERTY(QString tense MEMBER tense)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QList<Form> forms MEMBER forms)
public:
    QString tense{};
    QString note{};
    QList<Form> forms{};

    bool operator==(const Conjugation &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("tense", &Conjugation::tense),
                                                   json::field("note", &Conjugation::note),
                                                   json::field("forms", &Conjugation::forms));
};

} // namespace orvel
