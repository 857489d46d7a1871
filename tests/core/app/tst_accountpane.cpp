// Changing the password from the settings window: what is checked before anything is sent, the
// literal body that is sent, and what the fields hold after success and after a refusal.
#include "app/accountpane.h"
#include "app/appstate.h"
#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

class TestAccountPane : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ScriptedServer *m_server = nullptr;
    APIClient *m_api = nullptr;
    testsupport::TestServices *m_services = nullptr;
    AppState *m_state = nullptr;

    static void fill(AccountPane &pane, const QString &current, const QString &replacement,
                     const QString &confirmation)
    {
        pane.setCurrent(current);
        pane.setReplacement(replacement);
        pane.setConfirmation(confirmation);
    }

private slots:
    void init()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        m_server = new ScriptedServer;
        m_api = new APIClient(m_server->baseUrl(), m_dir.filePath("cookies"), QString());
        m_services = new testsupport::TestServices(*m_api);
        m_state = &m_services->state();
    }

    void cleanup()
    {
        delete m_services;
        delete m_api;
        delete m_server;
    }

    void checkedBeforeSending()
    {
        AccountPane pane;
        fill(pane, "old secret", "", "");
        await(pane.changingPassword());
        QCOMPARE(pane.trouble(), "Enter your current password and the new one twice.");

        fill(pane, "old secret", "new secret 1", "new secret 2");
        await(pane.changingPassword());
        QCOMPARE(pane.trouble(), "The new passwords do not match.");

        fill(pane, "old secret", "1234567", "1234567");
        await(pane.changingPassword());
        QCOMPARE(pane.trouble(), "Choose a password of at least 8 characters.");

        QCOMPARE(m_server->requestCount(), 0);
        QVERIFY(!pane.changed());
        QCOMPARE(pane.current(), "old secret"); // nothing typed is lost to a local check
    }

    void acceptedPasswordClearsEveryField()
    {
        m_server->reply("POST", "/api/settings/password", 200, R"({"ok":true})");
        AccountPane pane;
        const QString eight = QStringLiteral("passwö\u0308rd"); // eight as seen
        fill(pane, "old secret", eight, eight);
        await(pane.changingPassword());

        QCOMPARE(pane.trouble(), QString());
        QVERIFY(pane.changed());
        QVERIFY(!pane.working());
        QCOMPARE(pane.current(), QString());
        QCOMPARE(pane.replacement(), QString());
        QCOMPARE(pane.confirmation(), QString());

        const auto sent = QJsonDocument::fromJson(m_server->lastRequest().body).object();
        QCOMPARE(sent.value("current").toString(), "old secret");
        QCOMPARE(sent.value("next").toString(), eight);
        QCOMPARE(sent.size(), 2);

        // Typing again takes back the "changed" confirmation.
        pane.setReplacement("x");
        QVERIFY(!pane.changed());
    }

    void refusalShowsTheServersWordsAndClearsOnlyTheCurrentPassword()
    {
        m_server->reply("POST", "/api/settings/password", 403,
                        R"({"error":"The current password is not right."})");
        AccountPane pane;
        fill(pane, "wrong", "new secret", "new secret");
        await(pane.changingPassword());

        QCOMPARE(pane.trouble(), "The current password is not right.");
        QVERIFY(!pane.changed());
        QVERIFY(!pane.working());
        QCOMPARE(pane.current(), QString());
        QCOMPARE(pane.replacement(), "new secret");
        QCOMPARE(pane.confirmation(), "new secret");
    }
};

QTEST_GUILESS_MAIN(TestAccountPane)
#include "tst_accountpane.moc"
