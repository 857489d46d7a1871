// Pictures over HTTP: uploads of each accepted type (sizes read from the headers), refusals
// by type and size, the files served back, import of a found picture and the search.
#include "api.h"
#include "scriptedserver.h"

#include <QtEndian>
#include <QTest>

namespace {

QByteArray be32(quint32 v)
{
    QByteArray b(4, '\0');
    qToBigEndian(v, b.data());
    return b;
}

QByteArray png(quint32 w, quint32 h)
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + be32(13) + "IHDR" + be32(w) + be32(h) +
           QByteArray("\x08\x06\x00\x00\x00", 5) + be32(0) + be32(0) + "IEND" + be32(0);
}

QByteArray gif(quint16 w, quint16 h)
{
    QByteArray b("GIF89a");
    b.append(char(w & 0xff)).append(char(w >> 8)).append(char(h & 0xff)).append(char(h >> 8));
    return b + QByteArray("\x00\x00\x00\x3b", 4);
}

QByteArray jpeg(quint16 w, quint16 h)
{
    QByteArray b("\xff\xd8\xff\xe0\x00\x10JFIF\x00\x01\x01\x00\x00\x01\x00\x01\x00\x00", 20);
    b += QByteArray("\xff\xc0\x00\x11\x08", 5);
    b.append(char(h >> 8)).append(char(h & 0xff)).append(char(w >> 8)).append(char(w & 0xff));
    b += QByteArray(10, '\x01');
    return b + QByteArray("\xff\xd9", 2);
}

QByteArray webp(quint32 w, quint32 h)
{
    QByteArray b("RIFF\x00\x00\x00\x00WEBPVP8X\x0a\x00\x00\x00\x00\x00\x00\x00", 24);
    for (quint32 v : {w - 1, h - 1})
        b.append(char(v & 0xff)).append(char((v >> 8) & 0xff)).append(char((v >> 16) & 0xff));
    return b;
}

} // namespace

class TestMedia : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local", "--allow-private-fetch"}};
    std::unique_ptr<Api> api;

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("pics@example.org");
    }

    void uploadsOfEachType_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("png") << png(640, 480) << QByteArray("image/png") << 640 << 480;
        QTest::newRow("gif") << gif(32, 16) << QByteArray("image/gif") << 32 << 16;
        QTest::newRow("jpeg") << jpeg(1024, 768) << QByteArray("image/jpeg") << 1024 << 768;
        QTest::newRow("webp") << webp(300, 200) << QByteArray("image/webp") << 300 << 200;
    }

    void uploadsOfEachType()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, type);
        QFETCH(int, width);
        QFETCH(int, height);
        const Api::Reply r = api->postRaw("/api/media", bytes, type.constData());
        QCOMPARE(r.status, 201);
        QCOMPARE(r["width"].toInt(), width);
        QCOMPARE(r["height"].toInt(), height);
        QCOMPARE(r["origin"].toString(), QStringLiteral("upload"));
        const QString url = r["url"].toString();
        QVERIFY(url.startsWith(path("/media/%1/", r.id())));

        // Served back as stored, to anyone who has the address.
        Api anyone(server.baseUrl());
        const Api::Reply file = anyone.get(url);
        QCOMPARE(file.status, 200);
        QCOMPARE(file.body, bytes);
        QCOMPARE(file.header("Content-Type"), QString::fromLatin1(type));
        QCOMPARE(anyone.get(url.left(url.lastIndexOf('/') + 1) + QString(32, '0') + ".png").status,
                 404);
    }

    void refusals()
    {
        QCOMPARE(api->postRaw("/api/media", "just words", "image/png").status, 415);
        QCOMPARE(api->postRaw("/api/media", png(4, 4), "image/bmp").status, 415);
        QCOMPARE(api->postRaw("/api/media", png(4, 4), "text/plain").status, 415);
        const Api::Reply big =
            api->postRaw("/api/media", png(4, 4) + QByteArray(10 * 1024 * 1024, 'x'), "image/png");
        QCOMPARE(big.status, 413);
        QVERIFY(!big.error().isEmpty());
        Api stranger(server.baseUrl());
        QCOMPARE(stranger.postRaw("/api/media", png(4, 4), "image/png").status, 401);
    }

    void importAndSearch()
    {
        ScriptedServer web;
        const QByteArray picture = png(50, 60);
        web.reply("GET", "/cat.png", 200, picture, "image/png");
        web.reply("GET", "/page.html", 200, "<html></html>", "text/html");
        const QString origin = web.baseUrl().toString();

        const Api::Reply imported =
            api->post("/api/media/import", QJsonObject{{"url", origin + "/cat.png"},
                                                       {"thumb", origin + "/cat.png"},
                                                       {"title", "Eine schläfrige Katze"},
                                                       {"author", "Mia"},
                                                       {"licence", "CC BY 4.0"},
                                                       {"origin", "openverse"},
                                                       {"source_url", origin + "/page.html"}});
        QCOMPARE(imported.status, 201);
        const QJsonObject media = imported.object();
        QCOMPARE(media["width"].toInt(), 50);
        QCOMPARE(media["author"].toString(), QStringLiteral("Mia"));
        QCOMPARE(media["licence"].toString(), QStringLiteral("CC BY 4.0"));
        QCOMPARE(api->get(media["url"].toString()).body, picture);

        QCOMPARE(api->post("/api/media/import", QJsonObject{{"url", origin + "/page.html"}}).status,
                 415);
        QCOMPARE(
            api->post("/api/media/import", QJsonObject{{"url", origin + "/missing.png"}}).status,
            422);
        // One's own picture comes back as it is.
        const Api::Reply own = api->post("/api/media/import", QJsonObject{{"url", media["url"]}});
        QCOMPARE(own.status, 200);
        QCOMPARE(own.id(), media["id"].toInteger());

        const auto search = [&](const char *query) {
            return api->get(QStringLiteral("/api/media/search?") + query)["results"].toArray();
        };
        const Api::Reply found = api->get("/api/media/search?q=SCHLAFRIGE&deck=&kind=img");
        QCOMPARE(found["query"].toString(), QStringLiteral("SCHLAFRIGE"));
        QCOMPARE(found["results"].toArray().size(), 1);
        QCOMPARE(found["results"][0]["url"], media["url"]);
        QVERIFY(found["sources"].toObject().contains("tenor"));
        QVERIFY(found["sources"].toObject().contains("giphy"));
        QCOMPARE(search("q=katze&kind=gif").size(), 0);

        // A picture placed on a note line is found by the line's words.
        const QJsonObject note = api->note(api->deck()["id"].toInteger(), "", "");
        const Api::Reply upload = api->postRaw("/api/media", gif(8, 8), "image/gif");
        const Api::Reply saved = api->patch(
            path("/api/notes/%1", note["id"].toInteger()),
            QJsonObject{{"title", ""},
                        {"lines", QJsonArray{QJsonObject{{"text", "der Regenschirm"},
                                                         {"media_id", upload.id()},
                                                         {"source", ""},
                                                         {"kind", ""},
                                                         {"annotations", QJsonArray()}}}}});
        QCOMPARE(saved["lines"][0]["media"]["url"], upload["url"]);
        const QJsonArray byLine = search("q=regenschirm");
        QCOMPARE(byLine.size(), 1);
        QCOMPARE(byLine[0]["animated"].toBool(), false);
        // Only moving pictures answer a search for moving ones.
        QCOMPARE(search("q=regenschirm&kind=gif").size(), 0);
    }

    void movingPicturesFromProvidersWithKeys()
    {
        ScriptedServer providers;
        providers.reply(
            "GET", "/v1/gifs/search", 200,
            "{\"data\":[{\"title\":\"Dancing cat\",\"username\":\"mia\","
            "\"url\":\"https://giphy.example/cat\",\"images\":{\"original\":"
            "{\"url\":\"https://media.example/cat.gif\",\"width\":\"480\",\"height\":\"270\"},"
            "\"fixed_width_small\":{\"url\":\"https://media.example/cat-small.gif\"}}}]}");
        providers.reply("GET", "/v2/search", 500, "{}"); // a provider that fails adds nothing
        const QByteArray base = providers.baseUrl().toString().toUtf8();
        qputenv("GIPHY_API_KEY", "giphy-key");
        qputenv("TENOR_API_KEY", "tenor-key");
        qputenv("ORVEL_GIPHY_URL", base);
        qputenv("ORVEL_TENOR_URL", base);
        ServerProcess keyed({"--local", "--allow-private-fetch"});
        const bool started = startServer(keyed);
        for (const char *name :
             {"GIPHY_API_KEY", "TENOR_API_KEY", "ORVEL_GIPHY_URL", "ORVEL_TENOR_URL"})
            qunsetenv(name);
        QVERIFY(started);
        Api learner(keyed.baseUrl());
        learner.join("gifs@example.org");

        const Api::Reply reply = learner.get("/api/media/search?q=happy%20cat&kind=gif");
        QCOMPARE(reply["sources"]["giphy"].toBool(), true);
        QCOMPARE(reply["sources"]["tenor"].toBool(), true);
        QCOMPARE(reply["results"].toArray().size(), 1);
        const QJsonValue cat = reply["results"][0];
        QCOMPARE(cat["url"].toString(), QStringLiteral("https://media.example/cat.gif"));
        QCOMPARE(cat["thumb"].toString(), QStringLiteral("https://media.example/cat-small.gif"));
        QCOMPARE(cat["width"].toInt(), 480);
        QCOMPARE(cat["author"].toString(), QStringLiteral("mia"));
        QCOMPARE(cat["origin"].toString(), QStringLiteral("giphy"));
        const auto asked = [&](const QString &path) {
            for (const ScriptedServer::Request &request : providers.requests())
                if (request.path == path)
                    return request;
            return ScriptedServer::Request{};
        };
        QCOMPARE(asked("/v1/gifs/search").queryValue("q"), QStringLiteral("happy cat"));
        QCOMPARE(asked("/v2/search").queryValue("key"), QStringLiteral("tenor-key"));
        // Still pictures are not asked of the moving-picture providers.
        const int before = providers.requestCount();
        QVERIFY(learner.get("/api/media/search?q=happy%20cat")["results"].toArray().isEmpty());
        QCOMPARE(providers.requestCount(), before);
    }
};

QTEST_GUILESS_MAIN(TestMedia)
#include "tst_media.moc"
