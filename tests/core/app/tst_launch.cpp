#include "app/appcommands.h"
#include "app/instancechannel.h"
#include "app/launchrequest.h"
#include "app/providersignin.h"
#include "app/serviceprovider.h"

#include <QDataStream>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QUuid>

using namespace orvel;

Q_DECLARE_METATYPE(ProviderSignIn::Outcome)

namespace {
QString uniqueName()
{
    return QStringLiteral("orvel-test-") + QUuid::createUuid().toString(QUuid::Id128);
}
} // namespace

// How a launch is read, how its arguments reach the running instance, and what the running
// instance does with a word or a sign-in callback.
class TestLaunch : public QObject {
    Q_OBJECT

private slots:
    void callbacksAreRead_data()
    {
        using Outcome = ProviderSignIn::Outcome;
        QTest::addColumn<QString>("url");
        QTest::addColumn<Outcome>("expected");
        const Outcome empty = Outcome::failed("The sign-in came back empty.");
        const Outcome incomplete = Outcome::failed("The sign-in did not complete.");
        QTest::newRow("code") << "orvel://signed-in?code=abc" << Outcome::code("abc");
        QTest::newRow("first non-empty code")
            << "orvel://signed-in?code=&code=second&code=third" << Outcome::code("second");
        QTest::newRow("code wins over error")
            << "orvel://signed-in?error=x&code=abc" << Outcome::code("abc");
        QTest::newRow("percent-encoded code")
            << "orvel://signed-in?code=a%2Fb%20c" << Outcome::code("a/b c");
        QTest::newRow("error only")
            << "orvel://signed-in?error=access_denied" << Outcome::failed("access_denied");
        QTest::newRow("empty code only") << "orvel://signed-in?code=" << incomplete;
        QTest::newRow("other items") << "orvel://signed-in?state=1" << incomplete;
        QTest::newRow("no query") << "orvel://signed-in" << empty;
        QTest::newRow("unparsable") << "orvel://[::1" << empty;
    }

    void callbacksAreRead()
    {
        QFETCH(QString, url);
        QFETCH(ProviderSignIn::Outcome, expected);
        const ProviderSignIn::Outcome outcome = ProviderSignIn::readCallback(QUrl(url));
        QCOMPARE(int(outcome.kind), int(expected.kind));
        QCOMPARE(outcome.text, expected.text);
    }

    void argumentsAreRead()
    {
        LaunchRequest plain = LaunchRequest::parse({});
        QVERIFY(!plain.carriesWork());
        QVERIFY(!plain.timings);

        LaunchRequest add = LaunchRequest::parse(
            {"-ZELON_HOST", "http://127.0.0.1:1", "--add", "  der Hund\n", "--timings"});
        QCOMPARE(add.addWord, std::optional<QString>(QStringLiteral("  der Hund\n")));
        QVERIFY(add.timings);
        QVERIFY(add.unknown.isEmpty());
        QVERIFY(add.carriesWork());

        LaunchRequest other = LaunchRequest::parse(
            {"--ZELON_HOST=http://x", "orvel://signed-in?code=1", "--add-selection", "--what"});
        QCOMPARE(other.callback->toString(), QStringLiteral("orvel://signed-in?code=1"));
        QVERIFY(other.addSelection);
        QVERIFY(!other.newDeck);
        QVERIFY(LaunchRequest::parse({"--new-deck"}).newDeck);
        QCOMPARE(other.unknown, QStringList({"--what"}));

        // The reminder's timer: nothing for a running instance to do, and nothing else asked.
        LaunchRequest remind = LaunchRequest::parse({"--remind"});
        QVERIFY(remind.remind);
        QVERIFY(!remind.carriesWork());
        QVERIFY(remind.unknown.isEmpty());
        QVERIFY(!plain.remind);
        QVERIFY(!add.remind);

        // --add at the very end asks to add nothing.
        QCOMPARE(LaunchRequest::parse({"--add"}).addWord, std::optional<QString>(QString()));
        QCOMPARE(LaunchRequest::parse({"--add=Katze"}).addWord,
                 std::optional<QString>(QStringLiteral("Katze")));

        // --manual with or without a page; an option or a callback after it is not a page.
        QCOMPARE(LaunchRequest::parse({"--manual", "notes"}).manualPage,
                 std::optional<QString>(QStringLiteral("notes")));
        QCOMPARE(LaunchRequest::parse({"--manual=folders"}).manualPage,
                 std::optional<QString>(QStringLiteral("folders")));
        const LaunchRequest bare = LaunchRequest::parse({"--manual", "--timings"});
        QCOMPARE(bare.manualPage, std::optional<QString>(QString()));
        QVERIFY(bare.timings);
        QVERIFY(bare.carriesWork());
        QCOMPARE(LaunchRequest::parse({"--manual", "orvel://auth?code=2"}).manualPage,
                 std::optional<QString>(QString()));
        QCOMPARE(LaunchRequest::parse({"--manual"}).manualPage, std::optional<QString>(QString()));
    }

    void wordsFromOtherAppsOpenQuickAdd()
    {
        AppCommands commands(nullptr);
        ServiceProvider services(commands);
        QSignalSpy raised(&services, &ServiceProvider::activationRequested);
        QSignalSpy posted(&commands, &AppCommands::posted);

        QVERIFY(!services.addToOrvel(QStringLiteral("  \n ")));
        QVERIFY(!services.addToOrvel(QString()));
        QCOMPARE(raised.size(), 0);
        QCOMPARE(posted.size(), 0);

        QVERIFY(services.addToOrvel(QStringLiteral("\t der Hund \r\n")));
        QCOMPARE(raised.size(), 1);
        QCOMPARE(posted.size(), 1);
        QCOMPARE(posted[0][0].value<AppCommand>(), AppCommand::QuickAdd);
        QCOMPARE(posted[0][1].toString(), QStringLiteral("der Hund"));
    }

    void commandsAreFoundByName()
    {
        const QStringList expected{"zelon.command.newDeck",        "zelon.command.newNote",
                                   "zelon.command.newFolder",      "zelon.command.study",
                                   "zelon.command.findEverywhere", "zelon.command.quickAdd",
                                   "zelon.command.palette",        "zelon.command.manual",
                                   "zelon.command.settings",       "zelon.command.addFromText"};
        QStringList names;
        for (AppCommand command : AppCommands::all()) {
            names.append(AppCommands::notification(command));
            QCOMPARE(AppCommands::fromName(AppCommands::name(command)), std::optional(command));
        }
        QCOMPARE(names, expected);
        QCOMPARE(AppCommands::fromName(QStringLiteral("newThing")), std::nullopt);
    }

    void oneInstanceTakesTheOthersArguments()
    {
        const QString name = uniqueName();
        InstanceChannel first(name);
        QVERIFY(first.listen());
        QSignalSpy received(&first, &InstanceChannel::received);

        InstanceChannel second(name);
        QVERIFY(!second.listen());
        // The second process blocks while it hands over; the first answers from its event
        // loop, so the hand-over runs on a thread here.
        bool handed = false;
        QThread *sender = QThread::create([&] {
            handed = second.sendToRunning({"orvel://signed-in?code=xyz", "--add", "Katze"});
        });
        sender->start();
        QTRY_VERIFY(sender->isFinished());
        delete sender;
        QVERIFY(handed);
        QCOMPARE(received.size(), 1);
        QCOMPARE(received[0][0].toStringList(),
                 QStringList({"orvel://signed-in?code=xyz", "--add", "Katze"}));
    }

    void aChannelLeftByACrashIsTakenOver()
    {
        const QString name = uniqueName();
        {
            // A server socket file whose listener is gone.
            QLocalServer stale;
            stale.setSocketOptions(QLocalServer::UserAccessOption);
            QVERIFY(stale.listen(name));
            const QString path = stale.fullServerName();
            stale.close();
            QFile socketFile(path);
            if (!socketFile.exists()) {
                // close() removed it; leave an ordinary file in its place, as a crash would.
                QVERIFY(socketFile.open(QIODevice::WriteOnly));
                socketFile.close();
            }
        }
        InstanceChannel channel(name);
        QVERIFY(channel.listen());
        QVERIFY(channel.isListening());
        InstanceChannel nobody(uniqueName());
        QVERIFY(!nobody.sendToRunning({"x"}, 200));
    }

    void garbageFromAnotherProcessIsIgnored()
    {
        const QString name = uniqueName();
        InstanceChannel channel(name);
        QVERIFY(channel.listen());
        QSignalSpy received(&channel, &InstanceChannel::received);
        QLocalSocket socket;
        socket.connectToServer(name);
        QVERIFY(socket.waitForConnected(1000));
        QByteArray huge;
        QDataStream(&huge, QIODevice::WriteOnly) << quint32(1u << 30);
        QTest::ignoreMessage(QtWarningMsg,
                             "orvel: ignored an oversized message from another process");
        socket.write(huge);
        socket.flush();
        QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(received.size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLaunch)
#include "tst_launch.moc"
