#pragma once
#include <QString>
#include <string>

namespace cardserver {

class Call;

// The session cookie "orvel_session": HttpOnly, SameSite=Lax, Path=/, 30 days, Secure when
// learners reach the server over https: its public address (ORVEL_PUBLIC_URL) is https, or a
// reverse proxy says the request came so (X-Forwarded-Proto).
class SessionCookie {
public:
    static constexpr const char *Name = "orvel_session";

    static QString read(const Call &call);
    static std::string set(const QString &token, const Call &call, const QString &publicUrl);
    static std::string cleared(const Call &call, const QString &publicUrl);
    static bool overHttps(const Call &call, const QString &publicUrl);
};

} // namespace cardserver
