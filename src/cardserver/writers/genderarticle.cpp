#include "genderarticle.h"

#include <QHash>
#include <QStringList>

namespace cardserver {

namespace {

struct Articles {
    const char *masc;
    const char *fem;
    const char *neut;
};

const QHash<QString, Articles> &table()
{
    // Romance languages have no neuter; Dutch merges masculine and feminine into "de".
    static const QHash<QString, Articles> articles = {
        {QStringLiteral("de"), {"der", "die", "das"}}, {QStringLiteral("fr"), {"le", "la", ""}},
        {QStringLiteral("es"), {"el", "la", ""}},      {QStringLiteral("it"), {"il", "la", ""}},
        {QStringLiteral("pt"), {"o", "a", ""}},        {QStringLiteral("nl"), {"de", "de", "het"}},
        {QStringLiteral("ca"), {"el", "la", ""}},
    };
    return articles;
}

} // namespace

QString genderArticle(const QString &language, const QString &genderCode)
{
    const auto it = table().constFind(language.left(2).toLower());
    if (it == table().constEnd())
        return {};
    QStringList out;
    for (const QString &code : genderCode.split(u'/', Qt::SkipEmptyParts)) {
        const char *article = code == QLatin1String("masc")   ? it->masc
                              : code == QLatin1String("fem")  ? it->fem
                              : code == QLatin1String("neut") ? it->neut
                                                              : "";
        const QString a = QLatin1String(article);
        if (!a.isEmpty() && !out.contains(a))
            out.append(a);
    }
    return out.join(u'/');
}

} // namespace cardserver
