#include "routes/noteroutes.h"

#include "app/services.h"
#include "http/apierror.h"
#include "http/eventstream.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "limits/callrate.h"
#include "notes/notestore.h"
#include "routes/streamjob.h"
#include "writers/writer.h"

namespace cardserver {

namespace {

using Access = Router::Access;

constexpr int ContextLines = 4;

Languages languagesOf(Services &s, qint64 userId, qint64 noteId)
{
    const DeckInfo deck = s.decks.info(userId, s.notes.deckOf(userId, noteId));
    return {deck.language, deck.nativeLanguage};
}

// The lines written just before `index`, nearest last, as the writer's context.
QStringList contextBefore(const QList<NoteLine> &lines, int index)
{
    QStringList out;
    for (int i = index - 1; i >= 0 && out.size() < ContextLines; --i)
        if (!lines.at(i).text.trimmed().isEmpty())
            out.prepend(lines.at(i).text);
    return out;
}

// Writes and stores the margin of one line; returns whether it received remarks.
bool annotate(Services &s, const Languages &langs, const QList<NoteLine> &lines, int index)
{
    const NoteLine &line = lines.at(index);
    const QJsonArray written = NoteStore::cleanAnnotations(
        s.writer.annotateLine(langs, line.text, contextBefore(lines, index)), false);
    s.notes.setMargin(line.id, written, line.text);
    return !written.isEmpty();
}

} // namespace

void NoteRoutes::install(Router &router, Services &s)
{
    router.get(R"(/api/decks/(\d+)/notes)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        call.reply(s.notes.summaries(deck.id));
    });

    router.post(R"(/api/decks/(\d+)/notes)", Access::SignedIn, [&s](Call &call) {
        const DeckInfo deck = s.decks.info(call.userId, call.id(1));
        const RequestBody body = call.body();
        const QString title = body.optionalString("title").value_or(QString()).trimmed();
        const QString text = body.optionalString("text").value_or(QString());
        if (title.size() > 300)
            throw ApiError::invalid(QStringLiteral("That title is too long."));
        call.reply(s.notes.create(deck.id, title, text), 201);
    });

    router.get(R"(/api/notes/(\d+))", Access::SignedIn,
               [&s](Call &call) { call.reply(s.notes.note(call.userId, call.id(1))); });

    router.patch(R"(/api/notes/(\d+))", Access::SignedIn, [&s](Call &call) {
        const qint64 noteId = call.id(1);
        const RequestBody body = call.body();
        std::optional<QString> title = body.optionalString("title");
        if (title) {
            *title = title->trimmed();
            if (title->size() > 300)
                throw ApiError::invalid(QStringLiteral("That title is too long."));
        }
        call.reply(s.notes.save(call.userId, noteId, title, body.array("lines")));
    });

    router.del(R"(/api/notes/(\d+))", Access::SignedIn, [&s](Call &call) {
        s.notes.remove(call.userId, call.id(1));
        call.noContent();
    });

    router.post(R"(/api/notes/(\d+)/annotate)", Access::SignedIn, [&s](Call &call) {
        const qint64 noteId = call.id(1);
        const qint64 userId = call.userId;
        const RequestBody body = call.body();
        const Languages langs = languagesOf(s, userId, noteId);

        if (const auto lineId = body.optionalInteger("line_id")) {
            s.notes.line(userId, noteId, *lineId); // 404 unless it is this note's
            const QList<NoteLine> lines = s.notes.lines(noteId);
            for (int i = 0; i < lines.size(); ++i) {
                if (lines.at(i).id != *lineId)
                    continue;
                if (lines.at(i).text.trimmed().isEmpty())
                    throw ApiError::invalid(QStringLiteral("That line is blank."));
                s.modelCalls.takeOrRefuse(userId);
                annotate(s, langs, lines, i);
            }
            call.reply(QJsonObject{{"note", s.notes.note(userId, noteId)}});
            return;
        }

        const bool all = body.optionalBoolean("all").value_or(false);
        StreamJob::start(
            call, s, StreamJob::ModelCall::None,
            [&s, langs, noteId, userId, all](EventStream &stream) {
                const QList<NoteLine> lines = s.notes.lines(noteId);
                QList<int> todo;
                for (int i = 0; i < lines.size(); ++i)
                    if (all ? !lines.at(i).text.trimmed().isEmpty() : lines.at(i).pending())
                        todo.append(i);
                const int total = int(todo.size());
                stream.send(QJsonObject{{"type", "start"}, {"total", total}});
                int done = 0;
                int annotated = 0;
                for (int index : todo) {
                    if (!stream.open())
                        return; // the learner has gone; what is annotated so far is kept
                    try {
                        s.modelCalls.takeOrWait(userId);
                        annotated += annotate(s, langs, lines, index) ? 1 : 0;
                    } catch (const WriterError &e) {
                        stream.send(QJsonObject{{"type", "error"}, {"error", e.message()}});
                        break;
                    }
                    ++done;
                    stream.send(
                        QJsonObject{{"type", "progress"}, {"done", done}, {"total", total}});
                }
                stream.send(QJsonObject{{"type", "done"},
                                        {"note", s.notes.note(userId, noteId)},
                                        {"annotated", annotated}});
            });
    });

    router.post(R"(/api/notes/(\d+)/lines/(\d+)/deepen)", Access::SignedIn, [&s](Call &call) {
        const qint64 noteId = call.id(1);
        const NoteLine line = s.notes.line(call.userId, noteId, call.id(2));
        const qint64 at = call.body().integer("at");
        if (at < 0 || at >= line.annotations.size())
            throw ApiError::notFound(QStringLiteral("That remark does not exist."));
        QJsonArray annotations = line.annotations;
        QJsonObject remark = annotations.at(at).toObject();
        QJsonArray deeper = remark.value("deeper").toArray();
        if (!deeper.isEmpty() && deeper.last().toObject().value("last").toBool())
            throw ApiError(409,
                           QStringLiteral("There is nothing deeper to say about this remark."));
        const int level = int(deeper.size()) + 1;
        s.modelCalls.takeOrRefuse(call.userId);
        const QJsonObject written =
            s.writer.deepen(languagesOf(s, call.userId, noteId), line.text, remark, level);
        const QJsonObject next{{"level", level},
                               {"body", written.value("body").toString()},
                               {"last", written.value("last").toBool(false)}};
        deeper.append(next);
        remark.insert("deeper", deeper);
        annotations.replace(at, remark);
        s.notes.setAnnotations(line.id, annotations);
        call.reply(QJsonObject{{"deeper", next}});
    });

    router.post(R"(/api/notes/(\d+)/lines/(\d+)/card)", Access::SignedIn, [&s](Call &call) {
        const qint64 noteId = call.id(1);
        const NoteLine line = s.notes.line(call.userId, noteId, call.id(2));
        QString term = call.body().optionalString("term").value_or(QString()).trimmed();
        for (const QJsonValue &a : line.annotations) {
            if (!term.isEmpty())
                break;
            term = a.toObject().value("term").toString().trimmed();
        }
        if (term.isEmpty())
            term = line.text.trimmed();
        if (term.isEmpty())
            throw ApiError::invalid(QStringLiteral("That line is blank: there is no word to make "
                                                   "a card from."));
        if (term.size() > 500)
            throw ApiError::invalid(QStringLiteral("That is too long for one card."));
        const DeckInfo deck = s.decks.info(call.userId, s.notes.deckOf(call.userId, noteId));
        if (const auto existing = s.cards.withTerm(deck.id, term)) {
            s.notes.setCard(line.id, existing->value("id").toInteger());
            call.reply(QJsonObject{{"card", *existing}, {"already", true}});
            return;
        }
        s.modelCalls.takeOrRefuse(call.userId);
        QJsonObject written = s.writer.writeCard(
            {deck.language, deck.nativeLanguage}, term,
            {[](const QString &, const QString &) {}, [](const QString &, int) {}});
        if (written.value("term").toString().trimmed().isEmpty())
            written.insert("term", term);
        const QJsonObject card = s.cards.insert(deck.id, written);
        s.notes.setCard(line.id, card.value("id").toInteger());
        call.reply(QJsonObject{{"card", card}, {"already", false}});
    });

    router.post(R"(/api/notes/(\d+)/compose)", Access::SignedIn, [&s](Call &call) {
        const qint64 noteId = call.id(1);
        const RequestBody body = call.body();
        const QString kind = body.string("kind").trimmed().toLower();
        const QString term = body.string("term").trimmed();
        if (kind != QLatin1String("conj") && kind != QLatin1String("mnemonic"))
            throw ApiError::invalid(QStringLiteral("Compose writes “conj” or “mnemonic”, not “%1”.")
                                        .arg(kind.left(40)));
        if (term.isEmpty())
            throw ApiError::invalid(QStringLiteral("Say which word."));
        s.modelCalls.takeOrRefuse(call.userId);
        const QStringList lines = s.writer.compose(languagesOf(s, call.userId, noteId), kind, term);
        call.reply(QJsonObject{{"lines", QJsonArray::fromStringList(lines)}});
    });
}

} // namespace cardserver
