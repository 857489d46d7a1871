#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"

#include <functional>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

// Replies that decode as each record, for the calls that need one.
const QByteArray user = R"({"id":7,"email":"ana@example.org","display_name":"Ana"})";
const QByteArray card =
    R"({"id":5,"deck_id":12,"term":"Hund","reading":"hʊnt","part_of_speech":"noun",
  "gender":"der","translation":"dog","definition":"","usage_notes":"","examples":[],"related":[],
  "conjugations":[],"seen":0,"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"})";
const QByteArray summary = R"({"id":12,"name":"Deutsch","description":"","language":"de",
  "native_language":"en","created_at":"2026-11-01","card_count":0,"known_count":0})";
const QByteArray folder = R"({"id":3,"name":"Languages","deck_count":1})";
const QByteArray preferences =
    R"({"voices":{"pt_BR":"v1"},"rate":1,"gain":1,"hear_on_flip":true,"skin":"paper"})";
const QByteArray note =
    R"({"id":9,"deck_id":12,"title":"Café","created_at":"a","updated_at":"b","lines":[]})";
const QByteArray media = R"({"id":4,"url":"/media/4/a.png","width":1,"height":1,"origin":"upload",
  "source_url":"","author":"","licence":"","title":""})";

QByteArray wrap(const char *key, const QByteArray &record)
{
    return "{\"" + QByteArray(key) + "\":" + record + "}";
}

struct Call {
    const char *name;
    std::function<void(APIClient &)> run;
    QByteArray method;
    QString path;
    QByteArray reply;
    // The JSON body expected, or nothing for a call without a body.
    std::optional<QJsonObject> body = std::nullopt;
    QList<std::pair<QString, QString>> query = {};
};

QJsonObject object(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class TestServerCalls : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    // Runs each call against a server scripted with its reply and checks what went out.
    void check(const QList<Call> &calls)
    {
        for (const Call &call : calls) {
            ScriptedServer server;
            server.reply(call.method, call.path, 200, call.reply);
            APIClient client(server.baseUrl(), m_dir.filePath("cookies"), QString());
            try {
                call.run(client);
            } catch (const ServerError &error) {
                QFAIL(qPrintable(QStringLiteral("%1 failed: %2").arg(call.name, error.message())));
            }
            QCOMPARE(server.requestCount(), 1);
            const ScriptedServer::Request request = server.lastRequest();
            const QByteArray where = call.name;
            QVERIFY2(request.method == call.method, where);
            QVERIFY2(request.path == call.path, where + " went to " + request.path.toUtf8());
            QVERIFY2(request.query == call.query, where);
            if (call.body) {
                QVERIFY2(request.header("Content-Type") == "application/json", where);
                const QJsonObject sent = QJsonDocument::fromJson(request.body).object();
                QVERIFY2(sent == *call.body, where + " sent " + request.body);
            } else {
                QVERIFY2(request.body.isEmpty(), where + " sent " + request.body);
                QVERIFY2(!request.headers.contains("content-type"), where);
            }
        }
    }

private slots:
    void accountCalls()
    {
        check({
            {"me",
             [](APIClient &c) { QCOMPARE(await(c.me()).email, QStringLiteral("ana@example.org")); },
             "GET", "/api/auth/me", user},
            {"signIn", [](APIClient &c) { await(c.signIn("ana@example.org", "secret12")); }, "POST",
             "/api/auth/login", user,
             object(R"({"email":"ana@example.org","password":"secret12"})")},
            {"signUp", [](APIClient &c) { await(c.signUp("ana@example.org", "secret12", "Ana")); },
             "POST", "/api/auth/signup", "{}",
             object(R"({"email":"ana@example.org","password":"secret12","display_name":"Ana"})")},
            {"resendVerification",
             [](APIClient &c) { await(c.resendVerification("ana@example.org")); }, "POST",
             "/api/auth/resend", R"({"ok":true})", object(R"({"email":"ana@example.org"})")},
            {"authOptions",
             [](APIClient &c) {
                 const AuthOptions options = await(c.authOptions());
                 QVERIFY(options.google && !options.apple && options.signup);
             },
             "GET", "/api/auth/options", R"({"google":true,"apple":false,"signup":true})"},
            {"exchange", [](APIClient &c) { QCOMPARE(await(c.exchange("c0de")).id, 7); }, "POST",
             "/api/auth/exchange", user, object(R"({"code":"c0de"})")},
            {"signOut", [](APIClient &c) { await(c.signOut()); }, "POST", "/api/auth/logout", ""},
            {"preferences",
             [](APIClient &c) {
                 const Preferences prefs = await(c.preferences());
                 QCOMPARE(prefs.voices.value("pt_BR"), QStringLiteral("v1")); // keys untouched
                 QVERIFY(!prefs.marginAsYouGo.has_value());
             },
             "GET", "/api/settings", preferences},
            {"saveSettings with only a skin",
             [](APIClient &c) {
                 SettingsChange change;
                 change.skin = QStringLiteral("ink");
                 await(c.saveSettings(change));
             },
             "PATCH", "/api/settings", preferences, object(R"({"skin":"ink"})")},
            {"saveSettings with every field, keys as written",
             [](APIClient &c) {
                 SettingsChange change;
                 change.rate = 0.75;
                 change.gain = 2;
                 change.hearOnFlip = false;
                 change.voices = QMap<QString, QString>{{"pt_BR", "v2"}, {"de", "gmw/de"}};
                 change.skin = QStringLiteral("sage");
                 change.marginAsYouGo = true;
                 await(c.saveSettings(change));
             },
             "PATCH", "/api/settings", preferences,
             object(
                 R"({"rate":0.75,"gain":2,"hearOnFlip":false,"voices":{"pt_BR":"v2","de":"gmw/de"},
                        "skin":"sage","marginAsYouGo":true})")},
            {"changePassword",
             [](APIClient &c) { await(c.changePassword("old-pass", "new-pass1")); }, "POST",
             "/api/settings/password", "{}",
             object(R"({"current":"old-pass","next":"new-pass1"})")},
            {"voices",
             [](APIClient &c) {
                 const VoiceOffer offer = await(c.voices());
                 QVERIFY(offer.audio);
                 QCOMPARE(offer.languages.size(), 1);
             },
             "GET", "/api/settings/voices",
             R"({"audio":true,"languages":[{"code":"de","name":"German","locale":"de-DE",
                 "selected":"gmw/de","voices":[{"id":"gmw/de","name":"German"}]}]})"},
        });
    }

    void libraryCalls()
    {
        check({
            {"decks", [](APIClient &c) { QCOMPARE(await(c.decks()).size(), 1); }, "GET",
             "/api/decks", "[" + summary + "]"},
            {"folders", [](APIClient &c) { QCOMPARE(await(c.folders()).first().deckCount, 1); },
             "GET", "/api/folders", "[" + folder + "]"},
            {"createDeck without a folder",
             [](APIClient &c) { await(c.createDeck("Deutsch", "", "de", "en", std::nullopt)); },
             "POST", "/api/decks", summary,
             object(
                 R"({"name":"Deutsch","description":"","language":"de","native_language":"en"})")},
            {"createDeck in a folder",
             [](APIClient &c) { await(c.createDeck("Deutsch", "mine", "de", "en", 3)); }, "POST",
             "/api/decks", summary,
             object(
                 R"({"name":"Deutsch","description":"mine","language":"de","native_language":"en",
                        "folder_id":3})")},
            {"deck", [](APIClient &c) { QCOMPARE(await(c.deck(12)).cards.size(), 1); }, "GET",
             "/api/decks/12",
             R"({"id":12,"name":"Deutsch","description":"","language":"de","native_language":"en",
                 "created_at":"x","cards":[)" +
                 card + "]}"},
            {"renameDeck with non-ASCII letters",
             [](APIClient &c) { await(c.renameDeck(12, "Français – débutant", "ça va")); }, "PATCH",
             "/api/decks/12", summary,
             object(R"({"name":"Français – débutant","description":"ça va"})")},
            {"moveDeck into a folder", [](APIClient &c) { await(c.moveDeck(12, 3)); }, "PATCH",
             "/api/decks/12", summary, object(R"({"folder_id":3})")},
            {"moveDeck out of its folder",
             [](APIClient &c) { await(c.moveDeck(12, std::nullopt)); }, "PATCH", "/api/decks/12",
             summary, object(R"({"folder_id":null})")},
            {"deleteDeck", [](APIClient &c) { await(c.deleteDeck(12)); }, "DELETE", "/api/decks/12",
             ""},
            {"createFolder", [](APIClient &c) { await(c.createFolder("Languages")); }, "POST",
             "/api/folders", folder, object(R"({"name":"Languages"})")},
            {"renameFolder", [](APIClient &c) { await(c.renameFolder(3, "Sprachen")); }, "PATCH",
             "/api/folders/3", folder, object(R"({"name":"Sprachen"})")},
            {"deleteFolder", [](APIClient &c) { await(c.deleteFolder(3)); }, "DELETE",
             "/api/folders/3", ""},
            {"languages",
             [](APIClient &c) {
                 const QList<Language> languages = await(c.languages());
                 QCOMPARE(languages.first().endonym, QStringLiteral("Deutsch"));
                 QVERIFY(!languages.first().script.has_value());
             },
             "GET", "/api/languages", R"([{"code":"de","name":"German","endonym":"Deutsch"}])"},
            {"search",
             [](APIClient &c) { QCOMPARE(await(c.search("straße & co")).lines.size(), 0); },
             "GET",
             "/api/search",
             R"({"cards":[],"notes":[],"lines":[]})",
             std::nullopt,
             {{"q", "straße & co"}}},
        });
    }

    void cardAndLessonCalls()
    {
        Byte lesson;
        lesson.title = QStringLiteral("Greetings");
        Phrase phrase;
        phrase.phrase = QStringLiteral("Guten Tag");
        lesson.phrases = {phrase};
        Kept first;
        first.at = 0;
        first.card = true;

        check({
            {"regenerate", [](APIClient &c) { await(c.regenerate(5)); }, "POST",
             "/api/cards/5/regenerate", card},
            {"review",
             [](APIClient &c) { QCOMPARE(await(c.review(5, true)).term, QStringLiteral("Hund")); },
             "POST", "/api/cards/5/review", card, object(R"({"known":true})")},
            {"deleteCard", [](APIClient &c) { await(c.deleteCard(5)); }, "DELETE", "/api/cards/5",
             ""},
            {"byte",
             [](APIClient &c) {
                 QCOMPARE(await(c.byte(12, "greetings")).title, QStringLiteral("Hi"));
             },
             "POST", "/api/decks/12/byte", R"({"byte":{"title":"Hi"}})",
             object(R"({"topic":"greetings"})")},
            {"keepByte into a new note",
             [=](APIClient &c) {
                 const Landed landed = await(c.keepByte(12, lesson, {first}, true, std::nullopt));
                 QCOMPARE(landed.note.id, 9);
                 QCOMPARE(landed.cards.size(), 1);
             },
             "POST", "/api/decks/12/byte/keep",
             R"({"note":{"id":9,"title":"Greetings"},"cards":[)" + card + "]}",
             QJsonObject{{"byte", QJsonDocument::fromJson(json::encode(lesson)).object()},
                         {"keep", QJsonArray{QJsonObject{{"at", 0}, {"card", true}}}},
                         {"context", true}}},
            {"keepByte into a chosen note",
             [=](APIClient &c) { await(c.keepByte(12, lesson, {}, false, 9)); }, "POST",
             "/api/decks/12/byte/keep", R"({"note":{"id":9,"title":"Greetings"},"cards":[]})",
             QJsonObject{{"byte", QJsonDocument::fromJson(json::encode(lesson)).object()},
                         {"keep", QJsonArray{}},
                         {"context", false},
                         {"note_id", 9}}},
        });
    }

    void noteCalls()
    {
        NoteDraftLine kept;
        kept.id = 41;
        kept.text = QStringLiteral("Ein Kaffee, bitte.");
        kept.source = QStringLiteral("typed");
        kept.kind = QStringLiteral("text");
        Annotation remark;
        remark.kind = QStringLiteral("gloss");
        remark.span = QStringLiteral("Kaffee");
        remark.body = QStringLiteral("coffee");
        kept.annotations = {remark};
        NoteDraftLine fresh;
        fresh.text = QStringLiteral("Noch einen.");
        fresh.mediaId = 4;

        check({
            {"notes", [](APIClient &c) { QCOMPARE(await(c.notes(12)).first().pendingCount, 2); },
             "GET", "/api/decks/12/notes",
             R"([{"id":9,"title":"Café","created_at":"a","updated_at":"b","line_count":3,"pending_count":2}])"},
            {"createNote", [](APIClient &c) { await(c.createNote(12, "Café", "Ein Kaffee")); },
             "POST", "/api/decks/12/notes", note,
             object(R"({"title":"Café","text":"Ein Kaffee"})")},
            {"note", [](APIClient &c) { QCOMPARE(await(c.note(9)).title, QStringLiteral("Café")); },
             "GET", "/api/notes/9", note},
            {"saveNote",
             [=](APIClient &c) {
                 await(c.saveNote(9, "Café", {kept, fresh}));
             },
             "PATCH", "/api/notes/9", note, object(R"({"title":"Café","lines":[
                {"id":41,"text":"Ein Kaffee, bitte.","source":"typed","kind":"text","annotations":[
                    {"kind":"gloss","span":"Kaffee","body":"coffee","term":"","edited":false,"deeper":[]}]},
                {"text":"Noch einen.","media_id":4,"source":"","kind":"","annotations":[]}]})")},
            {"deleteNote", [](APIClient &c) { await(c.deleteNote(9)); }, "DELETE", "/api/notes/9",
             ""},
            {"annotateLine", [](APIClient &c) { QCOMPARE(await(c.annotateLine(9, 41)).id, 9); },
             "POST", "/api/notes/9/annotate", wrap("note", note), object(R"({"line_id":41})")},
            {"deepen",
             [](APIClient &c) {
                 const Deeper deeper = await(c.deepen(9, 41, 2));
                 QCOMPARE(deeper.level, 2);
                 QVERIFY(deeper.last);
             },
             "POST", "/api/notes/9/lines/41/deepen",
             R"({"deeper":{"level":2,"body":"more","last":true}})", object(R"({"at":2})")},
            {"cardFromLine with a term",
             [](APIClient &c) {
                 QVERIFY(await(c.cardFromLine(9, 41, QStringLiteral("Kaffee"))).already);
             },
             "POST", "/api/notes/9/lines/41/card", R"({"card":)" + card + R"(,"already":true})",
             object(R"({"term":"Kaffee"})")},
            {"cardFromLine without a term",
             [](APIClient &c) { QVERIFY(!await(c.cardFromLine(9, 41, std::nullopt)).already); },
             "POST", "/api/notes/9/lines/41/card", R"({"card":)" + card + R"(,"already":false})",
             QJsonObject{}},
            {"compose",
             [](APIClient &c) {
                 QCOMPARE(await(c.compose(9, "conj", "gehen")),
                          QStringList({"ich gehe", "du gehst"}));
             },
             "POST", "/api/notes/9/compose", R"({"lines":["ich gehe","du gehst"]})",
             object(R"({"kind":"conj","term":"gehen"})")},
            {"compose with nothing sent back",
             [](APIClient &c) { QCOMPARE(await(c.compose(9, "mnemonic", "Hund")), std::nullopt); },
             "POST", "/api/notes/9/compose", "{}", object(R"({"kind":"mnemonic","term":"Hund"})")},
        });
    }

    void pictureAndSoundCalls()
    {
        FoundImage found;
        found.url = QStringLiteral("https://pictures.example/dog.jpg");
        found.thumb = QStringLiteral("https://pictures.example/dog-small.jpg");
        found.title = QStringLiteral("Dog");
        found.author = QStringLiteral("Kim");
        found.licence = QStringLiteral("CC BY 4.0");
        found.origin = QStringLiteral("openverse");
        found.sourceUrl = QStringLiteral("https://pictures.example/page");

        check({
            {"searchImages for pictures",
             [](APIClient &c) {
                 const ImageSearch reply = await(c.searchImages("dog", 12, "photo"));
                 QCOMPARE(reply.query, QStringLiteral("dog"));
                 QVERIFY(!reply.sources.has_value());
             },
             "GET",
             "/api/media/search",
             R"({"query":"dog","results":[]})",
             std::nullopt,
             {{"q", "dog"}, {"deck", "12"}}},
            {"searchImages for moving pictures",
             [](APIClient &c) {
                 const ImageSearch reply = await(c.searchImages("dog", 12, "gif"));
                 QVERIFY(reply.sources && reply.sources->tenor && !reply.sources->giphy);
             },
             "GET",
             "/api/media/search",
             R"({"query":"dog","results":[],"sources":{"tenor":true,"giphy":false}})",
             std::nullopt,
             {{"q", "dog"}, {"deck", "12"}, {"kind", "gif"}}},
            {"importImage", [=](APIClient &c) { await(c.importImage(found)); }, "POST",
             "/api/media/import", media,
             QJsonObject{{"url", found.url},
                         {"title", "Dog"},
                         {"author", "Kim"},
                         {"licence", "CC BY 4.0"},
                         {"origin", "openverse"},
                         {"source_url", found.sourceUrl}}},
        });

        // An upload sends the picture's bytes as they are, with their own type.
        ScriptedServer server;
        server.reply("POST", "/api/media", 200, media);
        APIClient client(server.baseUrl(), m_dir.filePath("cookies"), QString());
        const QByteArray png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
        QCOMPARE(await(client.uploadImage(png, QStringLiteral("image/png"))).id, 4);
        QCOMPARE(server.lastRequest().body, png);
        QCOMPARE(server.lastRequest().header("Content-Type"), QByteArray("image/png"));
        QCOMPARE(server.lastRequest().header("Accept"), QByteArray("application/json"));

        // Clips come from the same URL builder, with their query in a fixed order.
        server.reply("GET", "/api/audio", 200, "ID3-mp3-bytes", "audio/mpeg");
        const QByteArray clip = await(client.fetch(client.clipUrl("Guten Tag", "de", "0.75", "")));
        QCOMPARE(clip, QByteArray("ID3-mp3-bytes"));
        const QList<std::pair<QString, QString>> query{
            {"text", "Guten Tag"}, {"lang", "de"}, {"rate", "0.75"}};
        QCOMPARE(server.lastRequest().query, query);
    }
};

QTEST_GUILESS_MAIN(TestServerCalls)
#include "tst_servercalls.moc"
