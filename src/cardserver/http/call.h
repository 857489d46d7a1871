#pragma once
#include "http/requestbody.h"

#include <httplib.h>
#include <QJsonValue>
#include <QString>

namespace cardserver {

// One request being answered: the request, the response, who is signed in (0 when the
// route is public) and helpers to read the path, the query and the body and to reply.
class Call {
public:
    Call(const httplib::Request &req, httplib::Response &res) : req(req), res(res) {}

    const httplib::Request &req;
    httplib::Response &res;
    qint64 userId = 0;

    // The n-th captured group of the path pattern (1-based) as an id; ids that cannot be
    // one of ours answer 404.
    qint64 id(int group) const;
    QString query(const char *name) const;
    bool hasQuery(const char *name) const;
    RequestBody body() const { return RequestBody::parse(req.body); }
    QString header(const char *name) const;

    void reply(const QJsonValue &value, int status = 200);
    // A reply already written as JSON text.
    void replyText(std::string json, int status = 200);
    void noContent();
    void html(const QString &page, int status = 200);

    static void sendJson(httplib::Response &res, const QJsonValue &value, int status);
    static void sendError(httplib::Response &res, int status, const QString &message);
    static std::string jsonBytes(const QJsonValue &value);
};

} // namespace cardserver
