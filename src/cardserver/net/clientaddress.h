#pragma once
#include <QString>
#include <QStringList>

namespace cardserver {

class Call;

// The address a request came from, for limits keyed by client. That is the connection's peer,
// unless the peer is a trusted reverse proxy (loopback always; others named with
// --trusted-proxy): then it is the entry of X-Forwarded-For that proxy appended, and so on
// back while that entry is itself a trusted proxy. Entries further left are whatever the
// client chose to send, and are never believed.
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
