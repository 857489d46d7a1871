#pragma once
#include <QString>
#include <string>

namespace cardserver {

class Call;

// The session cookie "orvel_session": HttpOnly, SameSite=Lax, Path=/, 30 days, Secure when
// the request came over https (a reverse proxy says so with X-Forwarded-Proto).
class SessionCookie {
public:
    static constexpr const char *Name = "orvel_session";

    static QString read(const Call &call);
    static std::string set(const QString &token, const Call &call);
    static std::string cleared(const Call &call);
    static bool overHttps(const Call &call);
};

} // namespace cardserver
