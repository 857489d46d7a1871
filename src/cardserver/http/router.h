#pragma once
#include "http/call.h"

#include <functional>
#include <string>

namespace cardserver {

class HttpServer;

// Registers routes on the HTTP server (the routes keep what they need, so the Router
// itself may go once they are installed) with the concerns every route shares: signing in
// (a route for signed-in learners answers 401 without a valid session), refusing requests
// that change something when a browser sends them from another site (403), and turning
// failures into JSON error replies (ApiError and WriterError keep their status; anything
// else is logged and answered 500) so that no request can take the server down.
class Router {
public:
    enum class Access { Public, SignedIn };
    using Handler = std::function<void(Call &)>;
    // Returns the signed-in account's id for the call, or 0.
    using Authenticator = std::function<qint64(Call &)>;

    Router(HttpServer &server, Authenticator authenticate);

    void get(const std::string &pattern, Access access, Handler handler);
    void post(const std::string &pattern, Access access, Handler handler);
    void patch(const std::string &pattern, Access access, Handler handler);
    void del(const std::string &pattern, Access access, Handler handler);

    HttpServer &server() const { return m_server; }

    // True when a browser sent the request from a page of another site: an Origin that is
    // neither this server's public address nor the Host the request was sent to, or
    // Sec-Fetch-Site: cross-site. Clients that are not browsers send neither.
    static bool crossOrigin(const HttpRequest &req, const std::string &ownOrigin);

private:
    std::function<void(HttpRequest &, HttpResponse &)> wrap(Access access, Handler handler);

    HttpServer &m_server;
    Authenticator m_authenticate;
};

} // namespace cardserver
