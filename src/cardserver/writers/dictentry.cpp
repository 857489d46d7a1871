#include "dictentry.h"

#include <QRegularExpression>

namespace cardserver {

namespace {

// "{Hunde}, {Haushund}, {knurriger Hund}" → the words between braces.
QStringList bracedWords(const QString &text)
{
    static const QRegularExpression braces(QStringLiteral("\\{([^}]*)\\}"));
    QStringList out;
    for (auto it = braces.globalMatch(text); it.hasNext();) {
        const QString word = it.next().captured(1).trimmed();
        if (!word.isEmpty() && !out.contains(word))
            out.append(word);
    }
    return out;
}

// Splits a line of translations at commas and semicolons outside brackets, and drops the
// grammar tags ("<n>") and inline labels ("[Br.]") from each item.
QStringList splitTranslations(const QString &line)
{
    static const QRegularExpression noise(QStringLiteral("<[^>]*>|\\[[^\\]]*\\]"));
    QStringList items;
    QString current;
    int depth = 0;
    for (QChar c : line) {
        if (c == u'(' || c == u'[' || c == u'<' || c == u'{')
            ++depth;
        else if ((c == u')' || c == u']' || c == u'>' || c == u'}') && depth > 0)
            --depth;
        if ((c == u',' || c == u';') && depth == 0) {
            items.append(current);
            current.clear();
        } else {
            current.append(c);
        }
    }
    items.append(current);
    QStringList out;
    for (QString item : std::as_const(items)) {
        item = item.remove(noise).simplified();
        if (!item.isEmpty() && !out.contains(item))
            out.append(item);
    }
    return out;
}

} // namespace

DictEntry DictEntry::parse(const QString &text)
{
    static const QRegularExpression headLine(
        QStringLiteral("^(.*?)(?:\\s+/([^/]*)/)?(?:\\s+<([^>]*)>)?\\s*$"));
    static const QRegularExpression example(QStringLiteral("^\"(.*)\"\\s+-\\s+(.*)$"));
    static const QRegularExpression numbered(QStringLiteral("^(\\d+)\\.\\s+(.*)$"));
    static const QRegularExpression leadingLabel(QStringLiteral("^\\[([^\\]]*)\\]\\s*"));

    DictEntry entry;
    const QStringList lines = text.split(u'\n');
    qsizetype i = 0;
    while (i < lines.size() && lines[i].trimmed().isEmpty())
        ++i;
    if (i == lines.size())
        return entry;
    const auto head = headLine.match(lines[i].trimmed());
    entry.headword = head.captured(1).trimmed();
    entry.reading = head.captured(2).trimmed();
    for (const QString &tag : head.captured(3).split(u',', Qt::SkipEmptyParts)) {
        if (!tag.trimmed().isEmpty())
            entry.tags.append(tag.trimmed());
    }

    bool afterBlank = false; // notes after a blank line gloss the headword in its own language
    for (++i; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty()) {
            afterBlank = !entry.senses.isEmpty();
            continue;
        }
        if (line.startsWith(QLatin1String("Note:"))) {
            if (!afterBlank && !entry.senses.isEmpty())
                entry.senses.last().notes.append(line.mid(5).trimmed());
        } else if (line.startsWith(u'"')) {
            if (entry.senses.isEmpty())
                continue;
            const auto m = example.match(line);
            if (m.hasMatch())
                entry.senses.last().examples.append(
                    {m.captured(1).trimmed(), m.captured(2).trimmed()});
            else
                entry.senses.last().examples.append({line.mid(1).remove(u'"').trimmed(), {}});
        } else if (line.startsWith(QLatin1String("Synonym:")) ||
                   line.startsWith(QLatin1String("Synonyms:"))) {
            for (const QString &w : bracedWords(line))
                if (!entry.synonyms.contains(w))
                    entry.synonyms.append(w);
        } else if (line.startsWith(QLatin1String("see:"))) {
            for (const QString &w : bracedWords(line))
                if (!entry.seeAlso.contains(w))
                    entry.seeAlso.append(w);
        } else {
            DictSense sense;
            QString rest = line;
            if (const auto m = numbered.match(rest); m.hasMatch())
                rest = m.captured(2);
            for (auto m = leadingLabel.match(rest); m.hasMatch(); m = leadingLabel.match(rest)) {
                sense.labels.append(m.captured(1).trimmed());
                rest = rest.mid(m.capturedLength());
            }
            sense.translations = splitTranslations(rest);
            if (!sense.translations.isEmpty())
                entry.senses.append(sense);
            afterBlank = false;
        }
    }
    return entry;
}

QString DictEntry::partOfSpeech() const
{
    const auto has = [&](const char *tag) { return tags.contains(QLatin1String(tag)); };
    if (has("n") || has("masc") || has("fem") || has("neut"))
        return QStringLiteral("noun");
    if (has("pl"))
        return QStringLiteral("noun (plural)");
    if (has("v") || has("vt") || has("vi")) {
        if (has("refl"))
            return QStringLiteral("reflexive verb");
        const bool trans = has("trans") || has("vt");
        const bool intr = has("intr") || has("vi");
        if (trans && !intr)
            return QStringLiteral("transitive verb");
        if (intr && !trans)
            return QStringLiteral("intransitive verb");
        return QStringLiteral("verb");
    }
    static const QList<QPair<const char *, const char *>> simple = {
        {"adj", "adjective"},       {"adv", "adverb"},       {"pron", "pronoun"},
        {"prep", "preposition"},    {"conj", "conjunction"}, {"int", "interjection"},
        {"interj", "interjection"}, {"num", "numeral"},      {"art", "article"},
        {"abbr", "abbreviation"},   {"phrase", "phrase"},
    };
    for (const auto &[tag, name] : simple) {
        if (has(tag))
            return QLatin1String(name);
    }
    return {};
}

QString DictEntry::genderCode() const
{
    QStringList codes;
    for (const QString &tag : tags) {
        if (tag == QLatin1String("masc") || tag == QLatin1String("fem") ||
            tag == QLatin1String("neut"))
            codes.append(tag);
    }
    return codes.join(u'/');
}

int DictEntry::exampleCount() const
{
    int n = 0;
    for (const DictSense &s : senses)
        n += int(s.examples.size());
    return n;
}

} // namespace cardserver
