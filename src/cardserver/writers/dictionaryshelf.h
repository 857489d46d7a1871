#pragma once
#include "dictionary.h"

#include <memory>
#include <mutex>
#include <QHash>
#include <QString>
#include <QStringList>

namespace cardserver {

// The FreeDict dictionaries installed in one folder (Debian: /usr/share/dictd), found by their
// file names freedict-<src>-<dst>.index and reached by two-letter language codes. Listing the
// folder is all the constructor does; each dictionary loads on its first lookup.
class DictionaryShelf {
public:
    explicit DictionaryShelf(const QString &folder);

    // The dictionary from language into nativeLanguage ("de", "en"), or nullptr when none is
    // installed.
    Dictionary *find(const QString &language, const QString &nativeLanguage) const;
    // "de-en", "fr-en", … for every installed pair, sorted.
    QStringList pairs() const;

    // ISO 639-1 ↔ the three-letter codes FreeDict names its files with.
    static QString threeLetterCode(const QString &code);
    static QString twoLetterCode(const QString &threeLetter);
    // "German" for "de"; the code itself when unknown.
    static QString languageName(const QString &code);

private:
    QHash<QString, std::shared_ptr<Dictionary>> m_dictionaries; // "de-en" → dictionary
};

} // namespace cardserver
