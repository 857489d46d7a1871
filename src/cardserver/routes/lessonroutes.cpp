#include "routes/lessonroutes.h"

#include "app/services.h"
#include "http/apierror.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "limits/callrate.h"
#include "notes/notestore.h"
#include "writers/writer.h"

namespace cardserver {

namespace {

using Access = Router::Access;

QString textIn(const QJsonObject &o, const char *key)
{
    return o.value(key).toString().trimmed();
}

// A lesson with every key present, whatever the writer or the client sent.
QJsonObject cleanByte(const QJsonObject &in)
{
    QJsonArray phrases;
    for (const QJsonValue &v : in.value("phrases").toArray()) {
        const QJsonObject p = v.toObject();
        phrases.append(QJsonObject{{"phrase", textIn(p, "phrase")},
                                   {"reading", textIn(p, "reading")},
                                   {"meaning", textIn(p, "meaning")},
                                   {"when", textIn(p, "when")}});
    }
    const QJsonObject c = in.value("correction").toObject();
    return {
        {"title", textIn(in, "title")},
        {"gist", textIn(in, "gist")},
        {"explain", textIn(in, "explain")},
        {"phrases", phrases},
        {"pattern", textIn(in, "pattern")},
        {"correction", QJsonObject{{"wrong", textIn(c, "wrong")}, {"right", textIn(c, "right")}}},
        {"remember", textIn(in, "remember")}};
}

QJsonArray phraseMargin(const QJsonObject &p)
{
    QJsonArray margin;
    if (!textIn(p, "meaning").isEmpty())
        margin.append(QJsonObject{{"kind", "translation"},
                                  {"span", textIn(p, "phrase")},
                                  {"body", textIn(p, "meaning")},
                                  {"term", ""},
                                  {"edited", false},
                                  {"deeper", QJsonArray()}});
    if (!textIn(p, "when").isEmpty())
        margin.append(QJsonObject{{"kind", "note"},
                                  {"span", ""},
                                  {"body", textIn(p, "when")},
                                  {"term", ""},
                                  {"edited", false},
                                  {"deeper", QJsonArray()}});
    return margin;
}

} // namespace

void LessonRoutes::install(Router &router, Services &s)
{
    router.post(R"(/api/decks/(\d+)/byte)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const QString topic = call.body().string("topic").trimmed();
        if (topic.isEmpty())
            throw ApiError::invalid(QStringLiteral("Say what the lesson should be about."));
        if (topic.size() > 500)
            throw ApiError::invalid(QStringLiteral("Keep the topic under 500 characters."));
        s.modelCalls.takeOrRefuse(call.userId);
        const QJsonObject byte = s.writer.byte({deck.language, deck.nativeLanguage}, topic);
        call.reply(QJsonObject{{"byte", cleanByte(byte)}});
    });

    router.post(R"(/api/decks/(\d+)/byte/keep)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const RequestBody body = call.body();
        const QJsonObject byte = cleanByte(body.objectAt("byte"));
        const QJsonArray phrases = byte.value("phrases").toArray();
        const bool context = body.optionalBoolean("context").value_or(false);
        const std::optional<qint64> noteId = body.optionalInteger("note_id");

        QList<NoteStore::NewLine> lines;
        QList<QJsonObject> toCards;
        if (context && !byte.value("gist").toString().isEmpty())
            lines.append({byte.value("gist").toString(), "byte", "idea", {}});
        for (const QJsonValue &v : body.array("keep")) {
            const QJsonObject kept = RequestBody::asObject(v, QStringLiteral("keep[]"));
            const std::optional<qint64> at = RequestBody::integerIn(kept, "at", "keep");
            const QJsonValue card = kept.value("card");
            if (!at || !card.isBool())
                throw ApiError::badRequest(
                    QStringLiteral("Each kept phrase needs “at” and “card”."));
            if (*at < 0 || *at >= phrases.size())
                throw ApiError::invalid(QStringLiteral("The lesson has no phrase %1.").arg(*at));
            const QJsonObject phrase = phrases.at(*at).toObject();
            if (card.toBool())
                toCards.append(phrase);
            else
                lines.append({phrase.value("phrase").toString(), "byte", "", phraseMargin(phrase)});
        }
        const QJsonObject correction = byte.value("correction").toObject();
        if (context && !correction.value("wrong").toString().isEmpty())
            lines.append({QStringLiteral("✗ %1 → ✓ %2")
                              .arg(correction.value("wrong").toString(),
                                   correction.value("right").toString()),
                          "byte",
                          "correction",
                          {}});

        QJsonObject stub{{"id", 0}, {"title", ""}};
        if (noteId) {
            if (s.notes.deckOf(call.userId, *noteId) != deck.id)
                throw ApiError::notFound(QStringLiteral("That note does not exist."));
            s.notes.append(*noteId, lines);
            stub = {{"id", *noteId}, {"title", s.notes.note(call.userId, *noteId).value("title")}};
        } else if (!lines.isEmpty()) {
            const QString title = byte.value("title").toString();
            const qint64 id = s.notes.createEmpty(deck.id, title);
            s.notes.append(id, lines);
            stub = {{"id", id}, {"title", title}};
        }

        QJsonArray cards;
        for (const QJsonObject &p : toCards) {
            const QString term = p.value("phrase").toString();
            if (term.isEmpty())
                continue;
            if (const auto existing = s.cards.withTerm(deck.id, term)) {
                cards.append(*existing);
                continue;
            }
            cards.append(s.cards.insert(deck.id, QJsonObject{{"term", term},
                                                             {"reading", p.value("reading")},
                                                             {"translation", p.value("meaning")},
                                                             {"usage_notes", p.value("when")},
                                                             {"part_of_speech", "phrase"}}));
        }
        call.reply(QJsonObject{{"note", stub}, {"cards", cards}});
    });
}

} // namespace cardserver
