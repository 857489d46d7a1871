#pragma once
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "http/requestbody.h"

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QStringList>

namespace cardserver {

// One request being answered: who is signed in (0 when the route is public) and helpers to
// read the path, the query, the headers and the body and to reply. Routes reach the request
// and the reply only through this class, so the HTTP library stays inside http/.
class Call {
public:
    Call(const HttpRequest &req, HttpResponse &res) : req(req), res(res) {}

    qint64 userId = 0;

    // The n-th captured group of the path pattern (1-based) as an id; ids that cannot be
    // one of ours answer 404.
    qint64 id(int group) const;
    // The n-th captured group as text (empty when there is none).
    QString capture(int group) const;
    QString query(const char *name) const;
    bool hasQuery(const char *name) const;
    // The body read as a JSON object. A body sent as anything but application/json is refused
    // with 415 (a browser form cannot post JSON to another site without asking first).
    RequestBody body() const;
    // The body exactly as it came.
    QByteArray bodyBytes() const;
    // The first value of a header, or empty.
    QString header(const char *name) const;
    // Every value of a header that may come more than once (Cookie).
    QStringList headers(const char *name) const;
    QString method() const;
    QString path() const;
    // The address the connection came from (the peer, not what a proxy claims).
    QString peerAddress() const;

    void setHeader(const char *name, const std::string &value);
    void reply(const QJsonValue &value, int status = 200);
    // A reply already written as JSON text.
    void replyText(std::string json, int status = 200);
    // Any other body, with its media type.
    void send(const QByteArray &bytes, const std::string &mediaType, int status = 200);
    void redirect(const QString &location, int status = 302);
    void noContent();
    // An HTML page; it may not be shown inside another site's frame.
    void html(const QString &page, int status = 200);

    static void sendJson(HttpResponse &res, const QJsonValue &value, int status);
    static void sendError(HttpResponse &res, int status, const QString &message);
    static std::string jsonBytes(const QJsonValue &value);

private:
    friend class EventStream;
    const HttpRequest &req;
    HttpResponse &res;
};

} // namespace cardserver
