// orvel: the desktop app's entry. It keeps to one process per user (a later launch hands its
// arguments over and exits), makes the app state, installs the Linux adapters, loads the QML
// window and restores the session. `orvel --remind`, which the daily reminder's timer runs, only
// shows the reminder's notification.
#include "app/appcommands.h"
#include "app/appstate.h"
#include "app/browser.h"
#include "app/instancechannel.h"
#include "app/launchrequest.h"
#include "app/serviceprovider.h"
#include "app/services.h"
#include "app/speechsound.h"
#include "notes/journalreplay.h"
#include "notes/quitflush.h"
#include "platform/audio/qtaudiooutput.h"
#include "platform/brand.h"
#include "platform/colourscheme.h"
#include "platform/desktopnotifications.h"
#include "platform/launchhandler.h"
#include "platform/linuxnotificationcentre.h"
#include "platform/renderchoice.h"
#include "platform/starttime.h"
#include "platform/windowmemory.h"
#include "reminders/reminder.h"
#include "reminders/remindertexts.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "sound/speech.h"

#include <cstdio>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(OrvelPlugin)
Q_IMPORT_QML_PLUGIN(Orvel_CorePlugin)

using namespace orvel;

namespace {

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

// The daily reminder's timer runs this: the notification goes to the desktop's notification
// server, with no window, no display and no word to a running instance.
int remind(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orvel"));
    DesktopNotifications notifications;
    const std::optional<QString> problem =
        notifications.show(remindertexts::title(), remindertexts::body(), true);
    if (problem) {
        std::fprintf(stderr, "orvel: cannot show the daily reminder: %s\n", qPrintable(*problem));
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    StartTime::markMain();
    if (LaunchRequest::parse(argumentsOf(argc, argv)).remind)
        return remind(argc, argv);
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("orvel"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Orvel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("orvel"));

    const QStringList arguments = QGuiApplication::arguments().mid(1);
    const LaunchRequest request = LaunchRequest::parse(arguments);

    InstanceChannel channel;
    if (!channel.listen()) {
        if (channel.sendToRunning(arguments))
            return 0;
        qWarning()
            << "orvel: another instance holds the channel but did not answer; starting anyway";
    }

    RenderChoice::apply();
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    Brand::family();
    Browser::setOpener([](const QUrl &url) { return QDesktopServices::openUrl(url); });

    // The services every screen reaches the world through: the server client, the app's state
    // and the speech player, whose clips go through the desktop's sound server.
    APIClient api;
    AppState state(api);
    QtAudioOutput audio;
    Speech speech(api, audio, QDir::tempPath());
    // The daily reminder, kept by a systemd user timer and shown by the notification server.
    LinuxNotificationCentre notificationCentre;
    Reminder reminder(notificationCentre);
    Services services(api, state, speech, &reminder);
    // Notes whose last save never reached the server are saved once the learner is signed in.
    JournalReplay journalReplay;
    SpeechSound sound(speech);
    state.setSound(&sound);

    ColourScheme scheme;
    state.setSystemIsDark(scheme.dark());
    QObject::connect(&scheme, &ColourScheme::darkChanged, &state, &AppState::setSystemIsDark);

    AppCommands &commands = AppCommands::shared();
    QObject::connect(&commands, &AppCommands::posted, [](AppCommand command, const QString &text) {
        qInfo().noquote() << "orvel:" << AppCommands::notification(command)
                          << (text.isEmpty() ? QString() : text);
    });
    ServiceProvider addWords(commands);
    LaunchHandler launches(addWords);
    QObject::connect(&channel, &InstanceChannel::received, &launches,
                     &LaunchHandler::handleArguments);

    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/Orvel/Main.qml")));
    auto *window = engine.rootObjects().isEmpty()
                       ? nullptr
                       : qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window) {
        qCritical() << "orvel: the main window could not be loaded";
        return 1;
    }
    launches.setWindow(window);
    if (request.timings) {
        auto connection = std::make_shared<QMetaObject::Connection>();
        *connection =
            QObject::connect(window, &QQuickWindow::frameSwapped, window, [window, connection] {
                QObject::disconnect(*connection);
                const bool software =
                    window->rendererInterface()->graphicsApi() == QSGRendererInterface::Software;
                std::printf(
                    "orvel: first frame %lld ms after process start (%lld ms after main, %s)\n",
                    StartTime::sinceProcessStart(), StartTime::sinceMain(),
                    software ? "software renderer" : "graphics device");
                std::fflush(stdout);
            });
    }

    // The window opens where it was left, or fitted to its screen, and remembers its place.
    WindowMemory place(window, LocalSettings::store());
    place.show();
    QObject::connect(&app, &QGuiApplication::aboutToQuit, &place, &WindowMemory::save);

    // Once the window is on screen, the reminder's timer is brought in line with the settings:
    // one that was lost, or whose notifications went away, is mended at each start.
    // (Frames come from the render thread; several may be queued before the first is seen.)
    auto firstFrame = std::make_shared<std::pair<QMetaObject::Connection, bool>>();
    firstFrame->first = QObject::connect(
        window, &QQuickWindow::frameSwapped, &reminder,
        [&reminder, firstFrame] {
            QObject::disconnect(firstFrame->first);
            if (std::exchange(firstFrame->second, true))
                return;
            reminder.schedule();
        },
        Qt::QueuedConnection);

    launches.handle(request, false);
    state.restore();
    const int code = app.exec();
    // A line typed just before quitting goes to the server now rather than at the next start;
    // what does not make it in time stays in the draft journal.
    flushNotesBeforeQuitting(std::chrono::seconds(3));
    return code;
}
