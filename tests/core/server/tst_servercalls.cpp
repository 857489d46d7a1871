// The calls whose request can go wrong in ways the records' own tests do not see: keys left out
// versus sent as null, literal keys that differ from the C++ names, text beyond ASCII, whole
// literal bodies, paths with ids and queries that need escaping.
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
const QByteArray card =
    R"({"id":5,"deck_id":12,"term":"Hund","reading":"hʊnt","part_of_speech":"noun",
  "gender":"der","translation":"dog","definition":"","usage_notes":"","examples":[],"related":[],
  "conjugations":[],"seen":0,"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"})";
const QByteArray summary = R"({"id":12,"name":"Deutsch","description":"","language":"de",
  "native_language":"en","created_at":"2026-11-01","card_count":0,"known_count":0})";
const QByteArray preferences =
    R"({"voices":{"pt_BR":"v1"},"rate":1,"gain":1,"hear_on_flip":true,"skin":"paper"})";
const QByteArray note =
    R"({"id":9,"deck_id":12,"title":"Café","created_at":"a","updated_at":"b","lines":[]})";
const QByteArray media = R"({"id":4,"url":"/media/4/a.png","width":1,"height":1,"origin":"upload",
  "source_url":"","author":"","licence":"","title":""})";
const QByteArray made = R"({"card":)" + card + R"(,"already":true})";

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
    void settingsTravelWithLiteralKeys()
    {
        check({
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
        });
    }

    void libraryCalls()
    {
        check({
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
            {"renameDeck with non-ASCII letters",
             [](APIClient &c) { await(c.renameDeck(12, "Français – débutant", "ça va")); }, "PATCH",
             "/api/decks/12", summary,
             object(R"({"name":"Français – débutant","description":"ça va"})")},
            {"moveDeck into a folder", [](APIClient &c) { await(c.moveDeck(12, 3)); }, "PATCH",
             "/api/decks/12", summary, object(R"({"folder_id":3})")},
            {"moveDeck out of its folder",
             [](APIClient &c) { await(c.moveDeck(12, std::nullopt)); }, "PATCH", "/api/decks/12",
             summary, object(R"({"folder_id":null})")},
            {"search",
             [](APIClient &c) { QCOMPARE(await(c.search("straße & co")).lines.size(), 0); },
             "GET",
             "/api/search",
             R"({"cards":[],"notes":[],"lines":[]})",
             std::nullopt,
             {{"q", "straße & co"}}},
        });
    }

    void lessonAndNoteCalls()
    {
        Byte lesson;
        lesson.title = QStringLiteral("Greetings");
        lesson.phrases = {Phrase{.phrase = QStringLiteral("Guten Tag")}};
        const QJsonObject encoded = QJsonDocument::fromJson(json::encode(lesson)).object();
        NoteDraftLine kept;
        kept.id = 41;
        kept.text = QStringLiteral("Ein Kaffee, bitte.");
        kept.source = QStringLiteral("typed");
        kept.kind = QStringLiteral("text");
        kept.annotations = {Annotation{.kind = QStringLiteral("gloss"),
                                       .span = QStringLiteral("Kaffee"),
                                       .body = QStringLiteral("coffee")}};
        NoteDraftLine fresh;
        fresh.text = QStringLiteral("Noch einen.");
        fresh.mediaId = 4;

        check({
            {"keepByte into a new note",
             [=](APIClient &c) {
                 const Landed landed =
                     await(c.keepByte(12, lesson, {Kept{.at = 0, .card = true}}, true, {}));
                 QCOMPARE(landed.cards.size(), 1);
             },
             "POST", "/api/decks/12/byte/keep",
             R"({"note":{"id":9,"title":"Greetings"},"cards":[)" + card + "]}",
             QJsonObject{{"byte", encoded},
                         {"keep", QJsonArray{QJsonObject{{"at", 0}, {"card", true}}}},
                         {"context", true}}},
            {"keepByte into a chosen note",
             [=](APIClient &c) { await(c.keepByte(12, lesson, {}, false, 9)); }, "POST",
             "/api/decks/12/byte/keep", R"({"note":{"id":9,"title":"Greetings"},"cards":[]})",
             QJsonObject{
                 {"byte", encoded}, {"keep", QJsonArray{}}, {"context", false}, {"note_id", 9}}},
            {"saveNote",
             [=](APIClient &c) {
                 await(c.saveNote(9, "Café", {kept, fresh}));
             },
             "PATCH", "/api/notes/9", note, object(R"({"title":"Café","lines":[
                {"id":41,"text":"Ein Kaffee, bitte.","source":"typed","kind":"text","annotations":[
                    {"kind":"gloss","span":"Kaffee","body":"coffee","term":"","edited":false,"deeper":[]}]},
                {"text":"Noch einen.","media_id":4,"source":"","kind":"","annotations":[]}]})")},
            {"annotateLine", [](APIClient &c) { QCOMPARE(await(c.annotateLine(9, 41)).id, 9); },
             "POST", "/api/notes/9/annotate", R"({"note":)" + note + "}",
             object(R"({"line_id":41})")},
            {"deepen",
             [](APIClient &c) {
                 const Deeper deeper = await(c.deepen(9, 41, 2));
                 QCOMPARE(deeper.level, 2);
                 QVERIFY(deeper.last);
             },
             "POST", "/api/notes/9/lines/41/deepen",
             R"({"deeper":{"level":2,"body":"more","last":true}})", object(R"({"at":2})")},
            {"cardFromLine with a term",
             [](APIClient &c) { QVERIFY(await(c.cardFromLine(9, 41, u"Kaffee"_qs)).already); },
             "POST", "/api/notes/9/lines/41/card", made, object(R"({"term":"Kaffee"})")},
            {"cardFromLine without a term",
             [](APIClient &c) { await(c.cardFromLine(9, 41, std::nullopt)); }, "POST",
             "/api/notes/9/lines/41/card", made, QJsonObject{}},
            {"compose with nothing sent back",
             [](APIClient &c) { QCOMPARE(await(c.compose(9, "mnemonic", "Hund")), std::nullopt); },
             "POST", "/api/notes/9/compose", "{}", object(R"({"kind":"mnemonic","term":"Hund"})")},
        });
    }

    void pictureCalls()
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
            {"searchImages for pictures names no kind",
             [](APIClient &c) { QVERIFY(!await(c.searchImages("dog", 12, "photo")).sources); },
             "GET",
             "/api/media/search",
             R"({"query":"dog","results":[]})",
             std::nullopt,
             {{"q", "dog"}, {"deck", "12"}}},
            {"searchImages for moving pictures",
             [](APIClient &c) { QVERIFY(await(c.searchImages("dog", 12, "gif")).sources); },
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
    }
};

QTEST_GUILESS_MAIN(TestServerCalls)
#include "tst_servercalls.moc"
