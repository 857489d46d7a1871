#pragma once

#include <chrono>
#include <QByteArray>
#include <qcoro/qcorotask.h>
#include <QString>
#include <QStringList>

namespace orvel {

// The daily reminder's timer as systemd keeps it for this user: a timer unit and the one-shot
// service it starts (`orvel --remind`), written to the user's unit folder and enabled through
// `systemctl --user`. Every systemctl call runs as a separate process, awaited, never blocking
// the event loop.
class SystemdTimer {
public:
    struct Setup {
        QString systemctl;     // the systemctl program (a path, or a name found on PATH)
        QString unitDirectory; // the folder user units are read from
        QString program;       // the absolute path of the orvel executable the service runs
        QString name;          // the units' name without its suffix
        std::chrono::milliseconds timeout{20000}; // the longest one systemctl call may take
    };

    // $XDG_CONFIG_HOME/systemd/user, the running executable, "orvel-reminder".
    static Setup forThisUser();

    explicit SystemdTimer(Setup setup);

    // Whether a systemd user manager answers (`systemctl --user is-system-running`); without
    // one nothing can start the timer.
    QCoro::Task<bool> managerRunning();
    // Writes the units for a day's hour (0–23) and enables and starts the timer, replacing the
    // one there was. False when there is no manager, the files cannot be written or systemctl
    // fails.
    QCoro::Task<bool> install(int hour);
    // Stops and disables the timer and deletes both units. With no units there, it does nothing.
    QCoro::Task<> remove();

    QString timerPath() const;
    QString servicePath() const;

private:
    struct Outcome {
        bool finished = false;
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
        bool ok() const { return finished && exitCode == 0; }
    };
    QCoro::Task<Outcome> systemctl(QStringList arguments);
    QCoro::Task<bool> mustSucceed(QStringList arguments);
    static QStringList reload()
    {
        return {QStringLiteral("--user"), QStringLiteral("daemon-reload")};
    }
    QString timerUnit() const { return m_setup.name + QStringLiteral(".timer"); }
    QString serviceUnit() const { return m_setup.name + QStringLiteral(".service"); }

    Setup m_setup;
};

} // namespace orvel
