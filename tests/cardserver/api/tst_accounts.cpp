// Accounts and sessions over HTTP: sign-up (and a server that takes none), confirmation,
// sign-in, sign-out, password change, provider sign-in, the forgotten-password pages and
// what of their links reaches the log.
#include "api.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QUrlQuery>

class TestAccounts : public QObject {
    Q_OBJECT

    // The link in the newest outbox message, as a path (/confirm?token=…); `base`, when given,
    // is what the link must start with.
    static QString lastLink(const ServerProcess &server, const char *startsWith,
                            const QString &base = QStringLiteral("http://[^/\\s]+"))
    {
        QDir outbox(server.dataDir() + "/outbox");
        const QStringList files = outbox.entryList({"*.eml"}, QDir::Files, QDir::Name);
        if (files.isEmpty())
            return QString();
        QFile f(outbox.filePath(files.last()));
        f.open(QIODevice::ReadOnly);
        const auto m =
            QRegularExpression(
                base + QStringLiteral("(%1[^\\s]+)").arg(QRegularExpression::escape(startsWith)))
                .match(QString::fromUtf8(f.readAll()));
        return m.hasMatch() ? m.captured(1) : QString();
    }
    static QJsonObject login(const char *email, const char *password)
    {
        return {{"email", email}, {"password", password}};
    }

private slots:
    void signUpConfirmAndSignIn()
    {
        ServerProcess server;
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        const QJsonObject up{
            {"email", "ana@example.org"}, {"password", "correct horse"}, {"display_name", "Ana"}};

        QCOMPARE(api.post("/api/auth/signup", up).status, 201);
        const Api::Reply again = api.post("/api/auth/signup", up);
        QCOMPARE(again.status, 409);
        QVERIFY(!again.error().isEmpty());

        QJsonObject shortPassword = up;
        shortPassword["email"] = "bo@example.org";
        shortPassword["password"] = "1234567";
        QCOMPARE(api.post("/api/auth/signup", shortPassword).error(),
                 QStringLiteral("Choose a password of at least 8 characters."));
        QJsonObject badEmail = up;
        badEmail["email"] = "not-an-address";
        QCOMPARE(api.post("/api/auth/signup", badEmail).status, 422);

        // Unconfirmed: the right password is refused with 403, the wrong one with 401.
        const Api::Reply early =
            api.post("/api/auth/login", login("ana@example.org", "correct horse"));
        QCOMPARE(early.status, 403);
        QVERIFY(early.error().contains("ana@example.org"));
        QCOMPARE(api.post("/api/auth/login", login("ana@example.org", "wrong one")).status, 401);
        QVERIFY(api.cookie().isEmpty());

        // Mail links point at the server's own address, whatever Host a request claimed.
        const QString link = lastLink(
            server, "/confirm?token=",
            QRegularExpression::escape(server.baseUrl().toString(QUrl::StripTrailingSlash)));
        QVERIFY(!link.isEmpty());
        // Without --local the log notes the mail but never holds its link.
        QTRY_VERIFY(server.log().contains("mail to ana@example.org"));
        QVERIFY(!server.log().contains("token="));
        QCOMPARE(api.get("/confirm?token=nonsense").status, 400);
        const Api::Reply confirmed = api.get(link);
        QCOMPARE(confirmed.status, 200);
        QVERIFY(confirmed.body.contains("confirmed"));
        QCOMPARE(api.get(link).status, 400); // a link works once

        const Api::Reply in =
            api.post("/api/auth/login", login("ana@example.org", "correct horse"));
        QCOMPARE(in.status, 200);
        QCOMPARE(in["display_name"].toString(), QStringLiteral("Ana"));
        const QString setCookie = in.header("Set-Cookie");
        QVERIFY(setCookie.startsWith("orvel_session="));
        for (const char *part : {"Path=/", "HttpOnly", "SameSite=Lax", "Max-Age=2592000"})
            QVERIFY2(setCookie.contains(part), part);
        QVERIFY(!setCookie.contains("Secure"));
        QCOMPARE(api.cookie().size(), 64); // 256 bits in hex

        QCOMPARE(api.get("/api/auth/me").id(), in.id());
    }

    void resendWritesAFreshLink()
    {
        ServerProcess server;
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.post("/api/auth/signup", QJsonObject{{"email", "cy@example.org"},
                                                 {"password", "long enough"},
                                                 {"display_name", "Cy"}});
        const QString first = lastLink(server, "/confirm?token=");
        QCOMPARE(api.post("/api/auth/resend", QJsonObject{{"email", "cy@example.org"}}).status,
                 200);
        const QString second = lastLink(server, "/confirm?token=");
        QVERIFY(!second.isEmpty());
        QVERIFY(first != second);
        // Unknown addresses get the same answer, so the call does not reveal accounts.
        QCOMPARE(api.post("/api/auth/resend", QJsonObject{{"email", "nobody@example.org"}}).status,
                 200);
        QCOMPARE(api.get(second).status, 200);
    }

    void sessionsEndAtSignOutAndNeedACookie()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/auth/me").status, 401);
        QCOMPARE(api.get("/api/auth/me").error(), QStringLiteral("You are signed out."));
        api.join("dee@example.org");
        const QString cookie = api.cookie();
        QCOMPARE(api.get("/api/auth/me").status, 200);

        Api other(server.baseUrl());
        other.setCookie(QString(64, 'a'));
        QCOMPARE(other.get("/api/decks").status, 401);

        // Behind a proxy that serves https, the cookie is marked Secure.
        Api proxied(server.baseUrl());
        proxied.setHeader("X-Forwarded-Proto", "https");
        const Api::Reply secure =
            proxied.post("/api/auth/login", login("dee@example.org", "secret-pass"));
        QCOMPARE(secure.status, 200);
        QVERIFY(secure.header("Set-Cookie").contains("; Secure"));

        const Api::Reply out = api.post("/api/auth/logout");
        QCOMPARE(out.status, 200);
        QVERIFY(out.header("Set-Cookie").contains("Max-Age=0"));
        api.setCookie(cookie);
        QCOMPARE(api.get("/api/auth/me").status, 401);
        QCOMPARE(api.get("/api/decks").status, 401);
    }

    void changingThePasswordSignsOutOtherSessions()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("gus@example.org", "first password");
        Api laptop(server.baseUrl());
        laptop.post("/api/auth/login", login("gus@example.org", "first password"));
        QCOMPARE(laptop.get("/api/auth/me").status, 200);

        const auto change = [&](const char *current, const char *next) {
            return api
                .post("/api/settings/password", QJsonObject{{"current", current}, {"next", next}})
                .status;
        };
        QCOMPARE(change("wrong", "second password"), 403);
        QCOMPARE(change("first password", "short"), 422);
        QCOMPARE(change("first password", "second password"), 200);
        QCOMPARE(api.get("/api/auth/me").status, 200);
        QCOMPARE(laptop.get("/api/auth/me").status, 401);
        Api fresh(server.baseUrl());
        QCOMPARE(fresh.post("/api/auth/login", login("gus@example.org", "first password")).status,
                 401);
        QCOMPARE(fresh.post("/api/auth/login", login("gus@example.org", "second password")).status,
                 200);
    }

    void linksReachTheLogOnlyWhenLocal()
    {
        ServerProcess server;
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        QCOMPARE(api.post("/api/auth/signup",
                          QJsonObject{{"email", "ida@example.org"}, {"password", "first password"}})
                     .status,
                 201);
        const QString confirm = lastLink(server, "/confirm?token=");
        QCOMPARE(api.get(confirm).status, 200);
        QCOMPARE(api.postRaw("/app/forgot", "email=ida%40example.org",
                             "application/x-www-form-urlencoded")
                     .status,
                 200);
        const QString reset = lastLink(server, "/app?reset=");
        const QString token = QUrlQuery(QUrl(reset)).queryItemValue("reset");
        QCOMPARE(api.postRaw("/app/reset",
                             ("token=" + token + "&password=second+password").toUtf8(),
                             "application/x-www-form-urlencoded")
                     .status,
                 200);
        QCOMPARE(api.post("/api/auth/login", login("ida@example.org", "second password")).status,
                 200);
        QTRY_VERIFY(server.log().count("mail to ida@example.org") == 2);
        const QByteArray log = server.log();
        QVERIFY(!log.contains(confirm.section('=', 1).toUtf8()));
        QVERIFY(!log.contains(token.toUtf8()));
        QVERIFY(!log.contains("token="));

        ServerProcess local({"--local"});
        QVERIFY(startServer(local));
        Api mine(local.baseUrl());
        mine.join("jo@example.org");
        QTRY_VERIFY(local.log().contains("/confirm?token="));
    }

    void resetLinksDieWhenThePasswordChanges()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("kim@example.org", "first password");
        const auto forgot = [&] {
            api.postRaw("/app/forgot", "email=kim%40example.org",
                        "application/x-www-form-urlencoded");
            return QUrlQuery(QUrl(lastLink(server, "/app?reset="))).queryItemValue("reset");
        };
        const auto reset = [&](const QString &token, const char *password) {
            return api
                .postRaw("/app/reset", ("token=" + token + "&password=" + password).toUtf8(),
                         "application/x-www-form-urlencoded")
                .status;
        };
        // A link asked for before a change of password in the settings no longer works.
        const QString early = forgot();
        QVERIFY(!early.isEmpty());
        QCOMPARE(api.post("/api/settings/password",
                          QJsonObject{{"current", "first password"}, {"next", "second password"}})
                     .status,
                 200);
        QCOMPARE(reset(early, "attacker+choice"), 400);
        // Two links, one used: the other one dies with the change it made.
        const QString first = forgot();
        const QString second = forgot();
        QVERIFY(first != second);
        QCOMPARE(reset(second, "third+password"), 200);
        QCOMPARE(reset(first, "attacker+choice"), 400);
        QCOMPARE(api.post("/api/auth/login", login("kim@example.org", "third password")).status,
                 200);
    }

    void noSignupRefusesNewAccounts()
    {
        ServerProcess server({"--no-signup"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/auth/options")["signup"].toBool(true), false);
        const Api::Reply refused =
            api.post("/api/auth/signup",
                     QJsonObject{{"email", "lu@example.org"}, {"password", "long enough"}});
        QCOMPARE(refused.status, 403);
        QVERIFY(refused.error().contains("takes no new accounts"));
        QCOMPARE(api.post("/api/auth/login", login("lu@example.org", "long enough")).status, 401);
    }

    void cookieIsSecureWhenThePublicAddressIsHttps()
    {
        qputenv("ORVEL_PUBLIC_URL", "https://cards.example.org");
        ServerProcess server({"--local"});
        const bool started = startServer(server);
        qunsetenv("ORVEL_PUBLIC_URL");
        QVERIFY(started);
        Api api(server.baseUrl());
        api.post("/api/auth/signup",
                 QJsonObject{{"email", "mo@example.org"}, {"password", "long enough"}});
        const Api::Reply in = api.post("/api/auth/login", login("mo@example.org", "long enough"));
        QCOMPARE(in.status, 200);
        QVERIFY(in.header("Set-Cookie").contains("; Secure"));
        QVERIFY(api.post("/api/auth/logout").header("Set-Cookie").contains("; Secure"));
    }

    void providersOnlyWithTheTestFlag()
    {
        {
            ServerProcess plain;
            QVERIFY(startServer(plain));
            Api api(plain.baseUrl());
            const Api::Reply options = api.get("/api/auth/options");
            QCOMPARE(options["google"].toBool(true), false);
            QCOMPARE(options["apple"].toBool(true), false);
            QCOMPARE(options["signup"].toBool(), true);
            const Api::Reply start = api.get("/api/auth/oauth/google?client=mac");
            QCOMPARE(start.status, 404);
            QVERIFY(!start.error().isEmpty());
        }
        ServerProcess server({"--test-providers"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/auth/options")["apple"].toBool(), true);

        const Api::Reply start = api.get("/api/auth/oauth/google?client=mac");
        QCOMPARE(start.status, 302);
        const QUrl back(start.header("Location"));
        QCOMPARE(back.scheme(), QStringLiteral("orvel"));
        const QString code = QUrlQuery(back).queryItemValue("code");
        QVERIFY(!code.isEmpty());

        const Api::Reply user = api.post("/api/auth/exchange", QJsonObject{{"code", code}});
        QCOMPARE(user.status, 200);
        QVERIFY(!user["email"].toString().isEmpty());
        QCOMPARE(api.get("/api/auth/me").status, 200);
        Api second(server.baseUrl());
        QCOMPARE(second.post("/api/auth/exchange", QJsonObject{{"code", code}}).status, 401);

        const Api::Reply denied = api.get("/api/auth/oauth/apple?client=mac&fail=access_denied");
        QCOMPARE(denied.status, 302);
        QCOMPARE(QUrlQuery(QUrl(denied.header("Location"))).queryItemValue("error"),
                 QStringLiteral("access_denied"));
    }

    void forgottenPasswordPages()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("hal@example.org", "old password");

        const Api::Reply page = api.get("/app?forgot=1&email=hal%40example.org");
        QCOMPARE(page.status, 200);
        QVERIFY(page.header("Content-Type").startsWith("text/html"));
        QVERIFY(page.body.contains("value=\"hal@example.org\""));
        QVERIFY(page.body.contains("action=\"/app/forgot\""));

        const auto form = [&](const char *to, const QString &fields) {
            return api.postRaw(to, fields.toUtf8(), "application/x-www-form-urlencoded").status;
        };
        QCOMPARE(form("/app/forgot", "email=hal%40example.org"), 200);
        const QString link = lastLink(server, "/app?reset=");
        QVERIFY(!link.isEmpty());
        const QString token = QUrlQuery(QUrl(link)).queryItemValue("reset");
        QVERIFY(api.get(link).body.contains(token.toUtf8()));
        QCOMPARE(form("/app/reset", "token=" + token + "&password=short"), 422);
        QCOMPARE(form("/app/reset", "token=" + token + "&password=new+password"), 200);
        QCOMPARE(api.get("/api/auth/me").status, 401); // every session ended
        QCOMPARE(api.post("/api/auth/login", login("hal@example.org", "new password")).status, 200);
        QCOMPARE(form("/app/reset", "token=" + token + "&password=another+one"), 400);
    }
};

QTEST_GUILESS_MAIN(TestAccounts)
#include "tst_accounts.moc"
