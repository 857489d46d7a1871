#pragma once
#include <QString>

namespace cardserver {

class WorkGate;

// The IPA reading espeak-ng gives for a text ("espeak-ng -q --ipa -v de Hund" → "hˈʊnt"), used
// where the dictionary has none. Empty when espeak-ng is missing, does not know the language,
// or takes longer than a few seconds, or when `tools` (the gate of espeak-ng processes, when
// given) had no room for it in time.
QString espeakReading(const QString &language, const QString &text, WorkGate *tools = nullptr);

} // namespace cardserver
