#include "nginxprocess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

namespace {

QString packagingDir()
{
#ifdef ORVEL_NGINX_CONF_DIR
    return QStringLiteral(ORVEL_NGINX_CONF_DIR);
#else
    return QString();
#endif
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

int freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost, 0) ? probe.serverPort() : 0;
}

} // namespace

NginxProcess::NginxProcess(const QList<QUrl> &backends) : m_backends(backends) {}

NginxProcess::~NginxProcess()
{
    stop();
}

QString NginxProcess::executable()
{
    QString found = QStandardPaths::findExecutable(QStringLiteral("nginx"));
    if (found.isEmpty())
        found = QStandardPaths::findExecutable(QStringLiteral("nginx"),
                                               {"/usr/sbin", "/usr/local/sbin", "/sbin"});
    return found;
}

bool NginxProcess::writeConfiguration(int port)
{
    const QString shipped = packagingDir();
    QByteArray upstream = readFile(shipped + "/orvel-upstream.conf");
    if (upstream.isEmpty() || !QFile::exists(shipped + "/orvel-proxy.conf")) {
        m_error = QStringLiteral("no nginx configuration in ") + shipped;
        return false;
    }
    // The shipped upstream block with its example server lines replaced by one line per
    // backend, each with the parameters the first example line has.
    static const QRegularExpression serverLine(
        QStringLiteral(R"(^([ \t]*)server[ \t]+\S+([^;\n]*);\n)"),
        QRegularExpression::MultilineOption);
    const QString text = QString::fromUtf8(upstream);
    QRegularExpressionMatchIterator lines = serverLine.globalMatch(text);
    if (!lines.hasNext()) {
        m_error = QStringLiteral("orvel-upstream.conf has no server line");
        return false;
    }
    QString servers;
    qsizetype firstAt = -1;
    QString rest = text;
    qsizetype removed = 0;
    while (lines.hasNext()) {
        const QRegularExpressionMatch m = lines.next();
        if (firstAt < 0) {
            firstAt = m.capturedStart();
            for (const QUrl &b : m_backends)
                servers += QStringLiteral("%1server %2:%3%4;\n")
                               .arg(m.captured(1), b.host())
                               .arg(b.port())
                               .arg(m.captured(2));
        }
        rest.remove(m.capturedStart() - removed, m.capturedLength());
        removed += m.capturedLength();
    }
    rest.insert(firstAt, servers);

    const QString dir = m_dir.path();
    for (const char *sub : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        QDir(dir).mkpath(QString::fromLatin1(sub));
    const QString conf = QStringLiteral("daemon off;\n"
                                        "master_process off;\n"
                                        "pid %1/nginx.pid;\n"
                                        "error_log %1/error.log info;\n"
                                        "events { worker_connections 512; }\n"
                                        "http {\n"
                                        "    access_log off;\n"
                                        "    client_body_temp_path %1/client_body;\n"
                                        "    proxy_temp_path %1/proxy;\n"
                                        "    fastcgi_temp_path %1/fastcgi;\n"
                                        "    uwsgi_temp_path %1/uwsgi;\n"
                                        "    scgi_temp_path %1/scgi;\n"
                                        "    include %1/orvel-upstream.conf;\n"
                                        "    server {\n"
                                        "        listen 127.0.0.1:%2;\n"
                                        "        include %3/orvel-proxy.conf;\n"
                                        "    }\n"
                                        "}\n")
                             .arg(dir)
                             .arg(port)
                             .arg(shipped);
    if (!writeFile(dir + "/orvel-upstream.conf", rest.toUtf8()) ||
        !writeFile(dir + "/nginx.conf", conf.toUtf8())) {
        m_error = QStringLiteral("cannot write the nginx configuration in ") + dir;
        return false;
    }
    return true;
}

bool NginxProcess::start(int timeoutMs)
{
    if (executable().isEmpty()) {
        m_error = QStringLiteral("nginx is not installed");
        return false;
    }
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("no temporary folder for nginx");
        return false;
    }
    // The port is free when chosen but may be taken before nginx binds it: then nginx exits
    // at once, and another port is tried.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int port = freePort();
        if (port == 0 || !writeConfiguration(port))
            return false;
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(executable(), {"-p", m_dir.path(), "-e", m_dir.path() + "/error.log", "-c",
                                       m_dir.path() + "/nginx.conf"});
        if (!m_process.waitForStarted(timeoutMs)) {
            m_error = m_process.errorString();
            return false;
        }
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < timeoutMs && m_process.state() == QProcess::Running) {
            QTcpSocket probe;
            probe.connectToHost(QHostAddress::LocalHost, quint16(port));
            if (probe.waitForConnected(200)) {
                m_baseUrl = QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port));
                return true;
            }
            QThread::msleep(20);
        }
        if (m_process.state() == QProcess::Running) {
            stop();
            break;
        }
        if (!log().contains("Address already in use"))
            break;
    }
    m_error =
        QStringLiteral("nginx did not start: ") + QString::fromUtf8(m_process.readAll() + log());
    return false;
}

void NginxProcess::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate(); // SIGTERM: nginx stops at once
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
}

QByteArray NginxProcess::log() const
{
    return readFile(m_dir.path() + "/error.log");
}
