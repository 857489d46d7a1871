#include "instancechannel.h"

#include <QDataStream>
#include <QDebug>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

namespace orvel {

namespace {
// One message: the arguments as a QDataStream QStringList, preceded by its byte length. The
// running instance answers with one byte once it has taken them.
constexpr char acknowledgement = 'k';
constexpr quint32 largestMessage = 1 << 20;
} // namespace

InstanceChannel::InstanceChannel(QString name, QObject *parent)
    : QObject(parent), m_name(std::move(name))
{}

InstanceChannel::~InstanceChannel() = default;

QString InstanceChannel::defaultName()
{
    // ORVEL_INSTANCE names a separate instance (tests, or a second profile beside the usual one).
    const QString separate = qEnvironmentVariable("ORVEL_INSTANCE");
    if (!separate.isEmpty())
        return separate;
    // In the user's own runtime folder when there is one (only the user can reach it); the
    // socket file itself is owner-only either way.
    const QString name = QStringLiteral("orvel-") + QString::number(::getuid());
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir())
        return runtime + QLatin1Char('/') + name;
    return name;
}

bool InstanceChannel::listen()
{
    if (m_server)
        return true;
    // QLocalServer replaces a socket file that exists, live or not, so ask first whether an
    // instance answers there.
    {
        QLocalSocket probe;
        probe.connectToServer(m_name);
        if (probe.waitForConnected(300)) {
            probe.disconnectFromServer();
            return false;
        }
    }
    QLocalServer::removeServer(m_name); // a socket file left behind by a crash
    auto *server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(m_name)) {
        qWarning().noquote() << "orvel: cannot listen on" << m_name << server->errorString();
        delete server;
        return false;
    }
    m_server = server;
    connect(m_server, &QLocalServer::newConnection, this, &InstanceChannel::accept);
    return true;
}

bool InstanceChannel::isListening() const
{
    return m_server && m_server->isListening();
}

bool InstanceChannel::sendToRunning(const QStringList &arguments, int timeoutMs) const
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    QByteArray payload;
    {
        QDataStream out(&payload, QIODevice::WriteOnly);
        out << arguments;
    }
    QByteArray message;
    {
        QDataStream out(&message, QIODevice::WriteOnly);
        out << quint32(payload.size());
    }
    message += payload;
    socket.write(message);
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    while (socket.bytesAvailable() < 1)
        if (!socket.waitForReadyRead(timeoutMs))
            return false;
    char answer = 0;
    return socket.getChar(&answer) && answer == acknowledgement;
}

void InstanceChannel::accept()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        if (socket->bytesAvailable() > 0)
            readFrom(socket);
    }
}

void InstanceChannel::readFrom(QLocalSocket *socket)
{
    if (socket->bytesAvailable() < qint64(sizeof(quint32)))
        return;
    quint32 size = 0;
    {
        const QByteArray head = socket->peek(sizeof(quint32));
        QDataStream in(head);
        in >> size;
    }
    if (size > largestMessage) {
        qWarning() << "orvel: ignored an oversized message from another process";
        socket->abort();
        return;
    }
    if (socket->bytesAvailable() < qint64(sizeof(quint32) + size))
        return;
    socket->read(sizeof(quint32));
    QStringList arguments;
    {
        QDataStream in(socket->read(size));
        in >> arguments;
        if (in.status() != QDataStream::Ok) {
            qWarning() << "orvel: ignored an unreadable message from another process";
            socket->abort();
            return;
        }
    }
    socket->putChar(acknowledgement);
    socket->flush();
    emit received(arguments);
}

} // namespace orvel
