#include "accounts/sessioncookie.h"

#include "accounts/accountstore.h"
#include "http/call.h"

#include <QStringList>

namespace cardserver {

QString SessionCookie::read(const Call &call)
{
    for (const QString &header : call.headers("Cookie")) {
        for (const QString &part : header.split(';')) {
            const QString pair = part.trimmed();
            const int eq = pair.indexOf('=');
            if (eq > 0 && pair.left(eq) == QLatin1String(Name))
                return pair.mid(eq + 1).trimmed();
        }
    }
    return QString();
}

bool SessionCookie::overHttps(const Call &call, const QString &publicUrl)
{
    return publicUrl.startsWith(QLatin1String("https://"), Qt::CaseInsensitive) ||
           call.header("X-Forwarded-Proto").toLower() == QLatin1String("https");
}

std::string SessionCookie::set(const QString &token, const Call &call, const QString &publicUrl)
{
    std::string c =
        std::string(Name) + "=" + token.toStdString() +
        "; Path=/; HttpOnly; SameSite=Lax; Max-Age=" + std::to_string(AccountStore::SessionSeconds);
    if (overHttps(call, publicUrl))
        c += "; Secure";
    return c;
}

std::string SessionCookie::cleared(const Call &call, const QString &publicUrl)
{
    std::string c = std::string(Name) + "=; Path=/; HttpOnly; SameSite=Lax; Max-Age=0";
    if (overHttps(call, publicUrl))
        c += "; Secure";
    return c;
}

} // namespace cardserver
