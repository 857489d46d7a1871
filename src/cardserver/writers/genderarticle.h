#pragma once
#include <QString>

namespace cardserver {

// The definite article a noun of a grammatical gender takes in a language: ("de", "masc") →
// "der", ("fr", "fem") → "la", ("nl", "neut") → "het". Several genders ("masc/fem") give the
// articles joined with "/"; a language or gender without a known article gives the empty string.
QString genderArticle(const QString &language, const QString &genderCode);

} // namespace cardserver
