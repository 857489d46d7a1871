#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

namespace orvel {

// Keeps the app to one process per user. The first process listens on a local socket that only
// its user may open; a later process (a second launch, the desktop handing over an orvel://
// callback, "orvel --add word") sends its arguments there and exits.
class InstanceChannel : public QObject {
    Q_OBJECT

public:
    // name: the socket's name; by default "orvel-<uid>" in $XDG_RUNTIME_DIR, or $ORVEL_INSTANCE.
    explicit InstanceChannel(QString name = defaultName(), QObject *parent = nullptr);
    ~InstanceChannel() override;

    static QString defaultName();

    // Becomes the running instance. False when another live instance already listens (then send
    // the arguments to it with sendToRunning). A socket left behind by a crashed instance is
    // removed and taken over.
    bool listen();
    bool isListening() const;

    // Hands the arguments to the running instance and waits until it has taken them (at most
    // timeoutMs). False when no instance answered.
    bool sendToRunning(const QStringList &arguments, int timeoutMs = 3000) const;

    QString name() const { return m_name; }

signals:
    // Another process handed over its arguments (without the program name).
    void received(const QStringList &arguments);

private:
    void accept();
    void readFrom(QLocalSocket *socket);

    QString m_name;
    QLocalServer *m_server = nullptr;
};

} // namespace orvel
