#include "dictionarywriter.h"

#include "dictionarycard.h"
#include "espeakreading.h"
#include "textwords.h"

#include <QJsonObject>
#include <QSet>

namespace cardserver {

namespace {

const QString kModelHint =
    QStringLiteral("Start orvel-server with --writer llm --llm-url URL --llm-model NAME.");

QString quoted(const QString &word)
{
    return QStringLiteral("“") + word + QStringLiteral("”");
}

// Endings to try when an inflected form is not filed itself, longest first.
QStringList endingsOf(const QString &language)
{
    const QString code = language.left(2).toLower();
    if (code == QLatin1String("de"))
        return {QStringLiteral("en"), QStringLiteral("es"), QStringLiteral("er"),
                QStringLiteral("em"), QStringLiteral("e"),  QStringLiteral("n"),
                QStringLiteral("s")};
    if (code == QLatin1String("nl"))
        return {QStringLiteral("en"), QStringLiteral("s"), QStringLiteral("n")};
    if (code == QLatin1String("fr") || code == QLatin1String("es") || code == QLatin1String("pt"))
        return {QStringLiteral("es"), QStringLiteral("s"), QStringLiteral("x")};
    return {};
}

} // namespace

DictionaryWriter::DictionaryWriter(const QString &dictionaryFolder, WorkGate *tools)
    : m_shelf(dictionaryFolder), m_tools(tools)
{}

Dictionary &DictionaryWriter::dictionaryFor(const Languages &langs) const
{
    const QString native =
        langs.nativeLanguage.isEmpty() ? QStringLiteral("en") : langs.nativeLanguage;
    Dictionary *dictionary = m_shelf.find(langs.language, native);
    if (!dictionary) {
        const QString pair = DictionaryShelf::languageName(langs.language) + QStringLiteral("–") +
                             DictionaryShelf::languageName(native);
        throw WriterError(
            QStringLiteral("There is no %1 dictionary installed. Install its FreeDict "
                           "package (dict-freedict-%2-%3), or %4")
                .arg(pair, DictionaryShelf::threeLetterCode(langs.language.left(2)),
                     DictionaryShelf::threeLetterCode(native.left(2)),
                     kModelHint.at(0).toLower() + kModelHint.mid(1)),
            422);
    }
    return *dictionary;
}

QList<DictEntry> DictionaryWriter::entriesFor(Dictionary &dictionary, const QString &language,
                                              const QString &word) const
{
    QList<DictEntry> entries = dictionary.lookup(word);
    if (!entries.isEmpty())
        return entries;
    // French and Italian elide articles and pronouns: "l’homme", "dell'acqua".
    for (QChar apostrophe : {QChar(u'\''), QChar(u'’')}) {
        const qsizetype at = word.indexOf(apostrophe);
        if (at > 0 && at + 1 < word.size()) {
            entries = dictionary.lookup(word.mid(at + 1));
            if (!entries.isEmpty())
                return entries;
        }
    }
    for (const QString &ending : endingsOf(language)) {
        if (word.size() > ending.size() + 2 && word.endsWith(ending, Qt::CaseInsensitive)) {
            entries = dictionary.lookup(word.chopped(ending.size()));
            if (!entries.isEmpty())
                return entries;
        }
    }
    return {};
}

QList<DictEntry> DictionaryWriter::lemmaEntries(Dictionary &dictionary,
                                                const QList<DictEntry> &forms) const
{
    for (const DictEntry &form : forms) {
        if (!form.tags.isEmpty())
            return {}; // a word with its own part of speech is a dictionary form itself
    }
    for (const DictEntry &form : forms.mid(0, 2)) {
        if (form.seeAlso.isEmpty())
            continue;
        const QString lemma = form.seeAlso.first();
        if (lemma.contains(u' ') || lemma.compare(form.headword, Qt::CaseInsensitive) == 0)
            continue;
        QList<DictEntry> found;
        bool listsTheForm = false;
        for (const DictEntry &e : dictionary.lookup(lemma)) {
            if (e.headword != lemma || e.tags.isEmpty())
                continue;
            found.append(e);
            for (const QString &item : e.seeAlso)
                listsTheForm =
                    listsTheForm || item == form.headword || item.endsWith(u' ' + form.headword);
        }
        if (listsTheForm)
            return found;
    }
    return {};
}

QList<DictEntry> DictionaryWriter::entriesForInput(Dictionary &dictionary, const QString &language,
                                                   const QString &input) const
{
    QList<DictEntry> entries = dictionary.lookup(input);
    if (entries.isEmpty()) {
        const QList<TextWord> words = TextWords::split(input);
        if (words.size() == 1) {
            entries = entriesFor(dictionary, language, words.first().word);
        } else {
            for (const TextWord &w : words) {
                if (TextWords::isStopWord(language, w.word))
                    continue;
                entries = entriesFor(dictionary, language, w.word);
                break; // the first content word decides
            }
        }
    }
    // "gehen" means the verb, "Gehen" the noun: entries spelled exactly as typed come first.
    QList<DictEntry> exact;
    for (const DictEntry &e : std::as_const(entries))
        if (e.headword == input)
            exact.append(e);
    return exact.isEmpty() ? entries : exact;
}

WrittenCard DictionaryWriter::writeCard(const Languages &langs, const QString &input,
                                        const CardProgress &progress)
{
    const QString word = input.trimmed();
    if (word.isEmpty())
        throw WriterError(QStringLiteral("Type a word to write a card for."), 422);
    if (word.size() > 200)
        throw WriterError(
            QStringLiteral("That is too long for a card; type a word or a short phrase."), 422);
    Dictionary &dictionary = dictionaryFor(langs);
    const QList<DictEntry> entries = entriesForInput(dictionary, langs.language, word);
    if (entries.isEmpty())
        throw WriterError(QStringLiteral("No entry for %1 in the %2–%3 dictionary.")
                              .arg(quoted(word), DictionaryShelf::languageName(langs.language),
                                   DictionaryShelf::languageName(langs.nativeLanguage.isEmpty()
                                                                     ? QStringLiteral("en")
                                                                     : langs.nativeLanguage)),
                          422);
    const DictionaryCard card(langs.language, entries);
    const QString language = langs.language;
    return card.write(progress,
                      [&](const QString &term) { return espeakReading(language, term, m_tools); });
}

QJsonArray DictionaryWriter::extract(const Languages &langs, const QString &text,
                                     const std::function<void(const QJsonObject &)> &onWord)
{
    Dictionary &dictionary = dictionaryFor(langs);
    // A dictionary of a few thousand headwords holds everyday words only.
    const bool small = dictionary.headwordCount() < 50000;
    QJsonArray out;
    QSet<QString> seenForms, seenTerms;
    for (const TextWord &w : TextWords::split(text.left(kExtractLimit))) {
        const QString folded = w.word.toLower();
        if (w.word.size() < 2 || seenForms.contains(folded) ||
            TextWords::isStopWord(langs.language, w.word))
            continue;
        seenForms.insert(folded);
        QList<DictEntry> entries = entriesFor(dictionary, langs.language, w.word);
        if (entries.isEmpty())
            continue;
        if (QList<DictEntry> lemma = lemmaEntries(dictionary, entries); !lemma.isEmpty())
            entries = lemma; // "sieht" is offered as "sehen"
        const DictionaryCard card(langs.language, entries);
        if (card.term().isEmpty() || seenTerms.contains(card.term().toLower()))
            continue;
        seenTerms.insert(card.term().toLower());
        const QJsonObject candidate{{QStringLiteral("term"), card.term()},
                                    {QStringLiteral("seen_as"), w.word},
                                    {QStringLiteral("gloss"), card.gloss()},
                                    {QStringLiteral("sentence"), w.sentence},
                                    {QStringLiteral("level"), card.level(small)}};
        out.append(candidate);
        if (onWord)
            onWord(candidate);
    }
    return out;
}

QJsonArray DictionaryWriter::annotateLine(const Languages &langs, const QString &line,
                                          const QStringList &context)
{
    Q_UNUSED(context);
    Dictionary &dictionary = dictionaryFor(langs);
    QJsonArray out;
    const QString trimmed = line.trimmed();
    if (trimmed.isEmpty())
        return out;
    const QList<TextWord> words = TextWords::split(trimmed);
    // A line that is itself an entry ("Guten Morgen") gets a translation of the whole.
    if (words.size() > 1) {
        const QList<DictEntry> whole = dictionary.lookup(trimmed);
        if (!whole.isEmpty()) {
            const DictionaryCard card(langs.language, whole);
            out.append(QJsonObject{{QStringLiteral("kind"), QStringLiteral("translation")},
                                   {QStringLiteral("span"), trimmed},
                                   {QStringLiteral("body"), card.gloss()},
                                   {QStringLiteral("term"), card.term()}});
        }
    }
    QSet<QString> seen;
    for (const TextWord &w : words) {
        const QString folded = w.word.toLower();
        if (seen.contains(folded) || TextWords::isStopWord(langs.language, w.word))
            continue;
        seen.insert(folded);
        const QList<DictEntry> entries = entriesFor(dictionary, langs.language, w.word);
        if (entries.isEmpty())
            continue;
        // The gloss translates the form as it stands; the term is what a card is made from.
        const DictionaryCard card(langs.language, entries);
        const QList<DictEntry> lemma = lemmaEntries(dictionary, entries);
        const QString term =
            lemma.isEmpty() ? card.term() : DictionaryCard(langs.language, lemma).term();
        out.append(QJsonObject{{QStringLiteral("kind"), QStringLiteral("gloss")},
                               {QStringLiteral("span"), w.word},
                               {QStringLiteral("body"), card.gloss()},
                               {QStringLiteral("term"), term}});
    }
    return out;
}

QJsonObject DictionaryWriter::byte(const Languages &, const QString &)
{
    throw WriterError(QStringLiteral("Short lessons need a language model. ") + kModelHint, 503);
}

QJsonObject DictionaryWriter::deepen(const Languages &, const QString &, const QJsonObject &, int)
{
    throw WriterError(QStringLiteral("Deeper explanations need a language model. ") + kModelHint,
                      503);
}

QStringList DictionaryWriter::compose(const Languages &langs, const QString &kind,
                                      const QString &term)
{
    if (kind == QLatin1String("mnemonic"))
        throw WriterError(QStringLiteral("Memory hooks need a language model. ") + kModelHint, 503);
    if (kind != QLatin1String("conj"))
        throw WriterError(QStringLiteral("Unknown command “%1”; try conj or mnemonic.").arg(kind),
                          422);
    const QString word = term.trimmed();
    if (word.isEmpty())
        throw WriterError(QStringLiteral("Say which verb to conjugate."), 422);

    Dictionary &dictionary = dictionaryFor(langs);
    const QList<DictEntry> entries = entriesForInput(dictionary, langs.language, word);
    QStringList lines;
    if (!entries.isEmpty()) {
        const WrittenCard card = DictionaryCard(langs.language, entries).write({}, {});
        for (const QJsonValue &table : card.value(QStringLiteral("conjugations")).toArray()) {
            QStringList forms;
            for (const QJsonValue &f : table[QStringLiteral("forms")].toArray())
                forms.append(f[QStringLiteral("label")].toString() + u' ' +
                             f[QStringLiteral("form")].toString());
            lines.append(table[QStringLiteral("tense")].toString() + QStringLiteral(": ") +
                         forms.join(QStringLiteral(", ")));
        }
    }
    if (lines.isEmpty())
        throw WriterError(QStringLiteral("The dictionary lists no forms of %1; conjugation tables "
                                         "need a language model. ")
                                  .arg(quoted(word)) +
                              kModelHint,
                          503);
    return lines;
}

} // namespace cardserver
