#include "dictionaryshelf.h"

#include <algorithm>
#include <QDir>
#include <QLocale>
#include <QRegularExpression>

namespace cardserver {

DictionaryShelf::DictionaryShelf(const QString &folder)
{
    static const QRegularExpression name(
        QStringLiteral("^freedict-([a-z]{3})-([a-z]{3})\\.index$"));
    const QDir dir(folder);
    const QStringList files =
        dir.entryList({QStringLiteral("freedict-*.index")}, QDir::Files | QDir::Readable);
    for (const QString &file : files) {
        const auto m = name.match(file);
        if (!m.hasMatch())
            continue;
        const QString stem = dir.filePath(file.chopped(6));
        if (!QFile::exists(stem + QStringLiteral(".dict.dz")))
            continue;
        const QString from = twoLetterCode(m.captured(1));
        const QString to = twoLetterCode(m.captured(2));
        if (from.isEmpty() || to.isEmpty())
            continue;
        m_dictionaries.insert(from + u'-' + to, std::make_shared<Dictionary>(stem));
    }
}

Dictionary *DictionaryShelf::find(const QString &language, const QString &nativeLanguage) const
{
    const auto code = [](const QString &c) { return c.section(u'-', 0, 0).toLower(); };
    const auto it = m_dictionaries.constFind(code(language) + u'-' + code(nativeLanguage));
    return it == m_dictionaries.constEnd() ? nullptr : it->get();
}

QStringList DictionaryShelf::pairs() const
{
    QStringList out = m_dictionaries.keys();
    std::sort(out.begin(), out.end());
    return out;
}

QString DictionaryShelf::threeLetterCode(const QString &code)
{
    const QLocale::Language language = QLocale::codeToLanguage(code, QLocale::ISO639Part1);
    if (language == QLocale::AnyLanguage || language == QLocale::C)
        return {};
    return QLocale::languageToCode(language, QLocale::ISO639Part3);
}

QString DictionaryShelf::twoLetterCode(const QString &threeLetter)
{
    // FreeDict uses the ISO 639-3 codes, which match ISO 639-2/T for the larger languages.
    QLocale::Language language =
        QLocale::codeToLanguage(threeLetter, QLocale::ISO639Part3 | QLocale::ISO639Part2);
    if (language == QLocale::AnyLanguage || language == QLocale::C)
        return {};
    return QLocale::languageToCode(language, QLocale::ISO639Part1);
}

QString DictionaryShelf::languageName(const QString &code)
{
    const QLocale::Language language = QLocale::codeToLanguage(code.section(u'-', 0, 0));
    if (language == QLocale::AnyLanguage || language == QLocale::C)
        return code;
    return QLocale::languageToString(language);
}

} // namespace cardserver
