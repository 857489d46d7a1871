#include "library/languagecatalog.h"

#include <QJsonObject>

namespace cardserver {

namespace {

struct Entry {
    const char *code;
    const char *name;
    const char *endonym;
    const char *script;
    const char *variety;
};

const Entry Entries[] = {
    {"de", "German", "Deutsch", nullptr, nullptr},
    {"fr", "French", "Français", nullptr, nullptr},
    {"es", "Spanish", "Español", nullptr, nullptr},
    {"it", "Italian", "Italiano", nullptr, nullptr},
    {"pt", "Portuguese", "Português", nullptr, nullptr},
    {"nl", "Dutch", "Nederlands", nullptr, nullptr},
    {"en", "English", "English", nullptr, nullptr},
    {"sv", "Swedish", "Svenska", nullptr, nullptr},
    {"da", "Danish", "Dansk", nullptr, nullptr},
    {"nb", "Norwegian", "Norsk bokmål", nullptr, "Bokmål"},
    {"fi", "Finnish", "Suomi", nullptr, nullptr},
    {"pl", "Polish", "Polski", nullptr, nullptr},
    {"cs", "Czech", "Čeština", nullptr, nullptr},
    {"hu", "Hungarian", "Magyar", nullptr, nullptr},
    {"tr", "Turkish", "Türkçe", nullptr, nullptr},
    {"el", "Greek", "Ελληνικά", "Greek", nullptr},
    {"ru", "Russian", "Русский", "Cyrillic", nullptr},
    {"uk", "Ukrainian", "Українська", "Cyrillic", nullptr},
    {"ar", "Arabic", "العربية", "Arabic", "Modern Standard"},
    {"he", "Hebrew", "עברית", "Hebrew", nullptr},
    {"hi", "Hindi", "हिन्दी", "Devanagari", nullptr},
    {"ja", "Japanese", "日本語", "Japanese", nullptr},
    {"ko", "Korean", "한국어", "Hangul", nullptr},
    {"zh", "Chinese", "中文", "Simplified Han", "Mandarin"},
};

} // namespace

QJsonArray LanguageCatalog::all()
{
    QJsonArray out;
    for (const Entry &e : Entries) {
        QJsonObject o{
            {"code", e.code}, {"name", e.name}, {"endonym", QString::fromUtf8(e.endonym)}};
        o.insert("script", e.script ? QJsonValue(e.script) : QJsonValue());
        o.insert("variety", e.variety ? QJsonValue(e.variety) : QJsonValue());
        out.append(o);
    }
    return out;
}

bool LanguageCatalog::contains(const QString &code)
{
    for (const Entry &e : Entries)
        if (code == QLatin1String(e.code))
            return true;
    return false;
}

QString LanguageCatalog::name(const QString &code)
{
    for (const Entry &e : Entries)
        if (code == QLatin1String(e.code))
            return QString::fromLatin1(e.name);
    return code;
}

} // namespace cardserver
