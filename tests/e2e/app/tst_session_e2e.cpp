#include "app/appcommands.h"
#include "app/appstate.h"
#include "app/browser.h"
#include "app/instancechannel.h"
#include "app/serviceprovider.h"
#include "app/signinview.h"
#include "awaittask.h"
#include "platform/launchhandler.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "serverprocess.h"
#include "testservices.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUuid>

using namespace orvel;
using testsupport::await;

// The app's session logic against a real orvel-server: making an account, signing in, the
// session surviving a restart, signing out, and provider sign-in with its callback handed over
// by a second `orvel` process through the instance channel.
class TestSessionE2E : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    QString cookies() const { return m_dir.filePath("cookies"); }

private slots:
    void initTestCase() { LocalSettings::useFile(m_dir.filePath("orvel.conf")); }

    void makeAnAccountThenSignInAndRestartSignedIn()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        {
            APIClient api(server.baseUrl(), cookies(), QString());
            testsupport::TestServices services(api);
            AppState &state = services.state();
            await(state.restore());
            QCOMPARE(state.auth(), AppState::Auth::SignedOut);

            SignInView view;
            await(view.loadingOptions());
            QVERIFY(view.offersSignUp());
            view.showSignUp();
            view.setName("Ana");
            view.setEmail("ana@example.org");
            view.setPassword("correct horse");
            await(view.submitting());
            QVERIFY2(view.trouble().isEmpty(), qPrintable(view.trouble()));
            QCOMPARE(view.mode(), SignInView::Mode::CheckInbox);

            view.showSignIn();
            view.setPassword("wrong password");
            await(view.submitting());
            QVERIFY(!view.trouble().isEmpty());
            QVERIFY(!view.unconfirmed());
            QCOMPARE(state.auth(), AppState::Auth::SignedOut);

            view.setPassword("correct horse");
            await(view.submitting());
            QVERIFY2(view.trouble().isEmpty(), qPrintable(view.trouble()));
            QCOMPARE(state.auth(), AppState::Auth::SignedIn);
            QCOMPARE(state.user().displayName, QStringLiteral("Ana"));
            QVERIFY(state.hasPreferences());
        }
        {
            // A new process: the cookie on disk restores the session.
            APIClient api(server.baseUrl(), cookies(), QString());
            AppState state(api);
            await(state.restore());
            QCOMPARE(state.auth(), AppState::Auth::SignedIn);
            QCOMPARE(state.user().email, QStringLiteral("ana@example.org"));

            state.choose(AppState::Appearance::Dark);
            QTRY_COMPARE(state.preferences()->skin, QStringLiteral("dark"));

            await(state.signOut());
            QCOMPARE(state.auth(), AppState::Auth::SignedOut);
        }
        {
            APIClient api(server.baseUrl(), cookies(), QString());
            AppState state(api);
            await(state.restore());
            QCOMPARE(state.auth(), AppState::Auth::SignedOut);
        }
    }

    void anUnconfirmedAddressIsRefusedWithTheResendLink()
    {
        ServerProcess server; // not --local: addresses wait for their link
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        APIClient api(server.baseUrl(), m_dir.filePath("cookies-unconfirmed"), QString());
        testsupport::TestServices services(api);
        SignInView view;
        view.showSignUp();
        view.setName("Bo");
        view.setEmail("bo@example.org");
        view.setPassword("long password");
        await(view.submitting());
        QCOMPARE(view.mode(), SignInView::Mode::CheckInbox);

        view.showSignIn();
        view.setPassword("long password");
        await(view.submitting());
        QVERIFY(view.unconfirmed());
        QVERIFY(!view.trouble().isEmpty());
        await(view.resending());
        QVERIFY2(view.resent(), qPrintable(view.trouble()));
    }

    void providerSignInThroughTheInstanceChannel()
    {
        ServerProcess server({"--local", "--test-providers"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        APIClient api(server.baseUrl(), m_dir.filePath("cookies-provider"), QString());
        testsupport::TestServices services(api);
        AppState &state = services.state();
        SignInView view;
        await(view.loadingOptions());
        QVERIFY(view.offersGoogle());
        QVERIFY(view.offersApple());

        // The running instance: its channel and what it does with a handed-over launch.
        const QString channelName =
            QStringLiteral("orvel-e2e-") + QUuid::createUuid().toString(QUuid::Id128);
        InstanceChannel channel(channelName);
        QVERIFY(channel.listen());
        ServiceProvider provider(AppCommands::shared());
        LaunchHandler launches(provider);
        connect(&channel, &InstanceChannel::received, &launches, &LaunchHandler::handleArguments);

        // The "browser": follows the start address to the server's redirect, then does what the
        // desktop does with an orvel:// address, `orvel <address>` (a second process).
        QNetworkAccessManager browser;
        QProcess second;
        QString callback;
        Browser::setOpener([&](const QUrl &start) {
            QNetworkRequest request(start);
            request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                 QNetworkRequest::ManualRedirectPolicy);
            QNetworkReply *reply = browser.get(request);
            connect(reply, &QNetworkReply::finished, this, [&, reply] {
                reply->deleteLater();
                callback = reply->header(QNetworkRequest::LocationHeader).toUrl().toString();
                QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
                env.insert("ORVEL_INSTANCE", channelName);
                env.insert("QT_QPA_PLATFORM", "offscreen");
                second.setProcessEnvironment(env);
                second.start(ORVEL_APP_PATH, {callback});
            });
            return true;
        });

        bool done = false;
        auto run = [&]() -> QCoro::Task<> {
            co_await view.continuingWith("google");
            done = true;
        };
        run();
        QTRY_VERIFY_WITH_TIMEOUT(done, 15000);
        QVERIFY2(callback.startsWith("orvel:"), qPrintable(callback));
        // It may have ended while the loop above spun; waitForFinished is false then.
        QVERIFY2(second.state() == QProcess::NotRunning || second.waitForFinished(5000),
                 second.readAllStandardError().constData());
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY2(view.trouble().isEmpty(), qPrintable(view.trouble()));
        QCOMPARE(state.auth(), AppState::Auth::SignedIn);
    }
};

QTEST_MAIN(TestSessionE2E)
#include "tst_session_e2e.moc"
