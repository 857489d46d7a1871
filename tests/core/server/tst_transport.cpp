#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "server/persistentcookiejar.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

const QByteArray userJson = R"({"id":7,"email":"ana@example.org","display_name":"Ana"})";

} // namespace

class TestTransport : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_clients = 0;

    // A client with a cookie jar and cache of its own, talking to the given server.
    std::unique_ptr<APIClient> clientFor(const QUrl &base, QString cookiePath = {})
    {
        if (cookiePath.isEmpty())
            cookiePath = m_dir.filePath(QStringLiteral("cookies-%1").arg(++m_clients));
        return std::make_unique<APIClient>(base, cookiePath,
                                           m_dir.filePath(QStringLiteral("cache")));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        LocalSettings::useFile(m_dir.filePath(QStringLiteral("orvel.conf")));
        qunsetenv("ZELON_HOST");
    }

    void urlsAreBuiltUnderApi()
    {
        APIClient client(QUrl(QStringLiteral("http://127.0.0.1:8470")), m_dir.filePath("c"), {});
        QCOMPARE(client.url(QStringLiteral("decks/12"), {}).toString(),
                 QStringLiteral("http://127.0.0.1:8470/api/decks/12"));
        QCOMPARE(
            client.url(QStringLiteral("search"), {{QStringLiteral("q"), QStringLiteral("Hund")}})
                .toString(),
            QStringLiteral("http://127.0.0.1:8470/api/search?q=Hund"));

        // Values are encoded so that spaces, plus signs and ampersands survive the trip.
        const QUrl audio = client.clipUrl(QStringLiteral("a+b & c"), QStringLiteral("de"),
                                          QStringLiteral("0.75"), QStringLiteral("gmw/de"));
        QCOMPARE(audio.path(), QStringLiteral("/api/audio"));
        QCOMPARE(audio.query(QUrl::FullyEncoded),
                 QStringLiteral("text=a%2Bb%20%26%20c&lang=de&rate=0.75&voice=gmw%2Fde"));
        QCOMPARE(client.previewUrl(QStringLiteral("gmw/de"), QStringLiteral("de")).toString(),
                 QStringLiteral("http://127.0.0.1:8470/api/audio/preview?lang=de&voice=gmw%2Fde"));
        // Without a voice the clip's address names none.
        QCOMPARE(
            client.clipUrl(QStringLiteral("Hund"), QStringLiteral("de"), QStringLiteral("1"), {})
                .query(QUrl::FullyEncoded),
            QStringLiteral("text=Hund&lang=de&rate=1"));

        // A base URL with a path of its own keeps it.
        APIClient nested(QUrl(QStringLiteral("https://example.org/orvel/")), m_dir.filePath("c"),
                         {});
        QCOMPARE(nested.url(QStringLiteral("auth/me")).toString(),
                 QStringLiteral("https://example.org/orvel/api/auth/me"));
    }

    void baseUrlChoice()
    {
        const QUrl fallback = APIClient::defaultBaseUrl();
        QCOMPARE(fallback.scheme(), QStringLiteral("https"));
        const QStringList noArguments{QStringLiteral("orvel")};

        QCOMPARE(APIClient::hostOverride(noArguments), std::nullopt);

        LocalSettings::store().setValue(QStringLiteral("ZELON_HOST"),
                                        QStringLiteral("http://stored:1"));
        QCOMPARE(APIClient::hostOverride(noArguments), QUrl(QStringLiteral("http://stored:1")));

        qputenv("ZELON_HOST", "http://environment:2");
        QCOMPARE(APIClient::hostOverride(noArguments),
                 QUrl(QStringLiteral("http://environment:2")));

        const QStringList dash{QStringLiteral("orvel"), QStringLiteral("-ZELON_HOST"),
                               QStringLiteral("http://argument:3")};
        QCOMPARE(APIClient::hostOverride(dash), QUrl(QStringLiteral("http://argument:3")));
        const QStringList equals{QStringLiteral("orvel"),
                                 QStringLiteral("--ZELON_HOST=http://argument:4")};
        QCOMPARE(APIClient::hostOverride(equals), QUrl(QStringLiteral("http://argument:4")));

        // A value that does not parse is ignored without a message: the default server is used.
        qputenv("ZELON_HOST", "not a url");
        QCOMPARE(APIClient::hostOverride(noArguments), std::nullopt);
        APIClient client(std::nullopt, m_dir.filePath("c"), {});
        QCOMPARE(client.baseUrl(), fallback);

        // An explicit URL wins over everything.
        qputenv("ZELON_HOST", "http://environment:2");
        APIClient given(QUrl(QStringLiteral("http://given:5")), m_dir.filePath("c"), {});
        QCOMPARE(given.baseUrl(), QUrl(QStringLiteral("http://given:5")));
        APIClient fromEnvironment(std::nullopt, m_dir.filePath("c"), {});
        QCOMPARE(fromEnvironment.baseUrl(), QUrl(QStringLiteral("http://environment:2")));

        qunsetenv("ZELON_HOST");
        LocalSettings::store().remove(QStringLiteral("ZELON_HOST"));
    }

    void failedRepliesBecomeApiErrors_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QString>("message");

        QTest::newRow("server text wins") << 404 << QByteArray(R"({"error":"No such deck."})")
                                          << QByteArray("application/json") << "No such deck.";
        QTest::newRow("server text wins over 401")
            << 401 << QByteArray(R"({"error":"Your session ended."})")
            << QByteArray("application/json") << "Your session ended.";
        QTest::newRow("401 with an empty error")
            << 401 << QByteArray(R"({"error":""})") << QByteArray("application/json")
            << "You are signed out.";
        QTest::newRow("401 without a body")
            << 401 << QByteArray() << QByteArray("text/plain") << "You are signed out.";
        QTest::newRow("503 with an empty error")
            << 503 << QByteArray(R"({"error":""})") << QByteArray("application/json")
            << "The server answered 503.";
        QTest::newRow("an HTML page") << 502 << QByteArray("<html><body>Bad gateway</body></html>")
                                      << QByteArray("text/html") << "The server answered 502.";
        QTest::newRow("error of the wrong type")
            << 500 << QByteArray(R"({"error":42})") << QByteArray("application/json")
            << "The server answered 500.";
        QTest::newRow("other keys are not read")
            << 422 << QByteArray(R"({"message":"Too long"})") << QByteArray("application/json")
            << "The server answered 422.";
    }

    void failedRepliesBecomeApiErrors()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, contentType);
        QFETCH(QString, message);

        ScriptedServer server;
        server.reply("GET", "/api/auth/me", status, body, contentType);
        server.reply("DELETE", "/api/decks/3", status, body, contentType);
        auto client = clientFor(server.baseUrl());

        for (int round = 0; round < 2; ++round) {
            try {
                if (round == 0)
                    await(client->me());
                else
                    await(client->deleteDeck(3));
                QFAIL("the call should have failed");
            } catch (const APIError &error) {
                QCOMPARE(error.status(), status);
                QCOMPARE(error.message(), message);
                QCOMPARE(QString::fromUtf8(error.what()), message);
            }
        }
    }

    void unreadableSuccessReplies()
    {
        ScriptedServer server;
        server.reply("GET", "/api/auth/me", 200, R"({"id":7,"email":"ana@example.org"})");
        server.reply("GET", "/api/settings", 200, "not json at all");
        server.reply("DELETE", "/api/cards/4", 204, "");
        server.reply("GET", "/api/decks", 204, "");
        auto client = clientFor(server.baseUrl());

        const auto expectCouldNotRead = [&](auto task) {
            try {
                await(std::move(task));
                QFAIL("the call should have failed");
            } catch (const APIError &error) {
                QCOMPARE(error.status(), 0);
                QCOMPARE(error.message(),
                         QStringLiteral("Orvel could not read the server\u2019s reply. If this "
                                        "keeps happening, updating the app may help."));
            }
        };
        expectCouldNotRead(client->me());          // a required field is missing
        expectCouldNotRead(client->preferences()); // not JSON
        expectCouldNotRead(client->decks());       // 204 where a record was expected

        // The same empty 204 is a success where no record is read.
        const QByteArray bytes = await(client->voidCall(QStringLiteral("cards/4"), "DELETE"));
        QVERIFY(bytes.isEmpty());
    }

    void transportFailuresAreNotApiErrors()
    {
        int closedPort = 0;
        {
            ScriptedServer server;
            closedPort = server.port();
        }
        auto client = clientFor(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(closedPort)));
        try {
            await(client->me());
            QFAIL("the call should have failed");
        } catch (const APIError &) {
            QFAIL("a refused connection is not an APIError");
        } catch (const TransportError &error) {
            QVERIFY(!error.message().isEmpty());
            QCOMPARE(error.code(), int(QNetworkReply::ConnectionRefusedError));
        }
    }

    void requestShape()
    {
        ScriptedServer server;
        server.reply("GET", "/api/auth/me", 200, userJson);
        server.reply("POST", "/api/auth/login", 200, userJson);
        auto client = clientFor(server.baseUrl());

        await(client->me());
        ScriptedServer::Request get = server.lastRequest();
        QCOMPARE(get.method, QByteArray("GET"));
        QCOMPARE(get.header("Accept"), QByteArray("application/json"));
        QVERIFY(!get.headers.contains("content-type"));
        QVERIFY(get.body.isEmpty());
        QVERIFY(get.query.isEmpty());

        const User user =
            await(client->signIn(QStringLiteral("ana@example.org"), QStringLiteral("pässwörd")));
        QCOMPARE(user.displayName, QStringLiteral("Ana"));
        ScriptedServer::Request post = server.lastRequest();
        QCOMPARE(post.method, QByteArray("POST"));
        QCOMPARE(post.header("Accept"), QByteArray("application/json"));
        QCOMPARE(post.header("Content-Type"), QByteArray("application/json"));
        const QJsonObject body = QJsonDocument::fromJson(post.body).object();
        QCOMPARE(body.value("password").toString(), QStringLiteral("pässwörd"));
        QVERIFY(post.body.contains("p\xc3\xa4ssw\xc3\xb6rd")); // UTF-8 as it stands, not escaped

        // Authentication is the cookie alone.
        for (const auto &request : server.requests())
            QVERIFY(!request.headers.contains("authorization"));
    }

    void sessionCookieSurvivesARestart()
    {
        ScriptedServer server;
        server.reply("POST", "/api/auth/login", 200, userJson, "application/json",
                     {{"Set-Cookie", "orvel_session=abc123; Path=/; HttpOnly; Max-Age=2592000"}});
        server.reply("GET", "/api/auth/me", 200, userJson);
        const QString jar = m_dir.filePath(QStringLiteral("restart-cookies"));
        {
            auto client = clientFor(server.baseUrl(), jar);
            await(client->signIn(QStringLiteral("ana@example.org"), QStringLiteral("password1")));
            await(client->me());
            QCOMPARE(server.lastRequest().header("Cookie"), QByteArray("orvel_session=abc123"));
        }
        // Only the owner may read the jar.
        QCOMPARE(QFile::permissions(jar) & (QFileDevice::ReadGroup | QFileDevice::ReadOther |
                                            QFileDevice::WriteGroup | QFileDevice::WriteOther),
                 QFileDevice::Permissions());

        // A new client after a restart still sends the session cookie.
        server.clear();
        auto restarted = clientFor(server.baseUrl(), jar);
        const User user = await(restarted->me());
        QCOMPARE(user.id, 7);
        QCOMPARE(server.lastRequest().header("Cookie"), QByteArray("orvel_session=abc123"));
    }

    void expiredCookiesAreForgotten()
    {
        ScriptedServer server;
        server.reply("POST", "/api/auth/logout", 200, "{}", "application/json",
                     {{"Set-Cookie", "orvel_session=; Path=/; Max-Age=0"}});
        server.reply("POST", "/api/auth/login", 200, userJson, "application/json",
                     {{"Set-Cookie", "orvel_session=xyz; Path=/; Max-Age=2592000"}});
        server.reply("GET", "/api/auth/me", 401, R"({"error":""})");
        const QString jar = m_dir.filePath(QStringLiteral("logout-cookies"));
        auto client = clientFor(server.baseUrl(), jar);
        await(client->signIn(QStringLiteral("ana@example.org"), QStringLiteral("password1")));
        await(client->signOut());
        auto restarted = clientFor(server.baseUrl(), jar);
        QVERIFY_THROWS_EXCEPTION(APIError, await(restarted->me()));
        QVERIFY(!server.lastRequest().headers.contains("cookie"));
    }
};

QTEST_GUILESS_MAIN(TestTransport)
#include "tst_transport.moc"
