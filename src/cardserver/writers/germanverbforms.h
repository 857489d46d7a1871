#pragma once
#include "dictentry.h"

#include <QJsonArray>
#include <QList>
#include <QString>

namespace cardserver {

// The forms of a German verb that the Ding-derived dictionary lists among an entry's "see:"
// words, in its fixed order: present participle, past participle, present forms ("du isst"),
// past forms ("ich/er/sie aß", "wir/sie aßen"), subjunctive ("ich/er/sie äße") and imperative
// ("iss!"). Returns conjugation tables [{tense, note, forms [{label, form}]}], empty when the
// entries list no forms of infinitive.
QJsonArray germanVerbForms(const QString &infinitive, const QList<DictEntry> &entries);

} // namespace cardserver
