#include "systemdtimer.h"

#include "reminders/systemdunits.h"

#include <QCoreApplication>
#include <qcoro/qcoroprocess.h>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace orvel {

namespace {

bool writeUnit(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        qWarning().noquote() << "orvel: cannot write" << path << ":" << file.errorString();
        return false;
    }
    return true;
}

} // namespace

SystemdTimer::Setup SystemdTimer::forThisUser()
{
    Setup setup;
    setup.systemctl = QStringLiteral("systemctl");
    setup.unitDirectory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                          QStringLiteral("/systemd/user");
    setup.program = QCoreApplication::applicationFilePath();
    setup.name = QStringLiteral("orvel-reminder");
    return setup;
}

SystemdTimer::SystemdTimer(Setup setup) : m_setup(std::move(setup)) {}

QString SystemdTimer::timerPath() const
{
    return m_setup.unitDirectory + QLatin1Char('/') + timerUnit();
}

QString SystemdTimer::servicePath() const
{
    return m_setup.unitDirectory + QLatin1Char('/') + serviceUnit();
}

QCoro::Task<bool> SystemdTimer::managerRunning()
{
    // Its exit status is not 0 for a running but degraded manager, so the printed state decides.
    const QStringList query{QStringLiteral("--user"), QStringLiteral("is-system-running")};
    const Outcome state = co_await systemctl(query);
    co_return state.finished &&systemdunits::managerRunning(state.output);
}

QCoro::Task<bool> SystemdTimer::install(int hour)
{
    const std::optional<QString> timer = systemdunits::timer(hour, serviceUnit());
    const std::optional<QString> service = systemdunits::service(m_setup.program);
    if (!timer || !service)
        co_return false;
    const bool running = co_await managerRunning();
    if (!running)
        co_return false;
    if (!QDir().mkpath(m_setup.unitDirectory)) {
        qWarning().noquote() << "orvel: cannot make" << m_setup.unitDirectory;
        co_return false;
    }
    // The service first: the timer names it.
    if (!writeUnit(servicePath(), *service) || !writeUnit(timerPath(), *timer))
        co_return false;
    const bool reloaded = co_await mustSucceed(reload());
    if (!reloaded)
        co_return false;
    const QStringList enable{QStringLiteral("--user"), QStringLiteral("enable"),
                             QStringLiteral("--now"), timerUnit()};
    const bool enabled = co_await mustSucceed(enable);
    co_return enabled;
}

QCoro::Task<> SystemdTimer::remove()
{
    if (!QFile::exists(timerPath()) && !QFile::exists(servicePath()))
        co_return;
    const QStringList disableNow{QStringLiteral("--user"), QStringLiteral("disable"),
                                 QStringLiteral("--now"), timerUnit()};
    const Outcome stopped = co_await systemctl(disableNow);
    if (!stopped.ok()) {
        // Without a manager there is nothing running to stop, and `disable` alone still takes the
        // timer out of timers.target, which works on the files.
        const QStringList disable{QStringLiteral("--user"), QStringLiteral("disable"), timerUnit()};
        co_await systemctl(disable);
    }
    for (const QString &path : {timerPath(), servicePath()}) {
        if (QFile::exists(path) && !QFile::remove(path))
            qWarning().noquote() << "orvel: cannot delete" << path;
    }
    co_await systemctl(reload());
}

QCoro::Task<SystemdTimer::Outcome> SystemdTimer::systemctl(QStringList arguments)
{
    Outcome outcome;
    // A program that is not there is told at once: awaiting its start would wait out the whole
    // timeout, as QCoro 0.8 misses the failure to start.
    const QString program = QStandardPaths::findExecutable(m_setup.systemctl);
    if (program.isEmpty())
        co_return outcome;
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    const bool started =
        co_await qCoro(process).start(program, arguments, QIODevice::ReadOnly, m_setup.timeout);
    if (!started)
        co_return outcome;
    const bool finished = co_await qCoro(process).waitForFinished(m_setup.timeout);
    if (!finished) {
        qWarning().noquote() << "orvel:" << m_setup.systemctl << arguments.join(QLatin1Char(' '))
                             << "did not finish in time";
        process.kill();
        process.waitForFinished(1000);
        co_return outcome;
    }
    outcome.finished = process.exitStatus() == QProcess::NormalExit;
    outcome.exitCode = process.exitCode();
    outcome.output = process.readAllStandardOutput();
    outcome.errors = process.readAllStandardError();
    co_return outcome;
}

QCoro::Task<bool> SystemdTimer::mustSucceed(QStringList arguments)
{
    const Outcome outcome = co_await systemctl(arguments);
    if (!outcome.ok())
        qWarning().noquote() << "orvel:" << m_setup.systemctl << arguments.join(QLatin1Char(' '))
                             << "failed:" << QString::fromUtf8(outcome.errors).trimmed();
    co_return outcome.ok();
}

} // namespace orvel
