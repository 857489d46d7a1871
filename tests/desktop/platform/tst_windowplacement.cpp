// Where the main window opens: fitted to a small or scaled screen, restored where it was left
// when that place is still on a screen, and remembered through the settings.
#include "platform/windowmemory.h"
#include "platform/windowplacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

using namespace orvel;

class TestWindowPlacement : public QObject {
    Q_OBJECT

private slots:
    void aFreshWindowFitsItsScreen()
    {
        // 1280×800 at a scale factor of 2: the intended 1100×720 would spill off the screen.
        const QRect scaled(0, 0, 640, 400);
        const QRect fitted = WindowPlacement::fresh({1100, 720}, scaled);
        QVERIFY(scaled.contains(fitted));
        QCOMPARE(fitted, QRect(32, 20, 576, 360));
        QCOMPARE(WindowPlacement::minimum({760, 520}, scaled), QSize(576, 360));

        // Where it fits, the intended size stays, centred on the available area of its screen.
        const QRect large(1920, 30, 1920, 1050);
        QCOMPARE(WindowPlacement::fresh({1100, 720}, large), QRect(2330, 195, 1100, 720));
        QCOMPARE(WindowPlacement::minimum({760, 520}, large), QSize(760, 520));

        // One dimension too large, the other kept.
        QCOMPARE(WindowPlacement::fresh({1100, 720}, QRect(0, 0, 1366, 700)).size(),
                 QSize(1100, 630));
    }

    void aRememberedPlaceIsKeptOnlyWhileMostlyOnAScreen()
    {
        const QList<QRect> screens{QRect(0, 0, 1280, 800), QRect(1280, 0, 1920, 1080)};
        // Wholly, or mostly, on a screen: as it was.
        QCOMPARE(WindowPlacement::remembered({100, 50, 900, 600}, screens),
                 QRect(100, 50, 900, 600));
        QCOMPARE(WindowPlacement::remembered({2600, 600, 800, 600}, screens),
                 QRect(2600, 600, 800, 600));
        // Straddling two screens counts only what lies on one of them.
        QCOMPARE(WindowPlacement::remembered({900, 100, 800, 500}, screens),
                 QRect(900, 100, 800, 500));
        QCOMPARE(WindowPlacement::remembered({880, 100, 800, 500}, screens), std::nullopt);

        // Off every screen, or mostly off: fitted afresh instead.
        QCOMPARE(WindowPlacement::remembered({4000, 100, 800, 600}, screens), std::nullopt);
        QCOMPARE(WindowPlacement::remembered({-700, 100, 800, 600}, screens), std::nullopt);
        QCOMPARE(WindowPlacement::remembered({100, 500, 800, 600}, screens.mid(0, 1)),
                 std::nullopt);
        QCOMPARE(WindowPlacement::remembered({}, screens), std::nullopt);

        // Mostly on a screen that has since shrunk: cut to the screen and moved onto it.
        QCOMPARE(WindowPlacement::remembered({-10, 20, 1300, 700}, screens.mid(0, 1)),
                 QRect(0, 20, 1280, 700));
    }

    void theWindowReturnsWhereItWasLeft()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath("orvel.conf"), QSettings::IniFormat);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();

        // First run: the intended size, but never more than the screen.
        QRect left;
        {
            QWindow window;
            window.resize(screen.size() * 2);
            window.setMinimumSize(screen.size() * 3 / 2);
            WindowMemory memory(&window, settings);
            memory.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            QVERIFY(screen.contains(window.geometry()));
            QVERIFY(screen.contains(QRect(screen.topLeft(), window.minimumSize())));

            left = QRect(screen.topLeft() + QPoint(30, 40), screen.size() / 2);
            QSignalSpy moved(&window, &QWindow::xChanged);
            window.setGeometry(left);
            QVERIFY(moved.count() || moved.wait());
            memory.save();
        }
        {
            QWindow window;
            window.resize(100, 100);
            WindowMemory memory(&window, settings);
            memory.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            QCOMPARE(window.geometry(), left);
            QVERIFY(window.windowStates() == Qt::WindowNoState);

            // Left maximised: maximised again, still remembering the place to return to, also
            // when the desktop gives the window the maximised size before saying it maximised it.
            window.showMaximized();
            QTRY_VERIFY(window.windowStates() & Qt::WindowMaximized);
            const QRect maximised = window.geometry();
            window.showNormal();
            QTRY_COMPARE(window.geometry(), left);
            QSignalSpy resized(&window, &QWindow::widthChanged);
            window.setGeometry(maximised);
            QVERIFY(resized.count() || resized.wait());
            window.showMaximized();
            QTRY_VERIFY(window.windowStates() & Qt::WindowMaximized);
            memory.save();
        }
        QWindow window;
        WindowMemory memory(&window, settings);
        memory.show();
        QTRY_VERIFY(window.windowStates() & Qt::WindowMaximized);
        QTRY_VERIFY(window.geometry() != left);
        memory.save();
        QCOMPARE(settings.value("zelon.window.geometry").toRect(), left);
    }
};

QTEST_MAIN(TestWindowPlacement)
#include "tst_windowplacement.moc"
