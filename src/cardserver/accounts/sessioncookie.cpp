#include "accounts/sessioncookie.h"

#include "accounts/accountstore.h"

#include <QStringList>

namespace cardserver {

QString SessionCookie::read(const httplib::Request &req)
{
    const size_t count = req.get_header_value_count("Cookie");
    for (size_t i = 0; i < count; ++i) {
        const QString header = QString::fromStdString(req.get_header_value("Cookie", i));
        for (const QString &part : header.split(';')) {
            const QString pair = part.trimmed();
            const int eq = pair.indexOf('=');
            if (eq > 0 && pair.left(eq) == QLatin1String(Name))
                return pair.mid(eq + 1).trimmed();
        }
    }
    return QString();
}

bool SessionCookie::overHttps(const httplib::Request &req)
{
    return QString::fromStdString(req.get_header_value("X-Forwarded-Proto")).toLower() ==
           QLatin1String("https");
}

std::string SessionCookie::set(const QString &token, const httplib::Request &req)
{
    std::string c =
        std::string(Name) + "=" + token.toStdString() +
        "; Path=/; HttpOnly; SameSite=Lax; Max-Age=" + std::to_string(AccountStore::SessionSeconds);
    if (overHttps(req))
        c += "; Secure";
    return c;
}

std::string SessionCookie::cleared(const httplib::Request &req)
{
    std::string c = std::string(Name) + "=; Path=/; HttpOnly; SameSite=Lax; Max-Age=0";
    if (overHttps(req))
        c += "; Secure";
    return c;
}

} // namespace cardserver
