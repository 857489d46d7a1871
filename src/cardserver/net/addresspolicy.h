#pragma once
#include <optional>
#include <QList>
#include <QString>

struct sockaddr;

namespace cardserver {

struct ServerOptions;

// Which addresses the server may open outgoing connections to. Loopback, link-local, private,
// unique-local, multicast and unspecified addresses (and their IPv4-mapped IPv6 forms) are
// refused, so a learner's picture address cannot reach the machine itself or its network,
// unless the server was started with --allow-private-fetch. Tests name single loopback
// "host:port" pairs that count as public (--test-public-host), so they can serve pictures and
// redirects from 127.0.0.1 while every other address is still checked.
class AddressPolicy {
public:
    AddressPolicy() = default;
    static AddressPolicy fromOptions(const ServerOptions &options);

    void allowPrivate(bool allow) { m_allowPrivate = allow; }
    // `hostPort` is "127.0.0.1:8080" or "[::1]:8080"; false when it is not of that form.
    bool addPublicHost(const QString &hostPort);

    // Whether a connection to `address` may be opened; when not, `why` says what it is.
    bool allows(const sockaddr *address, QString *why = nullptr) const;

    // The numeric address and port of `address`, as "1.2.3.4:80" or "[::1]:80".
    static QString describe(const sockaddr *address);

private:
    bool m_allowPrivate = false;
    QList<QString> m_publicHosts; // normalised by describe()
};

} // namespace cardserver
