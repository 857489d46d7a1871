// The client's transport: addresses and their escaping, which server it talks to, how failed
// and unreadable replies become errors, the shape of requests, and the session cookie on disk.
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
            cookiePath = m_dir.filePath(u"cookies-%1"_qs.arg(++m_clients));
        return std::make_unique<APIClient>(base, cookiePath, m_dir.filePath(u"cache"_qs));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        LocalSettings::useFile(m_dir.filePath(u"orvel.conf"_qs));
        qunsetenv("ZELON_HOST");
    }

    void urlsAreBuiltUnderApi()
    {
        APIClient client(QUrl(u"http://127.0.0.1:8470"_qs), m_dir.filePath(u"c"_qs), {});
        QCOMPARE(client.url(u"decks/12"_qs, {}).toString(),
                 u"http://127.0.0.1:8470/api/decks/12"_qs);
        QCOMPARE(client.url(u"search"_qs, {{u"q"_qs, u"Hund"_qs}}).toString(),
                 u"http://127.0.0.1:8470/api/search?q=Hund"_qs);

        // Values are encoded so that spaces, plus signs and ampersands survive the trip.
        const QUrl audio = client.clipUrl(u"a+b & c"_qs, u"de"_qs, u"0.75"_qs, u"gmw/de"_qs);
        QCOMPARE(audio.path(), u"/api/audio"_qs);
        QCOMPARE(audio.query(QUrl::FullyEncoded),
                 u"text=a%2Bb%20%26%20c&lang=de&rate=0.75&voice=gmw%2Fde"_qs);
        QCOMPARE(client.previewUrl(u"gmw/de"_qs, u"de"_qs).toString(),
                 u"http://127.0.0.1:8470/api/audio/preview?lang=de&voice=gmw%2Fde"_qs);
        // Without a voice the clip's address names none.
        QCOMPARE(client.clipUrl(u"Hund"_qs, u"de"_qs, u"1"_qs, {}).query(QUrl::FullyEncoded),
                 u"text=Hund&lang=de&rate=1"_qs);

        // A base URL with a path of its own keeps it.
        APIClient nested(QUrl(u"https://example.org/orvel/"_qs), m_dir.filePath(u"c"_qs), {});
        QCOMPARE(nested.url(u"auth/me"_qs).toString(), u"https://example.org/orvel/api/auth/me"_qs);
    }

    void baseUrlChoice()
    {
        const QUrl fallback = APIClient::defaultBaseUrl();
        QCOMPARE(fallback.scheme(), u"https"_qs);
        const QStringList noArguments{u"orvel"_qs};
        QCOMPARE(APIClient::hostOverride(noArguments), std::nullopt);

        // The settings file, then the environment, then the command line, each winning.
        LocalSettings::store().setValue(u"ZELON_HOST"_qs, u"http://stored:1"_qs);
        QCOMPARE(APIClient::hostOverride(noArguments), QUrl(u"http://stored:1"_qs));
        qputenv("ZELON_HOST", "http://environment:2");
        QCOMPARE(APIClient::hostOverride(noArguments), QUrl(u"http://environment:2"_qs));
        QCOMPARE(APIClient::hostOverride({u"orvel"_qs, u"-ZELON_HOST"_qs, u"http://argument:3"_qs}),
                 QUrl(u"http://argument:3"_qs));
        QCOMPARE(APIClient::hostOverride({u"orvel"_qs, u"--ZELON_HOST=http://argument:4"_qs}),
                 QUrl(u"http://argument:4"_qs));

        // A value that does not parse is ignored without a message: the default server is used.
        qputenv("ZELON_HOST", "not a url");
        QCOMPARE(APIClient::hostOverride(noArguments), std::nullopt);
        QCOMPARE(APIClient(std::nullopt, m_dir.filePath(u"c"_qs), {}).baseUrl(), fallback);

        // An explicit URL wins over everything.
        qputenv("ZELON_HOST", "http://environment:2");
        QCOMPARE(APIClient(QUrl(u"http://given:5"_qs), m_dir.filePath(u"c"_qs), {}).baseUrl(),
                 QUrl(u"http://given:5"_qs));
        QCOMPARE(APIClient(std::nullopt, m_dir.filePath(u"c"_qs), {}).baseUrl(),
                 QUrl(u"http://environment:2"_qs));

        qunsetenv("ZELON_HOST");
        LocalSettings::store().remove(u"ZELON_HOST"_qs);
    }

    void failedRepliesBecomeApiErrors_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, int status, const QByteArray &body,
                            const QString &message) {
            QTest::newRow(name) << status << body << message;
        };
        row("server text wins", 404, R"({"error":"No such deck."})", u"No such deck."_qs);
        row("server text wins over 401", 401, R"({"error":"Your session ended."})",
            u"Your session ended."_qs);
        row("401 with an empty error", 401, R"({"error":""})", u"You are signed out."_qs);
        row("401 without a body", 401, {}, u"You are signed out."_qs);
        row("503 with an empty error", 503, R"({"error":""})", u"The server answered 503."_qs);
        row("an HTML page", 502, "<html><body>Bad gateway</body></html>",
            u"The server answered 502."_qs);
        row("error of the wrong type", 500, R"({"error":42})", u"The server answered 500."_qs);
        row("other keys are not read", 422, R"({"message":"Too long"})",
            u"The server answered 422."_qs);
    }

    void failedRepliesBecomeApiErrors()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, message);
        const QByteArray type = body.startsWith('{') ? "application/json" : "text/html";
        ScriptedServer server;
        server.reply("GET", "/api/auth/me", status, body, type);
        server.reply("DELETE", "/api/decks/3", status, body, type);
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
                         u"Orvel could not read the server\u2019s reply. If this "_qs
                         u"keeps happening, updating the app may help."_qs);
            }
        };
        expectCouldNotRead(client->me());          // a required field is missing
        expectCouldNotRead(client->preferences()); // not JSON
        expectCouldNotRead(client->decks());       // 204 where a record was expected
        // The same empty 204 is a success where no record is read.
        QVERIFY(await(client->voidCall(u"cards/4"_qs, "DELETE")).isEmpty());

        // A refused connection is a transport failure, not an API error.
        int closedPort = 0;
        {
            ScriptedServer gone;
            closedPort = gone.port();
        }
        auto nowhere = clientFor(QUrl(u"http://127.0.0.1:%1"_qs.arg(closedPort)));
        try {
            await(nowhere->me());
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
        const ScriptedServer::Request get = server.lastRequest();
        QCOMPARE(get.header("Accept"), QByteArray("application/json"));
        QVERIFY(!get.headers.contains("content-type"));
        QVERIFY(get.body.isEmpty());

        QCOMPARE(await(client->signIn(u"ana@example.org"_qs, u"pässwörd"_qs)).displayName,
                 u"Ana"_qs);
        const ScriptedServer::Request post = server.lastRequest();
        QCOMPARE(post.header("Accept"), QByteArray("application/json"));
        QCOMPARE(post.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(QJsonDocument::fromJson(post.body)["password"].toString(), u"pässwörd"_qs);
        QVERIFY(post.body.contains("p\xc3\xa4ssw\xc3\xb6rd")); // UTF-8 as it stands, not escaped

        // Authentication is the cookie alone.
        for (const auto &request : server.requests())
            QVERIFY(!request.headers.contains("authorization"));
    }

    void theSessionCookieLivesOnDiskUntilItExpires()
    {
        ScriptedServer server;
        server.reply("POST", "/api/auth/login", 200, userJson, "application/json",
                     {{"Set-Cookie", "orvel_session=abc123; Path=/; HttpOnly; Max-Age=2592000"}});
        server.reply("POST", "/api/auth/logout", 200, "{}", "application/json",
                     {{"Set-Cookie", "orvel_session=; Path=/; Max-Age=0"}});
        server.reply("GET", "/api/auth/me", 200, userJson);
        const QString jar = m_dir.filePath(u"restart-cookies"_qs);
        {
            auto client = clientFor(server.baseUrl(), jar);
            await(client->signIn(u"ana@example.org"_qs, u"password1"_qs));
            await(client->me());
            QCOMPARE(server.lastRequest().header("Cookie"), QByteArray("orvel_session=abc123"));
        }
        // Only the owner may read the jar.
        QCOMPARE(QFile::permissions(jar) & (QFileDevice::ReadGroup | QFileDevice::ReadOther |
                                            QFileDevice::WriteGroup | QFileDevice::WriteOther),
                 QFileDevice::Permissions());

        // A new client after a restart still sends the session cookie...
        auto restarted = clientFor(server.baseUrl(), jar);
        QCOMPARE(await(restarted->me()).id, 7);
        QCOMPARE(server.lastRequest().header("Cookie"), QByteArray("orvel_session=abc123"));
        // ...until the server expires it; then the next start sends none.
        await(restarted->signOut());
        auto signedOut = clientFor(server.baseUrl(), jar);
        await(signedOut->me());
        QVERIFY(!server.lastRequest().headers.contains("cookie"));
    }
};

QTEST_GUILESS_MAIN(TestTransport)
#include "tst_transport.moc"
