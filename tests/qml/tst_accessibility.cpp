#include "scriptedserver.h"
#include "skipunlessci.h"

#include <memory>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

// One child process that is stopped (its whole group) when this goes away.
struct Child {
    QProcess process;
    ~Child()
    {
        if (process.state() != QProcess::NotRunning) {
            process.terminate();
            if (!process.waitForFinished(3000))
                process.kill();
            process.waitForFinished(1000);
        }
    }
};

QString run(const QString &program, const QStringList &arguments, const QProcessEnvironment &env)
{
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(program, arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

// Whether an X client can talk to the server on `display`.
bool displayAnswers(QProcessEnvironment env, const QString &display)
{
    env.insert("DISPLAY", QStringLiteral(":") + display);
    QProcess probe;
    probe.setProcessEnvironment(env);
    probe.start("xdotool", {"getdisplaygeometry"});
    return probe.waitForFinished(5000) && probe.exitStatus() == QProcess::NormalExit &&
           probe.exitCode() == 0;
}

} // namespace

// The sign-in screen as a screen reader sees it: every text and control carries its words, and
// the screen reader's press action works on the app's buttons.
class TestAccessibility : public QObject {
    Q_OBJECT

private slots:
    void signInScreenReadsAloud()
    {
        const QString launcher = QStringLiteral("/usr/libexec/at-spi-bus-launcher");
        const QString python = QStringLiteral("/usr/bin/python3");
        if (QStandardPaths::findExecutable("Xvfb").isEmpty() ||
            QStandardPaths::findExecutable("xdotool").isEmpty() ||
            QStandardPaths::findExecutable("dbus-daemon").isEmpty() || !QFile::exists(launcher) ||
            !QFile::exists(python))
            ORVEL_SKIP_UNLESS_CI("Xvfb, xdotool, dbus-daemon or at-spi2-core is not installed");
        if (QProcess::execute(python, {"-c", "import pyatspi"}) != 0)
            ORVEL_SKIP_UNLESS_CI("python3-pyatspi is not installed");

        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_RUNTIME_DIR", dir.path());
        env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + dir.filePath("bus"));
        env.remove("AT_SPI_BUS_ADDRESS");

        // Xvfb picks a free display itself and writes its number once it takes connections. On a
        // busy machine one has been seen to name its display and then turn the app away, so the
        // display must also answer an X client before it is used, and a server that does not is
        // replaced (up to three times). What each said goes to a file, shown if none would do.
        std::unique_ptr<Child> xvfb;
        QString display;
        QString xvfbSaid;
        for (int attempt = 1; attempt <= 3 && display.isEmpty(); ++attempt) {
            const QString log = dir.filePath(QStringLiteral("xvfb-%1.log").arg(attempt));
            xvfb = std::make_unique<Child>();
            xvfb->process.setProcessEnvironment(env);
            xvfb->process.setStandardErrorFile(log);
            xvfb->process.start(
                "Xvfb", {"-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp"});
            const QString named =
                QTest::qWaitFor([&] { return xvfb->process.canReadLine(); }, 10000)
                    ? QString::fromLatin1(xvfb->process.readLine()).trimmed()
                    : QString();
            const bool answers = !named.isEmpty() &&
                                 QTest::qWaitFor([&] { return displayAnswers(env, named); }, 10000);
            if (answers) {
                display = named;
            } else {
                QFile said(log);
                said.open(QIODevice::ReadOnly);
                xvfbSaid += QStringLiteral("\nXvfb (try %1, display \"%2\") said:\n%3")
                                .arg(attempt)
                                .arg(named, QString::fromUtf8(said.readAll()).right(2000));
            }
        }
        QVERIFY2(!display.isEmpty(), qPrintable("no Xvfb display answered" + xvfbSaid));
        env.insert("DISPLAY", QStringLiteral(":") + display);
        Child bus;
        bus.process.setProcessEnvironment(env);
        bus.process.start("dbus-daemon", {"--session", "--nofork",
                                          "--address=" + env.value("DBUS_SESSION_BUS_ADDRESS")});
        QVERIFY(QTest::qWaitFor([&] { return QFile::exists(dir.filePath("bus")); }, 10000));
        Child atspi;
        atspi.process.setProcessEnvironment(env);
        atspi.process.start(launcher, {"--launch-immediately"});
        QVERIFY(QTest::qWaitFor(
            [&] {
                return run("dbus-send",
                           {"--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
                            "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner",
                            "string:org.a11y.Bus"},
                           env)
                    .contains("true");
            },
            10000));

        ScriptedServer server;
        server.reply("GET", "/api/auth/me", 401, "{}");
        server.reply("GET", "/api/auth/options", 200,
                     R"({"google":true,"apple":false,"signup":true})");

        QProcessEnvironment appEnv = env;
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
            QDir(dir.path()).mkpath(name);
            appEnv.insert(name, dir.filePath(name));
        }
        appEnv.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        appEnv.insert("QT_QPA_PLATFORM", "xcb");
        appEnv.insert("ORVEL_INSTANCE", "orvel-atspi-" + display);
        appEnv.insert("ZELON_HOST", server.baseUrl().toString());
        Child app;
        app.process.setProcessEnvironment(appEnv);
        app.process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        app.process.start(ORVEL_APP_PATH);
        QVERIFY(app.process.waitForStarted());

        QProcess reader;
        reader.setProcessEnvironment(env);
        reader.start(python, {ATSPI_SCRIPT, "press", "Make an account"});
        QVERIFY(reader.waitForFinished(60000));
        const QString output = QString::fromUtf8(reader.readAllStandardOutput());
        QVERIFY2(reader.exitCode() == 0,
                 qPrintable(QString::fromUtf8(reader.readAllStandardError()) + output +
                            (xvfb->process.state() == QProcess::Running
                                 ? QString()
                                 : QStringLiteral("\nXvfb on :%1 had gone").arg(display))));

        const QStringList parts = output.split(QStringLiteral("\n--\n"));
        QCOMPARE(parts.size(), 2);
        const QStringList before = parts[0].split('\n');
        const QStringList after = parts[1].split('\n');
        for (const char *line :
             {"text\tEmail", "password text\tPassword", "push button\tSign in",
              "push button\tForgot password?", "push button\tContinue with Google",
              "label\tor with email", "label\tNew to orvel?", "push button\tMake an account",
              "label\tAppearance", "radio button\tSystem", "radio button\tLight",
              "radio button\tDark", "label\torvel"})
            QVERIFY2(before.contains(QString::fromUtf8(line)),
                     qPrintable(QStringLiteral("missing \"%1\" in:\n%2").arg(line, parts[0])));
        QVERIFY2(!before.contains("push button\tContinue with Apple"), "Apple is not offered");

        // Pressed by the screen reader, "Make an account" switched the screen to signing up.
        for (const char *line : {"text\tName", "password text\tPassword — at least 8 characters",
                                 "push button\tMake my account", "label\tAlready have an account?"})
            QVERIFY2(after.contains(QString::fromUtf8(line)),
                     qPrintable(QStringLiteral("missing \"%1\" in:\n%2").arg(line, parts[1])));
    }
};

QTEST_GUILESS_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
