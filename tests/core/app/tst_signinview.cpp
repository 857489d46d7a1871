#include "app/appstate.h"
#include "app/browser.h"
#include "app/signinview.h"
#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace orvel;
using testsupport::await;

namespace {

const QByteArray ana = R"({"id":7,"email":"ana@example.org","display_name":"Ana"})";
const QByteArray prefs = R"({"voices":{},"rate":1,"gain":1,"hear_on_flip":false,"skin":"paper"})";

QJsonObject bodyOf(const ScriptedServer::Request &request)
{
    return QJsonDocument::fromJson(request.body).object();
}

} // namespace

class TestSignInView : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ScriptedServer *m_server = nullptr;
    APIClient *m_api = nullptr;
    testsupport::TestServices *m_services = nullptr;
    AppState *m_state = nullptr;
    QList<QUrl> m_opened;
    bool m_browserWorks = true;

private slots:
    void init()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        m_server = new ScriptedServer;
        m_api = new APIClient(m_server->baseUrl(), m_dir.filePath("cookies"), QString());
        m_services = new testsupport::TestServices(*m_api);
        m_state = &m_services->state();
        m_opened.clear();
        m_browserWorks = true;
        Browser::setOpener([this](const QUrl &url) {
            m_opened.append(url);
            return m_browserWorks;
        });
    }

    void cleanup()
    {
        delete m_services;
        delete m_api;
        delete m_server;
    }

    void emptyFieldsAreRefusedWithoutAsking()
    {
        SignInView view;
        QSignalSpy focus(&view, &SignInView::focusChanged);
        view.setPassword("secret");
        await(view.submitting());
        QCOMPARE(view.trouble(), QStringLiteral("Enter your email and password."));
        QCOMPARE(view.focus(), SignInView::Field::Email);

        view.setEmail("ana@example.org");
        view.setPassword("");
        await(view.submitting());
        QCOMPARE(view.focus(), SignInView::Field::Password);
        QCOMPARE(focus.size(), 2);
        QCOMPARE(m_server->requestCount(), 0);
        QVERIFY(!view.working());
    }

    void shortPasswordsAreRefusedOnlyWhenMakingAnAccount()
    {
        m_server->reply("POST", "/api/auth/login", 401, R"({"error":"Wrong email or password."})");
        SignInView view;
        view.setEmail("ana@example.org");
        view.showSignUp();
        QCOMPARE(view.mode(), SignInView::Mode::SignUp);
        QCOMPARE(view.focus(), SignInView::Field::Name);
        view.setPassword("1234567");
        await(view.submitting());
        QCOMPARE(view.trouble(), QStringLiteral("Choose a password of at least 8 characters."));
        QCOMPARE(view.focus(), SignInView::Field::Password);
        // Seven letters as the learner sees them, eight code units: still too short.
        view.setPassword(QStringLiteral("passwod\u0301"));
        await(view.submitting());
        QCOMPARE(view.trouble(), QStringLiteral("Choose a password of at least 8 characters."));
        QCOMPARE(m_server->requestCount(), 0);

        view.showSignIn();
        view.setPassword("1234567");
        await(view.submitting());
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(view.trouble(), QStringLiteral("Wrong email or password."));
        QVERIFY(!view.unconfirmed()); // 401: the message only
        QVERIFY(view.password().isEmpty());
        QCOMPARE(view.focus(), SignInView::Field::Password);
    }

    void makingAnAccountLeadsToTheInbox()
    {
        m_server->reply("POST", "/api/auth/signup", 200, "{}");
        SignInView view;
        view.showSignUp();
        view.setName(" Ana ");
        view.setEmail("ana@example.org");
        view.setPassword("long enough");
        QStringList seen;
        connect(&view, &SignInView::actionTitleChanged, this,
                [&] { seen.append(view.actionTitle()); });
        await(view.submitting());

        QVERIFY(seen.contains(QStringLiteral("Making your account…")));
        QCOMPARE(view.mode(), SignInView::Mode::CheckInbox);
        QVERIFY(view.password().isEmpty());
        QVERIFY(!view.working());
        QCOMPARE(view.inboxText(),
                 QStringLiteral("We sent a link to ana@example.org. Open it to confirm the "
                                "address, then come back and sign in here."));
        const auto request = m_server->lastRequest();
        QCOMPARE(request.path, QStringLiteral("/api/auth/signup"));
        QCOMPARE(bodyOf(request), QJsonObject({{"email", "ana@example.org"},
                                               {"password", "long enough"},
                                               {"display_name", "Ana"}}));
        QCOMPARE(m_state->auth(), AppState::Auth::Unknown);

        // Submitting from the inbox does nothing; the confirmed link goes back to signing in.
        await(view.submitting());
        QCOMPARE(m_server->requestCount(), 1);
        view.showSignIn();
        QCOMPARE(view.mode(), SignInView::Mode::SignIn);
        QCOMPARE(view.actionTitle(), QStringLiteral("Sign in"));
    }

    void signingInSignsTheAppIn()
    {
        m_server->reply("POST", "/api/auth/login", 200, ana);
        m_server->reply("GET", "/api/settings", 200, prefs);
        SignInView view;
        view.setEmail("ana@example.org");
        view.setPassword("pw");
        QStringList seen;
        connect(&view, &SignInView::actionTitleChanged, this,
                [&] { seen.append(view.actionTitle()); });
        await(view.submitting());

        QCOMPARE(seen, QStringList({"Signing in…", "Sign in"}));
        QCOMPARE(m_state->auth(), AppState::Auth::SignedIn);
        QCOMPARE(m_state->user().id, 7);
        QVERIFY(m_state->hasPreferences()); // adopted before the request counts as done
        QCOMPARE(bodyOf(m_server->requests().first()),
                 QJsonObject({{"email", "ana@example.org"}, {"password", "pw"}}));
        QVERIFY(view.trouble().isEmpty());
    }

    void anUnconfirmedAddressOffersTheLinkAgain()
    {
        m_server->reply("POST", "/api/auth/login", 403,
                        R"({"error":"Confirm your address first."})");
        m_server->reply("POST", "/api/auth/resend", 200, "{}");
        SignInView view;
        view.setEmail("ana@example.org");
        view.setPassword("pw");
        await(view.submitting());
        QCOMPARE(view.trouble(), QStringLiteral("Confirm your address first."));
        QVERIFY(view.unconfirmed());
        QVERIFY(view.password().isEmpty());

        await(view.resending());
        QVERIFY(view.resent());
        QCOMPARE(bodyOf(m_server->lastRequest()), QJsonObject({{"email", "ana@example.org"}}));

        // The next attempt starts clean.
        view.setPassword("pw");
        m_server->reply("POST", "/api/auth/login", 401, "{}");
        await(view.submitting());
        QVERIFY(!view.unconfirmed());
        QVERIFY(!view.resent());
        QCOMPARE(view.trouble(), QStringLiteral("You are signed out."));
    }

    void resendingNeedsAnEmailAndShowsFailures()
    {
        SignInView view;
        await(view.resending());
        QCOMPARE(view.trouble(), QStringLiteral("Enter your email first."));
        QCOMPARE(view.focus(), SignInView::Field::Email);
        QCOMPARE(m_server->requestCount(), 0);

        m_server->reply("POST", "/api/auth/resend", 429, R"({"error":"Wait a minute."})");
        view.setEmail("ana@example.org");
        await(view.resending());
        QCOMPARE(view.trouble(), QStringLiteral("Wait a minute."));
        QVERIFY(!view.resent());
        QVERIFY(!view.working());
    }

    void forgotOpensTheResetPage()
    {
        SignInView view;
        view.forgot();
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened[0].path(), QStringLiteral("/app"));
        QCOMPARE(m_opened[0].query(), QStringLiteral("forgot=1"));
        QCOMPARE(m_opened[0].host(), m_server->baseUrl().host());

        view.setEmail("ana+de@example.org");
        view.forgot();
        const QUrlQuery query(m_opened[1]);
        QCOMPARE(query.queryItemValue("forgot"), QStringLiteral("1"));
        QCOMPARE(query.queryItemValue("email", QUrl::FullyDecoded),
                 QStringLiteral("ana+de@example.org"));
        QCOMPARE(view.mode(), SignInView::Mode::SignIn);
        QCOMPARE(m_server->requestCount(), 0);
    }

    void providerSignInEndToEndOfTheCallback()
    {
        m_server->reply("POST", "/api/auth/exchange", 200, ana);
        m_server->reply("GET", "/api/settings", 200, prefs);
        SignInView view;
        bool done = false;
        auto run = [&]() -> QCoro::Task<> {
            co_await view.continuingWith("google");
            done = true;
        };
        run();
        QVERIFY(view.working());
        QVERIFY(view.provider()->waiting());
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened[0].path(), QStringLiteral("/api/auth/oauth/google"));
        QCOMPARE(m_opened[0].query(), QStringLiteral("client=mac"));

        // A second start while one runs does nothing.
        view.continueWith("apple");
        QCOMPARE(m_opened.size(), 1);

        QVERIFY(ProviderSignIn::deliver(QUrl("orvel://signed-in?code=abc123")));
        QTRY_VERIFY(done);
        QCOMPARE(m_state->auth(), AppState::Auth::SignedIn);
        QCOMPARE(bodyOf(m_server->requests().first()), QJsonObject({{"code", "abc123"}}));
        QVERIFY(!view.working());
        QVERIFY(!view.provider()->waiting());
    }

    void providerFailuresAndCancelling_data()
    {
        QTest::addColumn<QString>("callback"); // empty: the learner cancels
        QTest::addColumn<bool>("browserWorks");
        QTest::addColumn<QString>("trouble");
        QTest::newRow("refused") << "orvel://signed-in?error=access_denied" << true
                                 << "access_denied";
        QTest::newRow("cancelled") << "" << true << "";
        QTest::newRow("no browser") << "" << false << "Could not open the sign-in window.";
        QTest::newRow("exchange refused")
            << "orvel://signed-in?code=old" << true << "That code was used.";
    }

    void providerFailuresAndCancelling()
    {
        QFETCH(QString, callback);
        QFETCH(bool, browserWorks);
        QFETCH(QString, trouble);
        m_browserWorks = browserWorks;
        m_server->reply("POST", "/api/auth/exchange", 400, R"({"error":"That code was used."})");
        SignInView view;
        bool done = false;
        auto run = [&]() -> QCoro::Task<> {
            co_await view.continuingWith("apple");
            done = true;
        };
        run();
        if (!callback.isEmpty())
            QVERIFY(ProviderSignIn::deliver(QUrl(callback)));
        else if (browserWorks)
            view.provider()->cancel();
        QTRY_VERIFY(done);
        QCOMPARE(view.trouble(), trouble);
        QVERIFY(!view.working());
        QCOMPARE(m_state->auth(), AppState::Auth::Unknown);
        QCOMPARE(m_server->requestCount(), callback.contains("code=") ? 1 : 0);
        QVERIFY(!ProviderSignIn::deliver(QUrl("orvel://signed-in?code=late")));
    }
};

QTEST_GUILESS_MAIN(TestSignInView)
#include "tst_signinview.moc"
