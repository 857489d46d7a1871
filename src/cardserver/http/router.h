#pragma once
#include "http/call.h"

#include <functional>
#include <httplib.h>
#include <string>

namespace cardserver {

// Registers routes on the HTTP server (the routes keep what they need, so the Router
// itself may go once they are installed) with the concerns every route shares: signing in
// (a route for signed-in learners answers 401 without a valid session) and turning
// failures into JSON error replies (ApiError and WriterError keep their status; anything
// else is logged and answered 500) so that no request can take the server down.
class Router {
public:
    enum class Access { Public, SignedIn };
    using Handler = std::function<void(Call &)>;
    // Returns the signed-in account's id for the call, or 0.
    using Authenticator = std::function<qint64(Call &)>;

    Router(httplib::Server &server, Authenticator authenticate);

    void get(const std::string &pattern, Access access, Handler handler);
    void post(const std::string &pattern, Access access, Handler handler);
    void patch(const std::string &pattern, Access access, Handler handler);
    void del(const std::string &pattern, Access access, Handler handler);

private:
    httplib::Server::Handler wrap(Access access, Handler handler);

    httplib::Server &m_server;
    Authenticator m_authenticate;
};

} // namespace cardserver
