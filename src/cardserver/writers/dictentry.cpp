#include "dictentry.h"

#include "dictlabels.h"

#include <algorithm>
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

// Splits a line of translations at commas and semicolons outside brackets.
QStringList splitItems(const QString &line)
{
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
    return items;
}

// Whether an item carries a grammar tag or a label, as translations do and notes do not.
bool looksLikeTranslation(const QString &item)
{
    static const QRegularExpression marks(QStringLiteral("<[^>]*>|\\[[^\\]]*\\]"));
    return marks.match(item).hasMatch();
}

// "corf <n> [Br.] " → "corf" labelled "Br."; "room <n>rm" → "room" (the abbreviation glued to
// the tag goes, and so does the item "/ˌɛrˈɛm/" that reads it); "will ([+ v]) <adv>" → "will".
// Returns an empty text for an item that is no translation.
DictTranslation parseTranslation(QString item)
{
    static const QRegularExpression tag(QStringLiteral("<[^>]*>[^\\s\\[,]*"));
    static const QRegularExpression government(QStringLiteral("\\(\\[[^\\]]*\\]\\)"));
    static const QRegularExpression label(QStringLiteral("\\[([^\\]]*)\\]"));
    static const QRegularExpression reading(QStringLiteral("^/[^/]*/$"));
    DictTranslation t;
    item.remove(tag).remove(government);
    for (auto it = label.globalMatch(item); it.hasNext();) {
        const QString l = it.next().captured(1).trimmed();
        if (!l.isEmpty() && !t.labels.contains(l))
            t.labels.append(l);
    }
    t.text = item.remove(label).simplified();
    if (reading.match(t.text).hasMatch())
        t.text.clear();
    return t;
}

void appendTranslations(DictSense &sense, const QStringList &items)
{
    for (const QString &item : items) {
        DictTranslation t = parseTranslation(item);
        if (t.text.isEmpty())
            continue;
        const auto same = [&](const DictTranslation &o) { return o.text == t.text; };
        if (std::none_of(sense.translations.cbegin(), sense.translations.cend(), same))
            sense.translations.append(std::move(t));
    }
}

// A note line: its note, and the translations that go on after it.
void addNote(DictSense &sense, const QString &text)
{
    const QStringList items = splitItems(text);
    const bool continues =
        items.size() > 1 && std::any_of(items.cbegin() + 1, items.cend(), looksLikeTranslation);
    const QString note = (continues ? items.first() : text).trimmed();
    if (sense.translations.isEmpty() || note.isEmpty()) {
        if (!note.isEmpty())
            sense.notes.append(note);
    } else if (continues || (sense.translations.size() > 1 && isRegisterNote(note))) {
        sense.translations.last().notes.append(note);
    } else {
        sense.notes.append(note);
    }
    if (continues)
        appendTranslations(sense, items.mid(1));
}

} // namespace

DictEntry DictEntry::parse(const QString &text)
{
    // "Zimmer /tsˈɪmɜ/ (Zi. /tsˈiː/) <neut, n, sg>", "Berg /bˈɛɾk/ ([+ nom]) <masc, n, sg>": an
    // abbreviation or the case the word governs may stand between the reading and the tags.
    static const QRegularExpression headLine(
        QStringLiteral("^(.*?)(?:\\s+/([^/]*)/)?(?:\\s+\\((?:[^()]|\\([^()]*\\))*\\))?"
                       "(?:\\s+<([^>]*)>)?\\s*$"));
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
                addNote(entry.senses.last(), line.mid(5));
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
            appendTranslations(sense, splitItems(rest));
            if (!sense.translations.isEmpty())
                entry.senses.append(sense);
            afterBlank = false;
        }
    }
    return entry;
}

bool DictTranslation::plain() const
{
    const auto markedLabel = [](const QString &l) { return DictLabel::of(l).marked(); };
    return std::none_of(labels.cbegin(), labels.cend(), markedLabel) &&
           std::none_of(notes.cbegin(), notes.cend(), isRegisterNote);
}

QStringList DictSense::words() const
{
    QStringList out;
    for (const DictTranslation &t : translations)
        out.append(t.text);
    return out;
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
