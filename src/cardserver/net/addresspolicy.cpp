#include "net/addresspolicy.h"

#include "app/serveroptions.h"

#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>

namespace cardserver {

namespace {

// What kind of non-public IPv4 address `a` (host byte order) is; null for a public one.
const char *ipv4Kind(quint32 a)
{
    if ((a >> 24) == 127)
        return "loopback";
    if ((a >> 24) == 10 || (a >> 20) == (172u << 4 | 1) || (a >> 16) == (192u << 8 | 168))
        return "private";
    if ((a >> 16) == (169u << 8 | 254))
        return "link-local";
    if ((a >> 28) == 0xe)
        return "multicast";
    if ((a >> 24) == 0)
        return "unspecified";
    if (a == 0xffffffffu)
        return "broadcast";
    return nullptr;
}

const char *ipv6Kind(const unsigned char *b)
{
    static const unsigned char zero[16] = {};
    static const unsigned char mapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    if (std::memcmp(b, mapped, 12) == 0)
        return ipv4Kind(quint32(b[12]) << 24 | quint32(b[13]) << 16 | quint32(b[14]) << 8 | b[15]);
    if (std::memcmp(b, zero, 15) == 0)
        return b[15] == 1 ? "loopback" : b[15] == 0 ? "unspecified" : "IPv4-compatible";
    if (b[0] == 0xfe && (b[1] & 0xc0) == 0x80)
        return "link-local";
    if ((b[0] & 0xfe) == 0xfc)
        return "unique-local";
    if (b[0] == 0xff)
        return "multicast";
    return nullptr;
}

} // namespace

AddressPolicy AddressPolicy::fromOptions(const ServerOptions &options)
{
    AddressPolicy policy;
    policy.allowPrivate(options.allowPrivateFetch);
    for (const QString &host : options.testPublicHosts)
        policy.addPublicHost(host);
    return policy;
}

bool AddressPolicy::addPublicHost(const QString &hostPort)
{
    const int colon = hostPort.lastIndexOf(':');
    bool ok = false;
    const int port = hostPort.mid(colon + 1).toInt(&ok);
    if (colon <= 0 || !ok || port <= 0 || port > 65535)
        return false;
    QString host = hostPort.left(colon);
    if (host.startsWith('[') && host.endsWith(']'))
        host = host.mid(1, host.size() - 2);
    sockaddr_storage storage{};
    const QByteArray text = host.toLatin1();
    if (auto *v4 = reinterpret_cast<sockaddr_in *>(&storage);
        inet_pton(AF_INET, text.constData(), &v4->sin_addr) == 1) {
        v4->sin_family = AF_INET;
        v4->sin_port = htons(quint16(port));
    } else if (auto *v6 = reinterpret_cast<sockaddr_in6 *>(&storage);
               inet_pton(AF_INET6, text.constData(), &v6->sin6_addr) == 1) {
        v6->sin6_family = AF_INET6;
        v6->sin6_port = htons(quint16(port));
    } else {
        return false;
    }
    m_publicHosts.append(describe(reinterpret_cast<const sockaddr *>(&storage)));
    return true;
}

bool AddressPolicy::allows(const sockaddr *address, QString *why) const
{
    const char *kind = nullptr;
    if (address->sa_family == AF_INET) {
        const auto *v4 = reinterpret_cast<const sockaddr_in *>(address);
        kind = ipv4Kind(ntohl(v4->sin_addr.s_addr));
    } else if (address->sa_family == AF_INET6) {
        kind = ipv6Kind(reinterpret_cast<const sockaddr_in6 *>(address)->sin6_addr.s6_addr);
    } else {
        kind = "non-internet";
    }
    if (!kind || m_allowPrivate || m_publicHosts.contains(describe(address)))
        return true;
    if (why)
        *why = QStringLiteral("%1 is a %2 address").arg(describe(address), QLatin1String(kind));
    return false;
}

QString AddressPolicy::describe(const sockaddr *address)
{
    char text[INET6_ADDRSTRLEN] = {};
    if (address->sa_family == AF_INET) {
        const auto *v4 = reinterpret_cast<const sockaddr_in *>(address);
        inet_ntop(AF_INET, &v4->sin_addr, text, sizeof text);
        return QStringLiteral("%1:%2").arg(QLatin1String(text)).arg(ntohs(v4->sin_port));
    }
    if (address->sa_family == AF_INET6) {
        const auto *v6 = reinterpret_cast<const sockaddr_in6 *>(address);
        inet_ntop(AF_INET6, &v6->sin6_addr, text, sizeof text);
        return QStringLiteral("[%1]:%2").arg(QLatin1String(text)).arg(ntohs(v6->sin6_port));
    }
    return QStringLiteral("(family %1)").arg(address->sa_family);
}

} // namespace cardserver
