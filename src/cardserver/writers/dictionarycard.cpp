#include "dictionarycard.h"

#include "genderarticle.h"
#include "germanverbforms.h"

#include <algorithm>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

namespace cardserver {

namespace {

const QHash<QString, QString> &labelNames()
{
    static const QHash<QString, QString> names = {
        {QStringLiteral("Am."), QStringLiteral("American")},
        {QStringLiteral("Br."), QStringLiteral("British")},
        {QStringLiteral("coll."), QStringLiteral("Colloquial")},
        {QStringLiteral("ugs."), QStringLiteral("Colloquial")},
        {QStringLiteral("fig."), QStringLiteral("Figurative")},
        {QStringLiteral("übtr."), QStringLiteral("Figurative")},
        {QStringLiteral("geh."), QStringLiteral("Elevated")},
        {QStringLiteral("formal"), QStringLiteral("Formal")},
        {QStringLiteral("slang"), QStringLiteral("Slang")},
        {QStringLiteral("pej."), QStringLiteral("Pejorative")},
        {QStringLiteral("humor."), QStringLiteral("Humorous")},
        {QStringLiteral("dated"), QStringLiteral("Dated")},
        {QStringLiteral("veraltet"), QStringLiteral("Dated")},
        {QStringLiteral("archaic"), QStringLiteral("Archaic")},
        {QStringLiteral("obs."), QStringLiteral("Obsolete")},
        {QStringLiteral("rare"), QStringLiteral("Rare")},
        {QStringLiteral("Ös."), QStringLiteral("Austrian")},
        {QStringLiteral("Schw."), QStringLiteral("Swiss")},
        {QStringLiteral("Dt."), QStringLiteral("Germany")},
        {QStringLiteral("Süddt."), QStringLiteral("Southern German")},
        {QStringLiteral("Norddt."), QStringLiteral("Northern German")},
        {QStringLiteral("Bayr."), QStringLiteral("Bavarian")},
        {QStringLiteral("zool."), QStringLiteral("Zoology")},
        {QStringLiteral("bot."), QStringLiteral("Botany")},
        {QStringLiteral("ornith."), QStringLiteral("Ornithology")},
        {QStringLiteral("med."), QStringLiteral("Medicine")},
        {QStringLiteral("techn."), QStringLiteral("Technology")},
        {QStringLiteral("chem."), QStringLiteral("Chemistry")},
        {QStringLiteral("min."), QStringLiteral("Mining")},
        {QStringLiteral("geogr."), QStringLiteral("Geography")},
        {QStringLiteral("geol."), QStringLiteral("Geology")},
        {QStringLiteral("fin."), QStringLiteral("Finance")},
        {QStringLiteral("econ."), QStringLiteral("Economics")},
        {QStringLiteral("comp."), QStringLiteral("Computing")},
        {QStringLiteral("jur."), QStringLiteral("Law")},
        {QStringLiteral("adm."), QStringLiteral("Administration")},
        {QStringLiteral("cook."), QStringLiteral("Cooking")},
        {QStringLiteral("electr."), QStringLiteral("Electrical engineering")},
        {QStringLiteral("pol."), QStringLiteral("Politics")},
        {QStringLiteral("mil."), QStringLiteral("Military")},
        {QStringLiteral("mus."), QStringLiteral("Music")},
        {QStringLiteral("sport"), QStringLiteral("Sport")},
        {QStringLiteral("relig."), QStringLiteral("Religion")},
        {QStringLiteral("hist."), QStringLiteral("Historical")},
        {QStringLiteral("anat."), QStringLiteral("Anatomy")},
        {QStringLiteral("ling."), QStringLiteral("Linguistics")},
        {QStringLiteral("math."), QStringLiteral("Mathematics")},
        {QStringLiteral("phys."), QStringLiteral("Physics")},
        {QStringLiteral("naut."), QStringLiteral("Nautical")},
        {QStringLiteral("school"), QStringLiteral("School")},
    };
    return names;
}

// Domains a learner rarely means when typing a common word.
const QSet<QString> &technicalLabels()
{
    static const QSet<QString> labels = {
        "techn.",  "chem.",   "min.",    "mining",  "comp.",    "econ.",  "fin.",     "jur.",
        "adm.",    "electr.", "mil.",    "constr.", "phys.",    "geol.",  "biochem.", "mach.",
        "naut.",   "aviat.",  "telco.",  "math.",   "statist.", "pharm.", "print",    "textil.",
        "agr.",    "envir.",  "auto",    "biol.",   "astron.",  "arch.",  "ling.",    "med.",
        "ornith.", "anat.",   "transp.", "tm",      "soc.",     "meteo.", "phil.",    "psych.",
    };
    return labels;
}

const QSet<QString> &fadingLabels()
{
    static const QSet<QString> labels = {"archaic", "obs.", "dated", "veraltet", "alt",  "rare",
                                         "slang",   "pej.", "vulg.", "hist.",    "poet."};
    return labels;
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
    s += 0.25 * std::min<qsizetype>(entry.seeAlso.size(), 20);
    for (const QString &label : sense.labels) {
        if (technicalLabels().contains(label))
            s -= 6;
        else if (fadingLabels().contains(label))
            s -= 3;
    }
    return s;
}

QString DictionaryCard::expandLabel(const QString &label)
{
    return labelNames().value(label, label);
}

DictionaryCard::DictionaryCard(const QString &language, const QList<DictEntry> &entries)
    : m_language(language)
{
    // The best sense over all entries decides the headword; only entries of that headword
    // (for "gehen": the verb, not the noun "Gehen") make up the card.
    double best = -1e9;
    QString headword;
    for (const DictEntry &entry : entries) {
        for (const DictSense &sense : entry.senses) {
            const double s = score(entry, sense);
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
            const double s = score(entry, entry.senses[i]);
            if (s > best) {
                best = s;
                m_bestEntry = int(m_entries.size() - 1);
                m_bestSense = i;
            }
        }
    }
}

QString DictionaryCard::gloss(int limit) const
{
    if (m_bestEntry < 0)
        return {};
    return m_entries[m_bestEntry].senses[m_bestSense].words().mid(0, limit).join(
        QStringLiteral(", "));
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

    const QString translation = sense.words().join(QStringLiteral(", "));
    card[QStringLiteral("translation")] = translation;
    text("translation", translation);

    // The other senses, best first, each as its first few translations and its domain.
    QList<QPair<double, QString>> others;
    for (int ei = 0; ei < m_entries.size(); ++ei) {
        const DictEntry &e = m_entries[ei];
        for (int si = 0; si < e.senses.size(); ++si) {
            if (ei == m_bestEntry && si == m_bestSense)
                continue;
            const DictSense &s = e.senses[si];
            QString line = s.words().mid(0, 3).join(QStringLiteral(", "));
            if (line == translation)
                continue;
            if (!s.labels.isEmpty())
                line += QStringLiteral(" (") + expandLabel(s.labels.first()).toLower() + u')';
            others.append({score(e, s), line});
        }
    }
    std::stable_sort(others.begin(), others.end(),
                     [](const auto &a, const auto &b) { return a.first > b.first; });
    QStringList otherLines;
    for (const auto &o : std::as_const(others)) {
        if (!otherLines.contains(o.second))
            otherLines.append(o.second);
        if (otherLines.size() == 5)
            break;
    }
    const QString definition =
        otherLines.isEmpty()
            ? QString()
            : QStringLiteral("Also: ") + otherLines.join(QStringLiteral("; ")) + u'.';
    card[QStringLiteral("definition")] = definition;
    text("definition", definition);

    QStringList usage;
    for (const QString &label : sense.labels)
        usage.append(sentence(expandLabel(label)));
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
