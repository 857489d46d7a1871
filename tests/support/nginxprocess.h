#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

// Debian's nginx in front of orvel-server processes, proxying with the settings Orvel ships in
// packaging/nginx/: the upstream block of orvel-upstream.conf with its server lines pointed at
// the given backends, and orvel-proxy.conf as the server block's body. It listens on a free
// loopback port and keeps its configuration, pid file, logs and temporary files in a folder of
// its own; it runs as one process in the foreground (no master, no daemon), as the user that
// started it, so it needs no root and switches to no other user when it has it.
class NginxProcess {
public:
    explicit NginxProcess(const QList<QUrl> &backends);
    ~NginxProcess();

    // Writes the configuration, starts nginx and waits until its port accepts connections;
    // false (with the reason in errorText()) if it did not come up in time.
    bool start(int timeoutMs = 15000);
    void stop();

    QUrl baseUrl() const { return m_baseUrl; }
    QString errorText() const { return m_error; }
    // nginx's error log so far.
    QByteArray log() const;

    // The nginx binary, or empty when it is not installed.
    static QString executable();

private:
    bool writeConfiguration(int port);

    QList<QUrl> m_backends;
    QTemporaryDir m_dir;
    QProcess m_process;
    QUrl m_baseUrl;
    QString m_error;
};
