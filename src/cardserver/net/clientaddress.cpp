#include "net/clientaddress.h"

#include "http/call.h"

#include <arpa/inet.h>
#include <cstring>

namespace cardserver {

ClientAddress::ClientAddress(const QStringList &trustedProxies)
{
    for (const QString &proxy : trustedProxies)
        if (const QString n = normalised(proxy); !n.isEmpty())
            m_trusted.append(n);
}

QString ClientAddress::normalised(const QString &text)
{
    QByteArray raw = text.trimmed().toLatin1();
    if (raw.startsWith('[') && raw.endsWith(']'))
        raw = raw.mid(1, raw.size() - 2);
    char out[INET6_ADDRSTRLEN] = {};
    in_addr v4{};
    if (inet_pton(AF_INET, raw.constData(), &v4) == 1 && inet_ntop(AF_INET, &v4, out, sizeof out))
        return QString::fromLatin1(out);
    in6_addr v6{};
    if (inet_pton(AF_INET6, raw.constData(), &v6) != 1)
        return QString();
    if (IN6_IS_ADDR_V4MAPPED(&v6)) {
        std::memcpy(&v4, v6.s6_addr + 12, sizeof v4);
        return inet_ntop(AF_INET, &v4, out, sizeof out) ? QString::fromLatin1(out) : QString();
    }
    return inet_ntop(AF_INET6, &v6, out, sizeof out) ? QString::fromLatin1(out) : QString();
}

bool ClientAddress::trusted(const QString &peer) const
{
    if (peer.startsWith(QLatin1String("127.")) || peer == QLatin1String("::1"))
        return true;
    return m_trusted.contains(peer);
}

QString ClientAddress::of(const Call &call) const
{
    QString client = normalised(call.peerAddress());
    if (client.isEmpty())
        return call.peerAddress();
    // Walk back along the hops for as long as each was passed on by a trusted proxy.
    const QStringList hops = call.headers("X-Forwarded-For").join(u',').split(u',');
    for (auto hop = hops.crbegin(); hop != hops.crend() && trusted(client); ++hop) {
        if (hop->trimmed().isEmpty())
            continue;
        const QString earlier = normalised(*hop);
        if (earlier.isEmpty())
            break; // not an address: the proxy's peer is the best there is
        client = earlier;
    }
    return client;
}

} // namespace cardserver
