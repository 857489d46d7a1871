#pragma once
#include <QString>

namespace cardserver {

// The IPA reading espeak-ng gives for a text ("espeak-ng -q --ipa -v de Hund" → "hˈʊnt"), used
// where the dictionary has none. Empty when espeak-ng is missing, does not know the language,
// or takes longer than a few seconds.
QString espeakReading(const QString &language, const QString &text);

} // namespace cardserver
