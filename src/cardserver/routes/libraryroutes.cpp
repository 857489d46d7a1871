#include "routes/libraryroutes.h"

#include "app/services.h"
#include "http/apierror.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "library/languagecatalog.h"
#include "notes/notestore.h"
#include "text/jsonwriter.h"
#include "text/textfold.h"

namespace cardserver {

namespace {

using Access = Router::Access;

QString checkedName(const QString &raw, const QString &what)
{
    const QString name = raw.trimmed();
    if (name.isEmpty())
        throw ApiError::invalid(QStringLiteral("Give the %1 a name.").arg(what));
    if (name.size() > 200)
        throw ApiError::invalid(QStringLiteral("That name is too long."));
    return name;
}

QString checkedDescription(const QString &raw)
{
    if (raw.size() > 2000)
        throw ApiError::invalid(QStringLiteral("That description is too long."));
    return raw.trimmed();
}

QString checkedLanguage(const QString &code)
{
    if (!LanguageCatalog::contains(code))
        throw ApiError::invalid(
            QStringLiteral("“%1” is not a language this server offers.").arg(code.left(40)));
    return code;
}

} // namespace

void LibraryRoutes::install(Router &router, Services &s)
{
    router.get(R"(/api/languages)", Access::Public,
               [](Call &call) { call.reply(LanguageCatalog::all()); });

    router.get(R"(/api/decks)", Access::SignedIn,
               [&s](Call &call) { call.replyText(s.decks.summariesText(call.userId)); });

    router.post(R"(/api/decks)", Access::SignedIn, [&s](Call &call) {
        const RequestBody body = call.body();
        const QString name = checkedName(body.string("name"), QStringLiteral("deck"));
        const QString description =
            checkedDescription(body.optionalString("description").value_or(QString()));
        const QString language = checkedLanguage(body.string("language"));
        const QString native = checkedLanguage(body.string("native_language"));
        call.reply(s.decks.create(call.userId, name, description, language, native,
                                  body.optionalInteger("folder_id")),
                   201);
    });

    router.get(R"(/api/decks/(\d+))", Access::SignedIn, [&s](Call &call) {
        const qint64 deckId = call.id(1);
        const QJsonObject deck = s.decks.summary(call.userId, deckId);
        JsonWriter w;
        w.beginObject();
        w.key("id").value(deckId);
        for (const char *key : {"name", "description", "language", "native_language", "created_at"})
            w.key(key).value(deck.value(key).toString());
        w.key("cards").raw(s.cards.ofDeckText(deckId));
        w.endObject();
        call.replyText(w.take());
    });

    router.patch(R"(/api/decks/(\d+))", Access::SignedIn, [&s](Call &call) {
        const qint64 deckId = call.id(1);
        const RequestBody body = call.body();
        std::optional<QString> name;
        if (auto n = body.optionalString("name"))
            name = checkedName(*n, QStringLiteral("deck"));
        std::optional<QString> description;
        if (auto d = body.optionalString("description"))
            description = checkedDescription(*d);
        std::optional<std::optional<qint64>> move;
        if (body.has("folder_id"))
            move = body.optionalInteger("folder_id");
        call.reply(s.decks.update(call.userId, deckId, name, description, move));
    });

    router.del(R"(/api/decks/(\d+))", Access::SignedIn, [&s](Call &call) {
        s.decks.remove(call.userId, call.id(1));
        call.noContent();
    });

    router.get(R"(/api/folders)", Access::SignedIn,
               [&s](Call &call) { call.reply(s.decks.folders(call.userId)); });

    router.post(R"(/api/folders)", Access::SignedIn, [&s](Call &call) {
        const QString name = checkedName(call.body().string("name"), QStringLiteral("folder"));
        call.reply(s.decks.createFolder(call.userId, name), 201);
    });

    router.patch(R"(/api/folders/(\d+))", Access::SignedIn, [&s](Call &call) {
        const qint64 folderId = call.id(1);
        const QString name = checkedName(call.body().string("name"), QStringLiteral("folder"));
        call.reply(s.decks.renameFolder(call.userId, folderId, name));
    });

    router.del(R"(/api/folders/(\d+))", Access::SignedIn, [&s](Call &call) {
        s.decks.removeFolder(call.userId, call.id(1));
        call.noContent();
    });

    router.get(R"(/api/search)", Access::SignedIn, [&s](Call &call) {
        const QString folded = TextFold::fold(call.query("q").trimmed());
        if (folded.isEmpty()) {
            call.reply(QJsonObject{
                {"cards", QJsonArray()}, {"notes", QJsonArray()}, {"lines", QJsonArray()}});
            return;
        }
        call.reply(QJsonObject{{"cards", s.cards.search(call.userId, folded, 50)},
                               {"notes", s.notes.searchNotes(call.userId, folded, 20)},
                               {"lines", s.notes.searchLines(call.userId, folded, 50)}});
    });
}

} // namespace cardserver
