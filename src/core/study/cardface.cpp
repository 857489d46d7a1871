#include "study/cardface.h"

#include <QVariantMap>

namespace orvel {

namespace {

QString joined(const QString &first, const QString &second, const QString &separator)
{
    if (first.isEmpty())
        return second;
    if (second.isEmpty())
        return first;
    return first + separator + second;
}

QVariantMap section(const QString &heading, const QStringList &lines)
{
    return {{QStringLiteral("heading"), heading}, {QStringLiteral("lines"), lines}};
}

} // namespace

QString CardFace::word(const Card &card)
{
    return joined(card.article(), card.term, QStringLiteral(" "));
}

QString CardFace::kindLine(const Card &card)
{
    const QString gender = card.gender.toLower();
    QString genderWord;
    if (gender.contains(QLatin1String("feminine")))
        genderWord = QStringLiteral("feminine");
    else if (gender.contains(QLatin1String("masculine")))
        genderWord = QStringLiteral("masculine");
    return joined(card.partOfSpeech.trimmed(), genderWord, QStringLiteral(" · "));
}

QString CardFace::example(const Card &card)
{
    if (card.examples.isEmpty())
        return QString();
    const Example &first = card.examples.first();
    return joined(first.sentence, first.translation, QStringLiteral(" — "));
}

QVariantList CardFace::rest(const Card &card)
{
    QVariantList sections;
    QStringList means;
    if (!card.definition.isEmpty())
        means.append(card.definition);
    if (!means.isEmpty())
        sections.append(section(QStringLiteral("Means"), means));
    if (!card.usageNotes.isEmpty())
        sections.append(section(QStringLiteral("Usage"), {card.usageNotes}));
    QStringList examples;
    for (const Example &example : card.examples) {
        QString line = joined(example.sentence, example.translation, QStringLiteral(" — "));
        if (!example.note.isEmpty())
            line += QStringLiteral(" (") + example.note + QStringLiteral(")");
        examples.append(line);
    }
    if (!examples.isEmpty())
        sections.append(section(QStringLiteral("In use"), examples));
    QStringList related;
    for (const Related &word : card.related)
        related.append(joined(joined(word.word, word.translation, QStringLiteral(" — ")),
                              word.relation, QStringLiteral(" · ")));
    if (!related.isEmpty())
        sections.append(section(QStringLiteral("Nearby"), related));
    for (const Conjugation &conjugation : card.conjugations) {
        QStringList forms;
        for (const Form &form : conjugation.forms)
            forms.append(joined(form.label, form.form, QStringLiteral("  ")));
        if (!conjugation.note.isEmpty())
            forms.append(conjugation.note);
        if (!forms.isEmpty())
            sections.append(section(conjugation.tense, forms));
    }
    return sections;
}

} // namespace orvel
