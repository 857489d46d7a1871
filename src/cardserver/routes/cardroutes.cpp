#include "routes/cardroutes.h"

#include "app/services.h"
#include "http/apierror.h"
#include "http/eventstream.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "limits/callrate.h"
#include "routes/streamjob.h"
#include "writers/writer.h"

#include <QSet>

namespace cardserver {

namespace {

using Access = Router::Access;

constexpr int MaxInput = 500;
constexpr int MaxBatch = 200;

QJsonObject event(const char *type)
{
    return QJsonObject{{"type", type}};
}

QJsonObject with(QJsonObject o, const QString &key, const QJsonValue &value)
{
    o.insert(key, value);
    return o;
}

// Writes one card with the writer and stores it; the card's term falls back to the input.
QJsonObject writeAndStore(Services &s, const DeckInfo &deck, const QString &input,
                          const CardProgress &progress)
{
    QJsonObject written = s.writer.writeCard({deck.language, deck.nativeLanguage}, input, progress);
    if (written.value("term").toString().trimmed().isEmpty())
        written.insert("term", input);
    return s.cards.insert(deck.id, written);
}

CardProgress streamedProgress(EventStream &stream)
{
    CardProgress p;
    p.text = [&stream](const QString &field, const QString &value) {
        stream.send(QJsonObject{{"type", "progress"}, {"field", field}, {"value", value}});
    };
    p.count = [&stream](const QString &field, int count) {
        stream.send(QJsonObject{{"type", "progress"}, {"field", field}, {"count", count}});
    };
    return p;
}

CardProgress quiet()
{
    return {[](const QString &, const QString &) {}, [](const QString &, int) {}};
}

QString checkedInput(const QString &raw)
{
    const QString input = raw.trimmed();
    if (input.isEmpty())
        throw ApiError::invalid(QStringLiteral("Type a word first."));
    if (input.size() > MaxInput)
        throw ApiError::invalid(
            QStringLiteral("That is too long for one card: keep it under %1 characters.")
                .arg(MaxInput));
    return input;
}

} // namespace

void CardRoutes::install(Router &router, Services &s)
{
    router.post(R"(/api/decks/(\d+)/cards)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const QString input = checkedInput(call.body().string("input"));
        StreamJob::start(call, s, StreamJob::ModelCall::One,
                         [&s, deck, input](EventStream &stream) {
                             try {
                                 const QJsonObject card =
                                     writeAndStore(s, deck, input, streamedProgress(stream));
                                 stream.send(with(event("card"), "card", card));
                             } catch (const WriterError &e) {
                                 stream.send(with(event("error"), "error", e.message()));
                             }
                         });
    });

    router.post(R"(/api/decks/(\d+)/cards/batch)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const QJsonArray words = call.body().array("words");
        if (words.size() > MaxBatch)
            throw ApiError::invalid(
                QStringLiteral("Write at most %1 words at a time.").arg(MaxBatch));
        QStringList terms;
        for (const QJsonValue &w : words) {
            const QJsonObject o = RequestBody::asObject(w, QStringLiteral("words[]"));
            terms.append(RequestBody::stringIn(o, "term", "word").trimmed());
            RequestBody::stringIn(o, "source", "word", false);
        }
        const qint64 userId = call.userId;
        StreamJob::start(
            call, s, StreamJob::ModelCall::None, [&s, deck, terms, userId](EventStream &stream) {
                stream.send(with(event("start"), "total", int(terms.size())));
                // The batch goes on when the learner stops listening: the cards are theirs anyway.
                for (int i = 0; i < terms.size(); ++i) {
                    const QString term = terms.at(i);
                    QJsonObject base{{"index", i}, {"term", term}};
                    stream.send(with(base, "type", "word"));
                    if (term.isEmpty()) {
                        stream.send(with(with(base, "type", "failed"), "reason",
                                         QStringLiteral("There is no word to write.")));
                        continue;
                    }
                    if (s.cards.withTerm(deck.id, term)) {
                        stream.send(with(with(base, "type", "skipped"), "reason",
                                         QStringLiteral("Already in the deck.")));
                        continue;
                    }
                    try {
                        // A batch slows down to the account's share of model calls, not fails.
                        s.modelCalls.takeOrWait(userId);
                        const QJsonObject card = writeAndStore(s, deck, term, quiet());
                        stream.send(QJsonObject{{"type", "card"}, {"index", i}, {"card", card}});
                    } catch (const WriterError &e) {
                        stream.send(with(with(base, "type", "failed"), "reason", e.message()));
                    }
                }
                stream.send(event("done"));
            });
    });

    router.post(R"(/api/decks/(\d+)/extract)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const QString text = call.body().string("text");
        if (text.trimmed().isEmpty())
            throw ApiError::invalid(QStringLiteral("Paste some text first."));
        const QString read = text.left(ExtractLimit);
        const int unread = int(text.size() - read.size());
        StreamJob::start(
            call, s, StreamJob::ModelCall::One, [&s, deck, read, unread](EventStream &stream) {
                stream.send(with(event("reading"), "characters", int(read.size())));
                QJsonArray offered;
                QSet<QString> seen;
                int skipped = 0;
                try {
                    s.writer.extract(
                        {deck.language, deck.nativeLanguage}, read,
                        [&](const QJsonObject &candidate) {
                            const QString term = candidate.value("term").toString();
                            const QString key = term.trimmed().toCaseFolded();
                            if (key.isEmpty() || seen.contains(key))
                                return;
                            seen.insert(key);
                            if (s.cards.withTerm(deck.id, term)) {
                                ++skipped;
                                return;
                            }
                            QJsonObject word;
                            for (const char *k : {"term", "seen_as", "gloss", "sentence", "level"})
                                word.insert(k, candidate.value(k).toString());
                            offered.append(word);
                            stream.send(with(event("word"), "word", word));
                        });
                } catch (const WriterError &e) {
                    stream.send(with(event("error"), "error", e.message()));
                    return;
                }
                const QString summary =
                    offered.isEmpty() ? QStringLiteral("Nothing new worth a card in this text.")
                                      : QStringLiteral("%1 %2 worth a card in %3 characters.")
                                            .arg(offered.size())
                                            .arg(offered.size() == 1 ? "word" : "words")
                                            .arg(read.size());
                stream.send(QJsonObject{{"type", "done"},
                                        {"summary", summary},
                                        {"words", offered},
                                        {"skipped", skipped},
                                        {"unread", unread}});
            });
    });

    router.post(R"(/api/cards/(\d+)/regenerate)", Access::SignedIn, [&s](Call &call) {
        const qint64 cardId = call.id(1);
        const QJsonObject old = s.cards.card(call.userId, cardId);
        const DeckInfo deck = s.decks.info(call.userId, old.value("deck_id").toInteger());
        s.modelCalls.takeOrRefuse(call.userId);
        const QJsonObject written = s.writer.writeCard({deck.language, deck.nativeLanguage},
                                                       old.value("term").toString(), quiet());
        call.reply(s.cards.rewrite(call.userId, cardId, written));
    });

    router.post(R"(/api/cards/(\d+)/review)", Access::SignedIn, [&s](Call &call) {
        const qint64 cardId = call.id(1);
        const bool known = call.body().boolean("known");
        call.reply(s.cards.review(call.userId, cardId, known));
    });

    router.del(R"(/api/cards/(\d+))", Access::SignedIn, [&s](Call &call) {
        s.cards.remove(call.userId, call.id(1));
        call.noContent();
    });
}

} // namespace cardserver
