#include "http/router.h"

#include "http/apierror.h"
#include "writers/writer.h"

#include <QDebug>

namespace cardserver {

Router::Router(httplib::Server &server, Authenticator authenticate)
    : m_server(server), m_authenticate(std::move(authenticate))
{}

void Router::get(const std::string &pattern, Access access, Handler handler)
{
    m_server.Get(pattern, wrap(access, std::move(handler)));
}

void Router::post(const std::string &pattern, Access access, Handler handler)
{
    m_server.Post(pattern, wrap(access, std::move(handler)));
}

void Router::patch(const std::string &pattern, Access access, Handler handler)
{
    m_server.Patch(pattern, wrap(access, std::move(handler)));
}

void Router::del(const std::string &pattern, Access access, Handler handler)
{
    m_server.Delete(pattern, wrap(access, std::move(handler)));
}

httplib::Server::Handler Router::wrap(Access access, Handler handler)
{
    return [authenticate = m_authenticate, access,
            handler = std::move(handler)](const httplib::Request &req, httplib::Response &res) {
        Call call(req, res);
        try {
            call.userId = authenticate(call);
            if (access == Access::SignedIn && call.userId == 0)
                throw ApiError(401, QStringLiteral("You are signed out."));
            handler(call);
        } catch (const ApiError &e) {
            Call::sendError(res, e.status(), e.message());
        } catch (const WriterError &e) {
            Call::sendError(res, e.status(), e.message());
        } catch (const std::exception &e) {
            qWarning().noquote() << req.method.c_str() << req.path.c_str() << "failed:" << e.what();
            Call::sendError(
                res, 500, QStringLiteral("The server ran into a problem. Try again in a moment."));
        }
    };
}

} // namespace cardserver
