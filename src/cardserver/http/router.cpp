#include "http/router.h"

#include "http/apierror.h"
#include "http/httpserver.h"
#include "writers/writer.h"

#include <QDebug>
#include <QString>
#include <strings.h>

namespace cardserver {

namespace {

std::string lowered(std::string s)
{
    for (char &c : s)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return s;
}

std::string withoutTrailingSlash(std::string s)
{
    while (!s.empty() && s.back() == '/')
        s.pop_back();
    return s;
}

bool changesSomething(const std::string &method)
{
    return method != "GET" && method != "HEAD" && method != "OPTIONS";
}

} // namespace

Router::Router(HttpServer &server, Authenticator authenticate)
    : m_server(server), m_authenticate(std::move(authenticate))
{}

void Router::get(const std::string &pattern, Access access, Handler handler)
{
    m_server.route("GET", pattern, wrap(access, std::move(handler)));
}

void Router::post(const std::string &pattern, Access access, Handler handler)
{
    m_server.route("POST", pattern, wrap(access, std::move(handler)));
}

void Router::patch(const std::string &pattern, Access access, Handler handler)
{
    m_server.route("PATCH", pattern, wrap(access, std::move(handler)));
}

void Router::del(const std::string &pattern, Access access, Handler handler)
{
    m_server.route("DELETE", pattern, wrap(access, std::move(handler)));
}

bool Router::crossOrigin(const HttpRequest &req, const std::string &ownOrigin)
{
    if (const std::string *site = req.header("Sec-Fetch-Site"))
        if (strcasecmp(site->c_str(), "cross-site") == 0)
            return true;
    const std::string *originHeader = req.header("Origin");
    if (!originHeader)
        return false;
    const std::string origin = withoutTrailingSlash(lowered(*originHeader));
    if (!ownOrigin.empty() && origin == withoutTrailingSlash(lowered(ownOrigin)))
        return false;
    if (const std::string *host = req.header("Host")) {
        const std::string h = lowered(*host);
        if (origin == "http://" + h || origin == "https://" + h)
            return false;
    }
    return true; // "null" included: a sandboxed page or a file
}

std::function<void(HttpRequest &, HttpResponse &)> Router::wrap(Access access, Handler handler)
{
    return [&server = m_server, authenticate = m_authenticate, access,
            handler = std::move(handler)](HttpRequest &req, HttpResponse &res) {
        Call call(req, res);
        try {
            if (changesSomething(req.method) && crossOrigin(req, server.ownOrigin()))
                throw ApiError(403, QStringLiteral("Requests from other sites are not accepted."));
            call.userId = authenticate(call);
            if (access == Access::SignedIn && call.userId == 0)
                throw ApiError(401, QStringLiteral("You are signed out."));
            handler(call);
        } catch (const ApiError &e) {
            res.streamJob = nullptr;
            Call::sendError(res, e.status(), e.message());
        } catch (const WriterError &e) {
            res.streamJob = nullptr;
            Call::sendError(res, e.status(), e.message());
        } catch (const std::exception &e) {
            qWarning().noquote() << req.method.c_str() << req.path.c_str() << "failed:" << e.what();
            res.streamJob = nullptr;
            Call::sendError(
                res, 500, QStringLiteral("The server ran into a problem. Try again in a moment."));
        }
    };
}

} // namespace cardserver
