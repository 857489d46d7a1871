#pragma once
#include <httplib.h>
#include <QString>
#include <string>

namespace cardserver {

// The session cookie "orvel_session": HttpOnly, SameSite=Lax, Path=/, 30 days, Secure when
// the request came over https (a reverse proxy says so with X-Forwarded-Proto).
class SessionCookie {
public:
    static constexpr const char *Name = "orvel_session";

    static QString read(const httplib::Request &req);
    static std::string set(const QString &token, const httplib::Request &req);
    static std::string cleared(const httplib::Request &req);
    static bool overHttps(const httplib::Request &req);
};

} // namespace cardserver
