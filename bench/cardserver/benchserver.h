#pragma once
#include <httplib.h>
#include <memory>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <string>

// An orvel-server on a free loopback port with a fresh data folder, and a signed-in
// learner's cookie, for the benchmarks.
class BenchServer {
public:
    explicit BenchServer(const QStringList &extra = {"--local"});
    ~BenchServer();

    // Starts the server; returns the microseconds from launch to the "listening" line.
    qint64 start();
    int port() const { return m_port; }
    std::unique_ptr<httplib::Client> client() const;

    // Signs up and signs in one learner; returns the Cookie header value.
    std::string join(const std::string &email);

    // CPU time the server process has used so far (user + system), in microseconds: a figure
    // that does not depend on what else the machine is doing.
    qint64 cpuMicros() const;
    // The server process's peak resident memory so far (VmHWM), in bytes.
    qint64 peakMemory() const;

private:
    QStringList m_extra;
    QTemporaryDir m_data;
    QProcess m_process;
    int m_port = 0;
};
