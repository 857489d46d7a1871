#include "llmprompts.h"

#include "dictionaryshelf.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace cardserver {

namespace {

QString name(const QString &code)
{
    return DictionaryShelf::languageName(code);
}

QString native(const Languages &langs)
{
    return name(langs.nativeLanguage.isEmpty() ? QStringLiteral("en") : langs.nativeLanguage);
}

} // namespace

QString LlmPrompts::system(const Languages &langs)
{
    return QStringLiteral(
               "You write study material for a learner of %1 whose own language is %2. Everything "
               "explained is written in %2; words and sentences of the language studied are "
               "written in %1. Be accurate and brief. Answer with one JSON object and nothing "
               "else: no prose, no code fences.")
        .arg(name(langs.language), native(langs));
}

QString LlmPrompts::card(const Languages &langs, const QString &input)
{
    return QStringLiteral(
               "Write a vocabulary card for the %1 word or phrase \"%2\".\n"
               "Answer with this JSON object, keys in this order:\n"
               "{\"term\": the dictionary form as a learner should learn it,\n"
               " \"reading\": pronunciation aid (IPA or the usual transliteration), may be \"\",\n"
               " \"part_of_speech\": noun, verb, adjective, adverb, phrase, …,\n"
               " \"gender\": for a noun its definite article in %1 (e.g. der/die/das), else \"\",\n"
               " \"translation\": the usual translation(s), short,\n"
               " \"definition\": one short sentence saying what it means,\n"
               " \"usage_notes\": register, typical use, pitfalls; may be \"\",\n"
               " \"examples\": [{\"sentence\": in %1, \"translation\": in %3, \"note\": short "
               "or \"\"}] (2 to 4),\n"
               " \"related\": [{\"word\", \"translation\", \"relation\": synonym, antonym, "
               "see also, …}] (0 to 5),\n"
               " \"conjugations\": [{\"tense\", \"note\", \"forms\": [{\"label\", \"form\"}]}] "
               "for a verb (present and past at least), [] otherwise}")
        .arg(name(langs.language), input, native(langs));
}

QString LlmPrompts::extract(const Languages &langs, const QString &text)
{
    return QStringLiteral(
               "From the %1 text below, pick the words worth learning (no names, numbers or the "
               "commonest function words), each once, in the order they occur.\n"
               "Answer with {\"words\": [{\"term\": dictionary form, \"seen_as\": the form in the "
               "text, \"gloss\": short %2 translation, \"sentence\": the sentence it occurs in, "
               "\"level\": \"common\" or \"rare\"}]}\n\nText:\n%3")
        .arg(name(langs.language), native(langs), text);
}

QString LlmPrompts::byte(const Languages &langs, const QString &topic)
{
    return QStringLiteral(
               "Write a short lesson in %1 on: %2\n"
               "Answer with {\"title\", \"gist\": one sentence, \"explain\": a short paragraph, "
               "\"phrases\": [{\"phrase\": in %1, \"reading\", \"meaning\": in %3, \"when\": when "
               "to "
               "use it}] (3 to 6), \"pattern\": the pattern behind them, \"correction\": "
               "{\"wrong\": a common mistake, \"right\": its correction}, \"remember\": one line "
               "to remember}")
        .arg(name(langs.language), topic, native(langs));
}

QString LlmPrompts::annotate(const Languages &langs, const QString &line,
                             const QStringList &context)
{
    return QStringLiteral(
               "A learner noted this %1 line: %2\nLines around it: %3\n"
               "Write the margin beside it: a few short remarks. Answer with {\"annotations\": "
               "[{\"kind\": \"translation\" (the whole line), \"gloss\" (one word), \"note\" "
               "(grammar or usage) or \"caution\" (a trap), \"span\": the words of the line it "
               "speaks of, exactly as written, \"body\": the remark in %4, \"term\": the "
               "dictionary form a card could be made from, or \"\"}]}")
        .arg(name(langs.language), line,
             context.isEmpty() ? QStringLiteral("(none)") : context.join(QStringLiteral(" / ")),
             native(langs));
}

QString LlmPrompts::deepen(const Languages &langs, const QString &line,
                           const QJsonObject &annotation, int level)
{
    const QString earlier =
        QString::fromUtf8(QJsonDocument(annotation.value(QStringLiteral("deeper")).toArray())
                              .toJson(QJsonDocument::Compact));
    const QString ask = level <= 1
                            ? QStringLiteral("Explain why this is so: the rule behind the remark.")
                            : QStringLiteral("Go further: the register, the regional variation and "
                                             "the related forms.");
    return QStringLiteral(
               "In the %1 line \"%2\", the remark on \"%3\" reads: %4\nEarlier deeper levels: %5\n"
               "%6 This is level %7. Answer with {\"level\": %7, \"body\": the explanation in %8, "
               "a short paragraph, \"last\": true when nothing useful lies deeper}")
        .arg(name(langs.language), line, annotation.value(QStringLiteral("span")).toString(),
             annotation.value(QStringLiteral("body")).toString(), earlier, ask)
        .arg(level)
        .arg(native(langs));
}

QString LlmPrompts::compose(const Languages &langs, const QString &kind, const QString &term)
{
    if (kind == QLatin1String("conj"))
        return QStringLiteral(
                   "Conjugate the %1 verb \"%2\". Answer with {\"lines\": [one line per tense, "
                   "e.g. \"Present: ich gehe, du gehst, …\"]}, the common tenses only.")
            .arg(name(langs.language), term);
    return QStringLiteral(
               "Give a memory hook for the %1 word \"%2\": a vivid image or sound-alike in %3 "
               "that links the word to its meaning. Answer with {\"lines\": [one to three short "
               "lines]}")
        .arg(name(langs.language), term, native(langs));
}

} // namespace cardserver
