#include "library/languagename.h"

#include <QLocale>

namespace orvel {

QString languageName(const QString &code)
{
    const QString trimmed = code.trimmed();
    if (trimmed.isEmpty())
        return trimmed;
    const QLocale::Language language = QLocale(trimmed).language();
    // QLocale falls back to "C" for anything it cannot read, which names no language.
    if (language == QLocale::C || language == QLocale::AnyLanguage)
        return trimmed;
    return QLocale::languageToString(language);
}

} // namespace orvel
