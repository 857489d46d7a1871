#include "dictionarycard.h"

#include "dictlabels.h"
#include "genderarticle.h"
#include "germanverbforms.h"

#include <algorithm>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

namespace cardserver {

namespace {

// What a sense's labels cost it: a learner typing a word rarely means its specialist sense,
// and almost never its dialect, slang or dated one while a plain sense exists. A subject
// ("zool." on "dog") only breaks ties with an unlabelled sense of as much weight.
double labelPenalty(const QStringList &labels)
{
    const auto has = [&](LabelKind kind) {
        return std::any_of(labels.cbegin(), labels.cend(),
                           [&](const QString &l) { return DictLabel::of(l).kind == kind; });
    };
    double penalty = 0;
    if (has(LabelKind::Subject))
        penalty += 0.5;
    if (has(LabelKind::Domain))
        penalty += 10;
    if (has(LabelKind::Register) || has(LabelKind::Regional))
        penalty += 20;
    if (has(LabelKind::Dated))
        penalty += 25;
    return penalty;
}

// "Haus…", "Berg..", "huis‐": the first part of compounds, not the word itself.
bool isCombiningForm(const QString &headword)
{
    return headword.endsWith(u'…') || headword.endsWith(QLatin1String("..")) ||
           headword.endsWith(u'-') || headword.endsWith(u'‐');
}

// "Fenster <pl>" beside "Fenster <neut, n, sg>" is the plural's entry; "Leute <pl>" is the word.
bool isPluralForm(const DictEntry &entry)
{
    return entry.tags.contains(QLatin1String("pl")) && !entry.tags.contains(QLatin1String("sg")) &&
           !entry.tags.contains(QLatin1String("n"));
}

// Whether `general` is the head of the longer `specific`: "wall" of "indoor wall", "position"
// of "position of employment".
bool isHeadOf(const QString &general, const QString &specific)
{
    return specific.size() > general.size() + 1 &&
           ((specific.endsWith(general) &&
             specific.at(specific.size() - general.size() - 1) == u' ') ||
            (specific.startsWith(general) && specific.at(general.size()) == u' '));
}

// The translations a card shows for a sense: the plain ones, or all of them when none is
// plain, in the dictionary's order except that a word comes before the longer ones it is the
// head of ("indoor wall, wall" → "wall, indoor wall").
QList<DictTranslation> shownTranslations(const DictSense &sense)
{
    QList<DictTranslation> out;
    for (const DictTranslation &t : sense.translations)
        if (t.plain())
            out.append(t);
    if (out.isEmpty())
        out = sense.translations;
    for (qsizetype i = 1; i < out.size(); ++i) {
        for (qsizetype j = 0; j < i; ++j) {
            if (isHeadOf(out[i].text, out[j].text)) {
                out.move(i, j);
                break;
            }
        }
    }
    return out;
}

QStringList texts(const QList<DictTranslation> &translations)
{
    QStringList out;
    for (const DictTranslation &t : translations)
        out.append(t.text);
    return out;
}

// "american, slang" for "hen fruit [Am.] [slang]", "used to represent American speech" for
// "dawg": what sets a translation apart, for the card's list of other words.
QString translationMarks(const DictTranslation &t)
{
    QStringList marks;
    for (const QString &label : t.labels)
        if (const DictLabel l = DictLabel::of(label); l.usage())
            marks.append(l.name.toLower());
    for (const QString &note : t.notes)
        if (isRegisterNote(note))
            marks.append(note);
    return marks.join(QStringLiteral(", "));
}

// The label that best tells one sense from the others: a register, region or field before a
// national variety, a variety before a subject.
QString senseMark(const DictSense &sense)
{
    QString variety, subject;
    for (const QString &label : sense.labels) {
        const DictLabel l = DictLabel::of(label);
        if (l.marked())
            return l.name.toLower();
        if (l.kind == LabelKind::Variety && variety.isEmpty())
            variety = l.name.toLower();
        if (l.kind == LabelKind::Subject && subject.isEmpty())
            subject = l.name.toLower();
    }
    return variety.isEmpty() ? subject : variety;
}

QString sentence(QString text)
{
    text = text.trimmed();
    if (text.isEmpty())
        return text;
    text[0] = text[0].toUpper();
    if (!text.endsWith(u'.') && !text.endsWith(u'!') && !text.endsWith(u'?'))
        text.append(u'.');
    return text;
}

} // namespace

double DictionaryCard::score(const DictEntry &entry, const DictSense &sense)
{
    double s = 3.0 * std::min<qsizetype>(sense.examples.size(), 4);
    if (sense.examples.size() >= 8)
        s += 1; // twice the examples that count in full: the word's main sense
    s += 0.25 * std::min<qsizetype>(entry.seeAlso.size(), 20);
    // A meaning the word shares with many synonyms is one of several ways to say it; the one it
    // shares with none is what the word itself means ("gehen": "go" before "walk").
    s -= 0.25 * std::min<qsizetype>(entry.synonyms.size(), 8);
    s -= labelPenalty(sense.labels);
    if (std::any_of(sense.notes.cbegin(), sense.notes.cend(), isRegisterNote))
        s -= 20;
    // Only a dialect or slang word for the meaning ("moggy [Br.]" is plain, "bairn [Sc.]" not).
    if (std::none_of(sense.translations.cbegin(), sense.translations.cend(),
                     [](const DictTranslation &t) { return t.plain(); }))
        s -= 8;
    if (isCombiningForm(entry.headword))
        s -= 30;
    return s;
}

DictionaryCard::DictionaryCard(const QString &language, const QList<DictEntry> &entries)
    : m_language(language)
{
    m_singular = std::any_of(entries.cbegin(), entries.cend(), [](const DictEntry &e) {
        return e.tags.contains(QLatin1String("sg"));
    });
    // The best sense over all entries decides the headword; only entries of that headword
    // (for "gehen": the verb, not the noun "Gehen") make up the card. Ties go to the sense the
    // dictionary lists first.
    double best = -1e9;
    QString headword;
    for (const DictEntry &entry : entries) {
        for (const DictSense &sense : entry.senses) {
            const double s = rank(entry, sense);
            if (s > best) {
                best = s;
                headword = entry.headword;
            }
        }
    }
    m_term = headword;
    best = -1e9;
    for (const DictEntry &entry : entries) {
        if (entry.headword != headword)
            continue;
        m_entries.append(entry);
        for (int i = 0; i < entry.senses.size(); ++i) {
            const double s = rank(entry, entry.senses[i]);
            if (s > best) {
                best = s;
                m_bestEntry = int(m_entries.size() - 1);
                m_bestSense = i;
            }
        }
    }
}

double DictionaryCard::rank(const DictEntry &entry, const DictSense &sense) const
{
    return score(entry, sense) - (m_singular && isPluralForm(entry) ? 30 : 0);
}

QString DictionaryCard::gloss(int limit) const
{
    if (m_bestEntry < 0)
        return {};
    return texts(shownTranslations(m_entries[m_bestEntry].senses[m_bestSense]))
        .mid(0, limit)
        .join(QStringLiteral(", "));
}

QString DictionaryCard::level(bool smallDictionary) const
{
    int senses = 0, examples = 0;
    for (const DictEntry &e : m_entries) {
        senses += int(e.senses.size());
        examples += e.exampleCount();
    }
    // A large dictionary gives common words many senses and examples; a small one holds only
    // common words, of which the short ones are the everyday ones.
    const bool common = examples >= 2 || senses >= 3 || (smallDictionary && m_term.size() <= 7);
    return common ? QStringLiteral("common") : QStringLiteral("rare");
}

WrittenCard
DictionaryCard::write(const CardProgress &progress,
                      const std::function<QString(const QString &term)> &readingFallback) const
{
    const auto text = [&](const char *field, const QString &value) {
        if (progress.text && !value.isEmpty())
            progress.text(QLatin1String(field), value);
    };
    const auto count = [&](const char *field, qsizetype n) {
        if (progress.count)
            progress.count(QLatin1String(field), int(n));
    };
    WrittenCard card;
    if (m_bestEntry < 0)
        return card;
    const DictEntry &entry = m_entries[m_bestEntry];
    const DictSense &sense = entry.senses[m_bestSense];

    card[QStringLiteral("term")] = m_term;
    text("term", m_term);

    // Entries of one headword share a reading, but not all of them carry it.
    QString reading = entry.reading;
    for (const DictEntry &e : m_entries)
        if (reading.isEmpty())
            reading = e.reading;
    if (reading.isEmpty() && readingFallback)
        reading = readingFallback(m_term);
    card[QStringLiteral("reading")] = reading;
    text("reading", reading);

    QString pos = entry.partOfSpeech();
    QString genderCode = entry.genderCode();
    for (const DictEntry &e : m_entries) {
        if (pos.isEmpty())
            pos = e.partOfSpeech();
        if (genderCode.isEmpty() && e.partOfSpeech() == pos)
            genderCode = e.genderCode();
    }
    card[QStringLiteral("part_of_speech")] = pos;
    text("part_of_speech", pos);
    const QString gender = genderArticle(m_language, genderCode);
    card[QStringLiteral("gender")] = gender;
    text("gender", gender);

    const QList<DictTranslation> shown = shownTranslations(sense);
    const QString translation = texts(shown).join(QStringLiteral(", "));
    card[QStringLiteral("translation")] = translation;
    text("translation", translation);

    // What else the word can mean or be translated with: first the chosen sense's own
    // dialect, slang and dated words, each with what marks it, then the other senses, best
    // first, each as its first few translations and what sets it apart.
    QStringList otherLines;
    for (const DictTranslation &t : sense.translations) {
        if (shown.contains(t))
            continue;
        const QString marks = translationMarks(t);
        otherLines.append(marks.isEmpty() ? t.text : t.text + QStringLiteral(" (") + marks + u')');
    }
    QList<QPair<double, QString>> others;
    for (int ei = 0; ei < m_entries.size(); ++ei) {
        const DictEntry &e = m_entries[ei];
        if (m_singular && isPluralForm(e))
            continue; // "windows" is the plural of "window", not another meaning
        for (int si = 0; si < e.senses.size(); ++si) {
            if (ei == m_bestEntry && si == m_bestSense)
                continue;
            const DictSense &s = e.senses[si];
            const QList<DictTranslation> words = shownTranslations(s);
            QString line = texts(words).mid(0, 3).join(QStringLiteral(", "));
            if (line == translation)
                continue;
            QString mark = senseMark(s);
            if (mark.isEmpty() && !words.first().plain())
                mark = translationMarks(words.first());
            if (!mark.isEmpty())
                line += QStringLiteral(" (") + mark + u')';
            others.append({rank(e, s), line});
        }
    }
    std::stable_sort(others.begin(), others.end(),
                     [](const auto &a, const auto &b) { return a.first > b.first; });
    for (const auto &o : std::as_const(others)) {
        if (otherLines.size() >= 5)
            break;
        if (!otherLines.contains(o.second))
            otherLines.append(o.second);
    }
    const QString definition =
        otherLines.isEmpty()
            ? QString()
            : QStringLiteral("Also: ") + otherLines.join(QStringLiteral("; ")) + u'.';
    card[QStringLiteral("definition")] = definition;
    text("definition", definition);

    // Only what marks the chosen sense itself is a usage note: "Colloquial" on a colloquial
    // sense, never the slang of one of its translations or the field of another sense.
    QStringList usage;
    for (const QString &label : sense.labels)
        if (const DictLabel l = DictLabel::of(label); l.usage())
            usage.append(sentence(l.name));
    for (const QString &note : sense.notes)
        usage.append(sentence(note));
    const QString usageNotes = usage.join(u' ');
    card[QStringLiteral("usage_notes")] = usageNotes;
    text("usage_notes", usageNotes);

    // The chosen sense's examples; when it has none, a few of the other senses'.
    QJsonArray examples;
    const auto addExamples = [&](const DictSense &s, qsizetype limit) {
        for (const DictExample &ex : s.examples) {
            if (examples.size() >= limit)
                return;
            examples.append(QJsonObject{{QStringLiteral("sentence"), ex.sentence},
                                        {QStringLiteral("translation"), ex.translation},
                                        {QStringLiteral("note"), QString()}});
        }
    };
    addExamples(sense, 6);
    if (examples.isEmpty()) {
        for (const DictEntry &e : m_entries)
            for (const DictSense &s : e.senses)
                addExamples(s, 3);
    }
    card[QStringLiteral("examples")] = examples;
    count("examples", examples.size());

    QJsonArray related;
    QStringList seen{m_term};
    const auto addRelated = [&](const QStringList &words, const char *relation) {
        static const QRegularExpression personalForm(
            QStringLiteral("^(ich|du|er|sie|es|wir|ihr)[/ ]"));
        for (const QString &w : words) {
            // "see:" also lists inflected forms and whole sentences; those are not related words.
            const bool sentenceLike = w.count(u' ') >= 3 || w.endsWith(u'.') || w.endsWith(u'!') ||
                                      w.endsWith(u'?') || personalForm.match(w).hasMatch();
            if (related.size() >= 12 || sentenceLike || seen.contains(w, Qt::CaseInsensitive))
                continue;
            seen.append(w);
            related.append(QJsonObject{{QStringLiteral("word"), w},
                                       {QStringLiteral("translation"), QString()},
                                       {QStringLiteral("relation"), QLatin1String(relation)}});
        }
    };
    addRelated(entry.synonyms, "synonym");
    addRelated(entry.seeAlso, "see also");
    card[QStringLiteral("related")] = related;
    count("related", related.size());

    QJsonArray conjugations;
    if (m_language.startsWith(QLatin1String("de")))
        conjugations = germanVerbForms(m_term, m_entries);
    card[QStringLiteral("conjugations")] = conjugations;
    count("conjugations", conjugations.size());
    return card;
}

} // namespace cardserver
