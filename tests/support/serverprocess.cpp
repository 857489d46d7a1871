#include "serverprocess.h"

#include <QElapsedTimer>

ServerProcess::ServerProcess(const QStringList &extraArguments) : m_arguments(extraArguments) {}

ServerProcess::~ServerProcess()
{
    stop();
}

QString ServerProcess::executable()
{
#ifdef ORVEL_SERVER_PATH
    return QStringLiteral(ORVEL_SERVER_PATH);
#else
    return QString();
#endif
}

ServerProcess::Outcome ServerProcess::run(const QStringList &arguments)
{
    QProcess p;
    p.start(executable(), arguments);
    if (!p.waitForFinished(10000)) {
        p.kill();
        p.waitForFinished();
        return {-1, {}, {}};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

bool ServerProcess::start(int timeoutMs)
{
    if (executable().isEmpty()) {
        m_error = QStringLiteral("orvel-server was not built");
        return false;
    }
    QStringList arguments{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"),
                          QStringLiteral("--data"), m_data.path()};
    if (TestDatabase::postgresWanted() && !m_arguments.contains(QStringLiteral("--database"))) {
        if (!m_database.create(&m_error))
            return false;
        arguments << QStringLiteral("--database") << m_database.url();
    }
    arguments += m_arguments;
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(executable(), arguments);
    if (!m_process.waitForStarted(timeoutMs)) {
        m_error = m_process.errorString();
        return false;
    }
    QElapsedTimer clock;
    clock.start();
    QByteArray out;
    while (clock.elapsed() < timeoutMs) {
        if (!m_process.waitForReadyRead(100) && m_process.state() != QProcess::Running)
            break;
        out += m_process.readAllStandardOutput();
        const qsizetype at = out.indexOf("listening on ");
        if (at >= 0) {
            const qsizetype end = out.indexOf('\n', at);
            if (end < 0)
                continue;
            m_baseUrl = QUrl(QString::fromUtf8(out.mid(at + 13, end - at - 13).trimmed()));
            return m_baseUrl.isValid();
        }
    }
    m_log += m_process.readAllStandardError();
    m_error = QStringLiteral("orvel-server did not start: ") + QString::fromUtf8(m_log);
    return false;
}

void ServerProcess::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(3000)) {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
}

QByteArray ServerProcess::log()
{
    m_log += m_process.readAllStandardError();
    return m_log;
}
