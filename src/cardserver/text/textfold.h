#pragma once
#include <QString>

namespace cardserver {

// Folds text for case- and accent-insensitive search: decomposed (NFD), combining marks
// dropped, lower-cased. "Müße" and "MUSSE"-like spellings meet on the same folded form
// as far as Unicode decomposition allows ("Café" and "cafe" do).
class TextFold {
public:
    static QString fold(const QString &text);
};

} // namespace cardserver
