#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One inflected form of a conjugation table: `label` (e.g. the person) and the `form`.
struct Form {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString form MEMBER form)
public:
    QString label{};
    QString form{};

    bool operator==(const Form &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("label", &Form::label), json::field("form", &Form::form));
};

} // namespace orvel
