#include "llmwriter.h"

#include "llmprompts.h"
#include "partialjson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

namespace cardserver {

namespace {

const char *const kCardTextFields[] = {"term",        "reading",    "part_of_speech", "gender",
                                       "translation", "definition", "usage_notes"};
const char *const kCardListFields[] = {"examples", "related", "conjugations"};

QString text(const QJsonValue &v)
{
    if (v.isString())
        return v.toString().trimmed();
    if (v.isDouble())
        return QString::number(v.toDouble());
    return {};
}

// Keeps the named string keys of each object of a list, "" for missing ones; drops non-objects.
QJsonArray records(const QJsonValue &list, const QStringList &keys)
{
    QJsonArray out;
    for (const QJsonValue &item : list.toArray()) {
        if (!item.isObject())
            continue;
        QJsonObject record;
        for (const QString &k : keys)
            record.insert(k, text(item[k]));
        out.append(record);
    }
    return out;
}

QJsonObject candidate(const QJsonValue &item)
{
    QJsonObject c;
    for (const char *k : {"term", "seen_as", "gloss", "sentence", "level"})
        c.insert(QLatin1String(k), text(item[QLatin1String(k)]));
    if (c.value(QStringLiteral("seen_as")).toString().isEmpty())
        c.insert(QStringLiteral("seen_as"), c.value(QStringLiteral("term")));
    return c;
}

QJsonArray conjugations(const QJsonValue &list)
{
    QJsonArray out;
    for (const QJsonValue &t : list.toArray()) {
        if (!t.isObject())
            continue;
        out.append(QJsonObject{
            {QStringLiteral("tense"), text(t[QStringLiteral("tense")])},
            {QStringLiteral("note"), text(t[QStringLiteral("note")])},
            {QStringLiteral("forms"), records(t[QStringLiteral("forms")],
                                              {QStringLiteral("label"), QStringLiteral("form")})}});
    }
    return out;
}

// What each text may bring into a prompt. A word, a topic or a command's word longer than
// its cap is refused (the learner typed it and can shorten it); a note's line, the lines
// around it and an earlier remark are cut to their cap (the learner did not type them for
// the model, and remarks on the start of a very long line are still of use).
constexpr int MaxWord = 200;
constexpr int MaxTopic = 500;
constexpr int MaxExtract = 20'000;
constexpr int MaxLine = 2'000;
constexpr int MaxContextLine = 500;
constexpr int MaxRemark = 1'000;

QJsonObject cappedRemark(const QJsonObject &annotation)
{
    QJsonObject out = annotation;
    for (const char *k : {"span", "body", "term"})
        out.insert(QLatin1String(k), annotation.value(QLatin1String(k)).toString().left(MaxRemark));
    QJsonArray deeper;
    for (const QJsonValue &level : annotation.value(QStringLiteral("deeper")).toArray()) {
        QJsonObject l = level.toObject();
        l.insert(QStringLiteral("body"), l.value(QStringLiteral("body")).toString().left(MaxLine));
        deeper.append(l);
    }
    out.insert(QStringLiteral("deeper"), deeper);
    return out;
}

} // namespace

LlmWriter::LlmWriter(const QString &url, const QString &model, const QString &key,
                     const AddressPolicy &addresses)
    : m_chat(url, model, key, addresses)
{}

QJsonObject
LlmWriter::ask(const Languages &langs, const QString &user,
               const std::function<void(const QString &, const QJsonValue &)> &onMember,
               const std::function<void(const QString &, const QJsonValue &)> &onElement)
{
    PartialJson partial;
    partial.onMember = onMember;
    partial.onElement = onElement;
    const QString answer = m_chat.run(LlmPrompts::system(langs), user,
                                      [&](const QString &piece) { partial.feed(piece); });
    // The object itself, without any fence or words around it.
    const qsizetype from = answer.indexOf(u'{');
    const qsizetype to = answer.lastIndexOf(u'}');
    QJsonParseError error{};
    const QJsonDocument doc =
        from < 0 || to < from
            ? QJsonDocument()
            : QJsonDocument::fromJson(answer.mid(from, to - from + 1).toUtf8(), &error);
    if (!doc.isObject() || error.error != QJsonParseError::NoError)
        throw WriterError(
            QStringLiteral("The language model's answer could not be read (it was not "
                           "the JSON object asked for). Try again."),
            503);
    return doc.object();
}

WrittenCard LlmWriter::writeCard(const Languages &langs, const QString &input,
                                 const CardProgress &progress)
{
    const QString word = input.trimmed();
    if (word.isEmpty())
        throw WriterError(QStringLiteral("Type a word to write a card for."), 422);
    if (word.size() > MaxWord)
        throw WriterError(
            QStringLiteral("That is too long for a card; type a word or a short phrase."), 422);

    QSet<QString> reported;
    const auto onMember = [&](const QString &key, const QJsonValue &value) {
        const QByteArray k = key.toUtf8();
        for (const char *f : kCardTextFields) {
            if (k == f && progress.text && !text(value).isEmpty() && !reported.contains(key)) {
                reported.insert(key);
                progress.text(key, text(value));
            }
        }
        for (const char *f : kCardListFields) {
            if (k == f && progress.count && value.isArray() && !reported.contains(key)) {
                reported.insert(key);
                progress.count(key, int(value.toArray().size()));
            }
        }
    };
    const QJsonObject answer = ask(langs, LlmPrompts::card(langs, word), onMember);

    WrittenCard card;
    for (const char *f : kCardTextFields)
        card.insert(QLatin1String(f), text(answer.value(QLatin1String(f))));
    if (card.value(QStringLiteral("term")).toString().isEmpty()) {
        card.insert(QStringLiteral("term"), word);
        if (progress.text)
            progress.text(QStringLiteral("term"), word);
    }
    if (card.value(QStringLiteral("translation")).toString().isEmpty())
        throw WriterError(QStringLiteral("The language model wrote no translation for “%1”. Try "
                                         "again.")
                              .arg(word),
                          503);
    card.insert(QStringLiteral("examples"),
                records(answer.value(QStringLiteral("examples")),
                        {QStringLiteral("sentence"), QStringLiteral("translation"),
                         QStringLiteral("note")}));
    card.insert(QStringLiteral("related"),
                records(answer.value(QStringLiteral("related")),
                        {QStringLiteral("word"), QStringLiteral("translation"),
                         QStringLiteral("relation")}));
    card.insert(QStringLiteral("conjugations"),
                conjugations(answer.value(QStringLiteral("conjugations"))));
    // Lists the stream did not report (absent or not lists) are reported as they ended up.
    for (const char *f : kCardListFields) {
        if (progress.count && !reported.contains(QLatin1String(f)))
            progress.count(QLatin1String(f), int(card.value(QLatin1String(f)).toArray().size()));
    }
    return card;
}

QJsonArray LlmWriter::extract(const Languages &langs, const QString &text,
                              const std::function<void(const QJsonObject &)> &onWord)
{
    QJsonArray out;
    QSet<QString> seen;
    const auto add = [&](const QJsonValue &item) {
        if (!item.isObject())
            return;
        const QJsonObject c = candidate(item);
        const QString key = c.value(QStringLiteral("term")).toString().toLower();
        if (key.isEmpty() || seen.contains(key))
            return;
        seen.insert(key);
        out.append(c);
        if (onWord)
            onWord(c);
    };
    const QJsonObject answer = ask(langs, LlmPrompts::extract(langs, text.left(MaxExtract)), {},
                                   [&](const QString &key, const QJsonValue &element) {
                                       if (key == QLatin1String("words"))
                                           add(element);
                                   });
    // Words the stream could not hand over one by one (e.g. an answer that came in one piece).
    for (const QJsonValue &item : answer.value(QStringLiteral("words")).toArray())
        add(item);
    return out;
}

QJsonObject LlmWriter::byte(const Languages &langs, const QString &topic)
{
    if (topic.trimmed().isEmpty())
        throw WriterError(QStringLiteral("Say what the lesson should be about."), 422);
    if (topic.trimmed().size() > MaxTopic)
        throw WriterError(QStringLiteral("Keep the topic under %1 characters.").arg(MaxTopic), 422);
    const QJsonObject a = ask(langs, LlmPrompts::byte(langs, topic.trimmed()));
    const QJsonObject correction = a.value(QStringLiteral("correction")).toObject();
    QJsonObject out{
        {QStringLiteral("phrases"), records(a.value(QStringLiteral("phrases")),
                                            {QStringLiteral("phrase"), QStringLiteral("reading"),
                                             QStringLiteral("meaning"), QStringLiteral("when")})},
        {QStringLiteral("correction"),
         QJsonObject{{QStringLiteral("wrong"), text(correction.value(QStringLiteral("wrong")))},
                     {QStringLiteral("right"), text(correction.value(QStringLiteral("right")))}}}};
    for (const char *k : {"title", "gist", "explain", "pattern", "remember"})
        out.insert(QLatin1String(k), text(a.value(QLatin1String(k))));
    return out;
}

QJsonArray LlmWriter::annotateLine(const Languages &langs, const QString &line,
                                   const QStringList &context)
{
    if (line.trimmed().isEmpty())
        return {};
    static const QSet<QString> kinds{QStringLiteral("translation"), QStringLiteral("gloss"),
                                     QStringLiteral("note"), QStringLiteral("caution")};
    QStringList around;
    for (const QString &l : context)
        around.append(l.trimmed().left(MaxContextLine));
    const QJsonObject a =
        ask(langs, LlmPrompts::annotate(langs, line.trimmed().left(MaxLine), around));
    QJsonArray out;
    for (const QJsonValue &item : records(a.value(QStringLiteral("annotations")),
                                          {QStringLiteral("kind"), QStringLiteral("span"),
                                           QStringLiteral("body"), QStringLiteral("term")})) {
        QJsonObject note = item.toObject();
        if (note.value(QStringLiteral("body")).toString().isEmpty())
            continue;
        if (!kinds.contains(note.value(QStringLiteral("kind")).toString()))
            note.insert(QStringLiteral("kind"), QStringLiteral("note"));
        out.append(note);
    }
    return out;
}

QJsonObject LlmWriter::deepen(const Languages &langs, const QString &line,
                              const QJsonObject &annotation, int level)
{
    const QJsonObject a =
        ask(langs, LlmPrompts::deepen(langs, line.left(MaxLine), cappedRemark(annotation), level));
    const QString body = text(a.value(QStringLiteral("body")));
    if (body.isEmpty())
        throw WriterError(
            QStringLiteral("The language model had nothing deeper to say. Try again."), 503);
    return {{QStringLiteral("level"), level},
            {QStringLiteral("body"), body},
            {QStringLiteral("last"), a.value(QStringLiteral("last")).toBool() || level >= 3}};
}

QStringList LlmWriter::compose(const Languages &langs, const QString &kind, const QString &term)
{
    if (kind != QLatin1String("conj") && kind != QLatin1String("mnemonic"))
        throw WriterError(QStringLiteral("Unknown command “%1”; try conj or mnemonic.").arg(kind),
                          422);
    if (term.trimmed().isEmpty())
        throw WriterError(QStringLiteral("Say which word."), 422);
    if (term.trimmed().size() > MaxWord)
        throw WriterError(
            QStringLiteral("That is too long; say one word or a short phrase (at most %1 "
                           "characters).")
                .arg(MaxWord),
            422);
    const QJsonObject a = ask(langs, LlmPrompts::compose(langs, kind, term.trimmed()));
    QStringList lines;
    for (const QJsonValue &l : a.value(QStringLiteral("lines")).toArray())
        if (!text(l).isEmpty())
            lines.append(text(l));
    return lines;
}

} // namespace cardserver
