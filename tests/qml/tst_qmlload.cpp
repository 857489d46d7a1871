#include "app/appcommands.h"
#include "app/appstate.h"
#include "app/browser.h"
#include "app/signinview.h"
#include "app/welcomesheet.h"
#include "library/homeview.h"
#include "palette/commandpalette.h"
#include "reminders/reminderpane.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "study/studyview.h"
#include "testservices.h"

#include <QDirIterator>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(OrvelPlugin)
Q_IMPORT_QML_PLUGIN(Orvel_CorePlugin)

using namespace orvel;

namespace {

// Every warning the QML engine (or anything else) prints while a test runs.
QStringList &warnings()
{
    static QStringList list;
    return list;
}

QtMessageHandler previousHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg)
        warnings().append(message);
    previousHandler(type, context, message);
}

const QByteArray ana = R"({"id":7,"email":"ana@example.org","display_name":"Ana"})";
const QByteArray prefs = R"({"voices":{},"rate":1,"gain":1,"hear_on_flip":false,"skin":"night"})";

} // namespace

// Loads every QML file of the app and walks the screens through their states; any warning fails.
class TestQmlLoad : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ScriptedServer m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    AppState *m_state = nullptr;
    QList<QUrl> m_opened;

    void expectNoWarnings(const char *where)
    {
        const QStringList seen = warnings();
        warnings().clear();
        QVERIFY2(seen.isEmpty(), qPrintable(QString::fromLatin1(where) + ":\n" + seen.join('\n')));
    }

private slots:
    void initTestCase()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        m_server.reply("GET", "/api/auth/me", 200, ana);
        m_server.reply("GET", "/api/settings", 200, prefs);
        m_server.reply("PATCH", "/api/settings", 200, prefs);
        m_server.reply("GET", "/api/auth/options", 200,
                       R"({"google":true,"apple":true,"signup":true})");
        m_api =
            std::make_unique<APIClient>(m_server.baseUrl(), m_dir.filePath("cookies"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_state = &m_services->state();
        Browser::setOpener([this](const QUrl &url) {
            m_opened.append(url);
            return true;
        });
        previousHandler = qInstallMessageHandler(collect);
    }

    void cleanupTestCase()
    {
        qInstallMessageHandler(previousHandler);
        m_services.reset();
    }

    // QML's singletons are the very objects C++ posts to and reads: a command posted in C++
    // (the study button) must reach the QML screens that listen, and the other way round.
    void singletonsAreTheSharedObjects()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQml\nimport Orvel.Core\n"
                          "QtObject { property var commands: AppCommands; "
                          "property var state: AppState; property var speech: Speech }",
                          QUrl());
        std::unique_ptr<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        QCOMPARE(object->property("commands").value<QObject *>(), &AppCommands::shared());
        QCOMPARE(object->property("state").value<QObject *>(), m_state);
        QCOMPARE(object->property("speech").value<QObject *>(), &m_services->speech());
    }

    void everyFileLoads()
    {
        QStringList files;
        QDirIterator it(QStringLiteral(":/Orvel"), {QStringLiteral("*.qml")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            files.append(it.next());
        QVERIFY2(files.size() >= 15, qPrintable(files.join(' ')));

        for (const QString &file : files) {
            if (file.endsWith(QLatin1String("/Theme.qml")))
                continue; // a singleton: made by the files that use it
            QQmlEngine engine;
            QQmlComponent component(&engine, QUrl(QStringLiteral("qrc") + file));
            QVERIFY2(component.isReady(), qPrintable(file + ": " + component.errorString()));
            WelcomeSheet sheet;
            QVariantMap initial;
            if (file.endsWith(QLatin1String("/WelcomeDialog.qml")))
                initial.insert(QStringLiteral("sheet"), QVariant::fromValue(&sheet));
            if (file.endsWith(QLatin1String("/ShelfRow.qml"))) // a delegate: the model's roles
                initial = {{"kind", "deck"}, {"rowId", 3},    {"name", "Deutsch"}, {"count", 12},
                           {"depth", 1},     {"open", false}, {"shortcut", 1}};
            if (file.endsWith(QLatin1String("/CardRow.qml")))
                initial = {{"cardId", 7},
                           {"term", "der Hund"},
                           {"translation", "the dog"},
                           {"badge", "noun"}};
            const QVariantMap remark{
                {"kind", "gloss"},        {"kindLabel", "Gloss"}, {"body", "a bread roll"},
                {"term", "Brötchen"},     {"edited", false},      {"levels", QStringList{"Why."}},
                {"deeperText", "Deeper"}, {"canFold", true},      {"deepening", false}};
            if (file.endsWith(QLatin1String("/NoteLineRow.qml")))
                initial = {{"index", 0},
                           {"key", "k"},
                           {"lineId", 4},
                           {"text", "zwei Brötchen"},
                           {"pending", false},
                           {"stale", true},
                           {"staleText", "changed"},
                           {"picture", QVariantMap{{"url", "/media/1/a.png"},
                                                   {"width", 640},
                                                   {"height", 480},
                                                   {"credit", "Ana · CC BY"},
                                                   {"yours", false},
                                                   {"moving", false}}},
                           {"remarks", QVariantList{remark}}};
            if (file.endsWith(QLatin1String("/ImportWordRow.qml")))
                initial = {{"index", 0},
                           {"term", "laufen"},
                           {"gloss", "to run"},
                           {"seenAsText", "seen as läuft"},
                           {"chosen", true}};
            if (file.endsWith(QLatin1String("/PaletteRow.qml")))
                initial = {{"index", 1},
                           {"kind", "item"},
                           {"itemId", "card-7"},
                           {"glyph", "card"},
                           {"title", "der Hund"},
                           {"note", ""},
                           {"subtitle", "noun"},
                           {"meta", "Deutsch"},
                           {"keys", QStringList{"1", "2"}},
                           {"serif", true},
                           {"destructive", false},
                           {"armed", false},
                           {"selected", true},
                           {"spoken", "der Hund, noun, Deutsch"}};
            if (file.endsWith(QLatin1String("/NoteRemarkItem.qml")))
                initial = {{"index", 0}, {"modelData", remark}};
            // Items go into a window, as they would in the app, so that popups have one.
            QQuickWindow window;
            std::unique_ptr<QObject> object(component.beginCreate(engine.rootContext()));
            QVERIFY2(object, qPrintable(file + ": " + component.errorString()));
            component.setInitialProperties(object.get(), initial);
            if (auto *item = qobject_cast<QQuickItem *>(object.get()))
                item->setParentItem(window.contentItem());
            component.completeCreate();
            QVERIFY2(component.errors().isEmpty(),
                     qPrintable(file + ": " + component.errorString()));
            QCoreApplication::processEvents();
            expectNoWarnings(qPrintable(file));
        }
    }

    void theWindowWalksThroughItsScreens()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/Orvel/Main.qml")));
        std::unique_ptr<QObject> root(component.create());
        QVERIFY2(root, qPrintable(component.errorString()));
        auto *window = qobject_cast<QQuickWindow *>(root.get());
        QVERIFY(window);
        QCOMPARE(window->title(), QStringLiteral("Orvel"));
        expectNoWarnings("unknown");

        // Signed out: the sign-in screen in each of its modes, light and dark.
        m_state->setAppearance(AppState::Appearance::Light);
        QMetaObject::invokeMethod(m_state, [this] { m_state->requestSignOut(); });
        QTRY_COMPARE(m_state->auth(), AppState::Auth::SignedOut);
        SignInView *view = nullptr;
        QTRY_VERIFY((view = root->findChild<SignInView *>()));
        QTRY_VERIFY(view->offersGoogle());
        for (AppState::Appearance appearance :
             {AppState::Appearance::Light, AppState::Appearance::Dark}) {
            m_state->setAppearance(appearance);
            view->showSignUp();
            QCoreApplication::processEvents();
            view->showSignIn();
            view->setEmail(QStringLiteral("ana@example.org"));
            view->forgot();
            QCoreApplication::processEvents();
        }
        expectNoWarnings("sign-in modes");
        QVERIFY(!m_opened.isEmpty());
        QCOMPARE(m_opened.last().path(), QStringLiteral("/app"));

        // Signed in: the home screen, its welcome sheet and the settings window's panes.
        view->setPassword(QStringLiteral("pw"));
        m_server.reply("POST", "/api/auth/login", 200, ana);
        view->submit();
        QTRY_COMPARE(m_state->auth(), AppState::Auth::SignedIn);
        QTRY_VERIFY(m_state->hasPreferences());
        QCoreApplication::processEvents();
        // The settings window by its title: the manual is a window of the root's too.
        QQuickWindow *settings = nullptr;
        for (auto *window : root->findChildren<QQuickWindow *>())
            if (window->title() == QLatin1String("Orvel Settings"))
                settings = window;
        QVERIFY(settings);
        settings->show();
        for (int pane : {1, 2, 0})
            settings->setProperty("pane", pane);
        // The reminder pane on, at another hour, refused, and with no timer to be had.
        auto *reminder = settings->findChild<ReminderPane *>();
        QVERIFY(reminder);
        QTRY_VERIFY(reminder->ready());
        reminder->setOn(true);
        reminder->setHour(7);
        QTRY_COMPARE(m_services->notifications().pending.size(), 1);
        m_services->notifications().status = NotificationCentre::Authorization::Denied;
        reminder->setOn(false);
        reminder->setOn(true);
        QTRY_VERIFY(reminder->refused());
        m_services->notifications().schedulable = false;
        reminder->reload();
        QTRY_VERIFY(!reminder->available());
        m_services->notifications().schedulable = true;
        m_state->chooseSkin(QStringLiteral("sage"));
        m_state->setSystemIsDark(true);
        m_state->choose(AppState::Appearance::System);
        // The skin goes to the server (the sound pane's own reads may come after it).
        QTRY_VERIFY([this] {
            const auto requests = m_server.requests();
            return std::any_of(requests.cbegin(), requests.cend(), [](const auto &request) {
                return request.method == "PATCH" && request.path == u"/api/settings";
            });
        }());
        QCoreApplication::processEvents();
        expectNoWarnings("home and settings");

        // The palette over the home screen: opened by its command, typed into, a stage stepped
        // into and out of, and closed.
        auto *home = root->findChild<HomeView *>();
        QVERIFY(home);
        CommandPalette *palette = home->palette();
        AppCommands::shared().post(AppCommand::Palette);
        QVERIFY(palette->opened());
        for (const char *typed : {"n", "ne", "new", "?", "study a", "zzz"}) {
            palette->setQuery(QString::fromUtf8(typed));
            palette->move(1);
            QCoreApplication::processEvents();
        }
        palette->setQuery(QStringLiteral("study a"));
        QVERIFY(palette->deeper());
        QCoreApplication::processEvents();
        QVERIFY(palette->back());
        QVERIFY(palette->escape());
        QCoreApplication::processEvents();
        expectNoWarnings("palette");
    }

    // A card too long for its place scrolls by the keys once opened, while the session's own
    // keys keep their meaning.
    void theStudyCardScrollsByTheKeys()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/Orvel/StudyScreen.qml")));
        QQuickWindow window;
        window.resize(900, 640);
        std::unique_ptr<QObject> object(component.create());
        auto *screen = qobject_cast<QQuickItem *>(object.get());
        QVERIFY2(screen, qPrintable(component.errorString()));
        screen->setParentItem(window.contentItem());
        screen->setSize(window.size());
        window.show();
        window.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&window));

        Card card;
        card.id = 1;
        card.term = QStringLiteral("ausgehen");
        card.translation = QStringLiteral("go out");
        for (int i = 0; i < 40; ++i)
            card.examples.append({QStringLiteral("Wir gehen heute aus."),
                                  QStringLiteral("What if we went out for a meal?")});
        Card other = card;
        other.id = 2;
        DeckSummary deck;
        deck.id = 1;
        deck.name = QStringLiteral("Deutsch");
        deck.language = QStringLiteral("de");
        auto *study = screen->property("study").value<StudyView *>();
        QVERIFY(study);
        study->start(deck, {card, other});
        QQuickItem *back = nullptr;
        for (auto *item : screen->findChildren<QQuickItem *>())
            if (item->inherits("QQuickFlickable"))
                back = item;
        QVERIFY(back);
        const auto top = [back] { return back->property("contentY").toReal(); };
        const auto bottom = [back] {
            return back->property("contentHeight").toReal() - back->height();
        };

        QTest::keyClick(&window, Qt::Key_Space);
        QVERIFY(study->flipped());
        QTest::keyClick(&window, Qt::Key_E);
        QVERIFY(study->expanded());
        QTRY_VERIFY(bottom() > back->height());

        QTest::keyClick(&window, Qt::Key_Down);
        const qreal step = top();
        QVERIFY(step > 0);
        QTest::keyClick(&window, Qt::Key_PageDown);
        QVERIFY(top() > 2 * step);
        QTest::keyClick(&window, Qt::Key_Up);
        QTest::keyClick(&window, Qt::Key_End);
        QCOMPARE(top(), bottom());
        QTest::keyClick(&window, Qt::Key_Down);
        QCOMPARE(top(), bottom());
        QTest::keyClick(&window, Qt::Key_PageUp);
        QTest::keyClick(&window, Qt::Key_Home);
        QCOMPARE(top(), 0);

        // Closing the rest, or the next card, starts at the top again.
        QTest::keyClick(&window, Qt::Key_End);
        QTest::keyClick(&window, Qt::Key_E);
        QVERIFY(!study->expanded());
        QCOMPARE(top(), 0);
        QTest::keyClick(&window, Qt::Key_E);
        QTest::keyClick(&window, Qt::Key_End);
        QTest::keyClick(&window, Qt::Key_Right);
        QCOMPARE(study->index(), 1);
        QTest::keyClick(&window, Qt::Key_Space);
        QTest::keyClick(&window, Qt::Key_E);
        QVERIFY(study->expanded());
        QCOMPARE(top(), 0);
        expectNoWarnings("study card");
    }
};

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    TestQmlLoad test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_qmlload.moc"
