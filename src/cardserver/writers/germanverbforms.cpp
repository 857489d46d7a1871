#include "germanverbforms.h"

#include <QJsonObject>
#include <QRegularExpression>

namespace cardserver {

namespace {

struct Table {
    QString tense;
    QList<QPair<QString, QString>> forms; // label, form
    void add(const QString &label, const QString &form)
    {
        for (const auto &f : std::as_const(forms))
            if (f.first == label)
                return;
        forms.append({label, form});
    }
};

bool isSingleWord(const QString &s)
{
    return !s.isEmpty() && !s.contains(u' ') && !s.contains(u'.');
}

} // namespace

QJsonArray germanVerbForms(const QString &infinitive, const QList<DictEntry> &entries)
{
    static const QRegularExpression personal(QStringLiteral(
        "^(ich|du|er/sie|er/sie/es|es|wir|ihr|ich/er/sie|ich/er/sie/es|wir/sie)\\s+(\\S+)$"));
    Table present{QStringLiteral("Present"), {}}, past{QStringLiteral("Simple past"), {}},
        subjunctive{QStringLiteral("Subjunctive II"), {}},
        imperative{QStringLiteral("Imperative"), {}},
        participles{QStringLiteral("Participles"), {}};
    const QString presentParticiple = infinitive + u'd';

    for (const DictEntry &entry : entries) {
        if (entry.headword != infinitive || !entry.partOfSpeech().contains(QLatin1String("verb")))
            continue;
        const QStringList &see = entry.seeAlso;
        // An entry that lists the verb's forms starts with its present participle; one that
        // starts otherwise lists the forms of its synonyms.
        const qsizetype p1 = 0;
        if (see.isEmpty() || see.first() != presentParticiple)
            continue;
        participles.add(QStringLiteral("present"), presentParticiple);
        if (p1 + 1 < see.size() && isSingleWord(see[p1 + 1]) &&
            !see[p1 + 1].endsWith(QLatin1String("end")))
            participles.add(QStringLiteral("past"), see[p1 + 1]);

        int pastSeen = 0; // "ich/er/sie" comes once for the past, again for the subjunctive
        Table *lastPast = nullptr;
        for (qsizetype i = p1 + 1; i < see.size(); ++i) {
            const QString &item = see[i];
            if (const auto m = personal.match(item); m.hasMatch()) {
                const QString label = m.captured(1);
                const QString form = m.captured(2);
                if (label.startsWith(QLatin1String("ich/er/sie"))) {
                    lastPast = ++pastSeen == 1 ? &past : &subjunctive;
                    lastPast->add(label, form);
                } else if (label == QLatin1String("wir/sie")) {
                    (lastPast ? lastPast : &past)->add(label, form);
                } else {
                    present.add(label, form);
                }
            } else if (item.endsWith(u'!') && isSingleWord(item.chopped(1))) {
                imperative.add(QStringLiteral("du"), item);
            }
        }
    }

    QJsonArray out;
    for (const Table *t : {&present, &past, &subjunctive, &imperative, &participles}) {
        if (t->forms.isEmpty() || (t == &participles && t->forms.size() < 2 && out.isEmpty()))
            continue;
        QJsonArray forms;
        for (const auto &[label, form] : t->forms)
            forms.append(
                QJsonObject{{QStringLiteral("label"), label}, {QStringLiteral("form"), form}});
        out.append(QJsonObject{{QStringLiteral("tense"), t->tense},
                               {QStringLiteral("note"), QString()},
                               {QStringLiteral("forms"), forms}});
    }
    return out;
}

} // namespace cardserver
