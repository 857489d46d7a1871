#include "benchserver.h"

#include "processmemory.h"

#include <QElapsedTimer>
#include <QFile>
#include <stdexcept>
#include <unistd.h>

BenchServer::BenchServer(const QStringList &extra) : m_extra(extra) {}

BenchServer::~BenchServer()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(3000))
            m_process.kill();
        m_process.waitForFinished(3000);
    }
}

qint64 BenchServer::start()
{
    QElapsedTimer clock;
    clock.start();
    m_process.start(QStringLiteral(ORVEL_SERVER_PATH),
                    QStringList{"--listen", "127.0.0.1:0", "--data", m_data.path()} + m_extra);
    QByteArray out;
    while (m_process.waitForReadyRead(10000)) {
        out += m_process.readAllStandardOutput();
        const qsizetype end = out.indexOf('\n');
        if (end < 0)
            continue;
        const qint64 micros = clock.nsecsElapsed() / 1000;
        m_port = out.left(end).mid(out.lastIndexOf(':', end) + 1).toInt();
        return micros;
    }
    throw std::runtime_error("orvel-server did not start: " +
                             m_process.readAllStandardError().toStdString());
}

std::unique_ptr<httplib::Client> BenchServer::client() const
{
    auto c = std::make_unique<httplib::Client>("127.0.0.1", m_port);
    c->set_keep_alive(true);
    c->set_read_timeout(300);
    return c;
}

qint64 BenchServer::cpuMicros() const
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(m_process.processId()));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.readAll();
    // Fields after the command name (which is in parentheses): utime and stime are 14 and 15.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const qint64 ticks = fields.value(11).toLongLong() + fields.value(12).toLongLong();
    return ticks * 1'000'000 / sysconf(_SC_CLK_TCK);
}

std::string BenchServer::join(const std::string &email)
{
    auto c = client();
    const std::string body = "{\"email\":\"" + email + "\",\"password\":\"bench-password\"}";
    c->Post("/api/auth/signup", body, "application/json");
    const auto in = c->Post("/api/auth/login", body, "application/json");
    if (!in || in->status != 200)
        throw std::runtime_error("sign-in failed");
    const std::string set = in->get_header_value("Set-Cookie");
    return set.substr(0, set.find(';'));
}

qint64 BenchServer::peakMemory() const
{
    return peakResidentBytes(m_process.processId());
}
