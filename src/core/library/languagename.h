#pragma once

#include <QString>

namespace orvel {

// The English name of a deck's language code ("de" → "German", "pt-BR" → "Portuguese"), for
// the app's texts; the code itself when it names no language Qt knows.
QString languageName(const QString &code);

} // namespace orvel
