#pragma once
#include <QString>
#include <QStringList>

namespace cardserver {

class Call;

// The address a request came from, for limits keyed by client. That is the connection's peer,
// unless the peer is a trusted reverse proxy (loopback always; others named with
// --trusted-proxy): then it is the hop the proxy itself appended to X-Forwarded-For, the last
// entry, since every entry before it is whatever the client chose to send.
class ClientAddress {
public:
    explicit ClientAddress(const QStringList &trustedProxies = {});

    QString of(const Call &call) const;
    // The canonical text of a numeric IPv4 or IPv6 address (IPv4-mapped IPv6 as IPv4), or
    // empty when `text` is not one.
    static QString normalised(const QString &text);

private:
    bool trusted(const QString &peer) const;

    QStringList m_trusted; // normalised
};

} // namespace cardserver
