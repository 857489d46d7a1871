#include "http/call.h"

#include "http/apierror.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace cardserver {

qint64 Call::id(int group) const
{
    bool ok = false;
    const qint64 value = capture(group).toLongLong(&ok);
    if (!ok || value <= 0)
        throw ApiError::notFound(QStringLiteral("Not found."));
    return value;
}

QString Call::capture(int group) const
{
    if (group < 0 || group >= static_cast<int>(req.matches.size()))
        return QString();
    return QString::fromStdString(req.matches[size_t(group)]);
}

RequestBody Call::body() const
{
    if (req.body.find_first_not_of(" \t\r\n") != std::string::npos) {
        const std::string *type = req.header("Content-Type");
        QString mediaType = type ? QString::fromStdString(*type) : QString();
        mediaType = mediaType.section(';', 0, 0).trimmed().toLower();
        if (mediaType != QLatin1String("application/json"))
            throw ApiError(415, QStringLiteral("Send the request body as application/json."));
    }
    return RequestBody::parse(req.body);
}

QByteArray Call::bodyBytes() const
{
    return QByteArray::fromStdString(req.body);
}

QStringList Call::headers(const char *name) const
{
    QStringList values;
    const size_t count = req.headerCount(name);
    for (size_t i = 0; i < count; ++i)
        values.append(QString::fromStdString(*req.header(name, i)));
    return values;
}

QString Call::method() const
{
    return QString::fromStdString(req.method);
}

QString Call::path() const
{
    return QString::fromStdString(req.path);
}

QString Call::peerAddress() const
{
    return QString::fromStdString(req.remoteAddr);
}

void Call::setHeader(const char *name, const std::string &value)
{
    res.addHeader(name, value);
}

void Call::send(const QByteArray &bytes, const std::string &mediaType, int status)
{
    res.status = status;
    res.body = bytes.toStdString();
    res.contentType = mediaType;
}

void Call::redirect(const QString &location, int status)
{
    res.setHeader("Location", location.toStdString());
    res.status = (status >= 300 && status < 400) ? status : 302;
}

QString Call::query(const char *name) const
{
    const std::string *value = req.param(name);
    return value ? QString::fromStdString(*value) : QString();
}

bool Call::hasQuery(const char *name) const
{
    return req.param(name) != nullptr;
}

QString Call::header(const char *name) const
{
    const std::string *value = req.header(name);
    return value ? QString::fromStdString(*value) : QString();
}

std::string Call::jsonBytes(const QJsonValue &value)
{
    QJsonDocument doc;
    if (value.isArray())
        doc = QJsonDocument(value.toArray());
    else
        doc = QJsonDocument(value.toObject());
    return doc.toJson(QJsonDocument::Compact).toStdString();
}

void Call::sendJson(HttpResponse &res, const QJsonValue &value, int status)
{
    res.status = status;
    res.body = jsonBytes(value);
    res.contentType = "application/json; charset=utf-8";
}

void Call::sendError(HttpResponse &res, int status, const QString &message)
{
    sendJson(res, QJsonObject{{"error", message}}, status);
}

void Call::reply(const QJsonValue &value, int status)
{
    sendJson(res, value, status);
}

void Call::replyText(std::string json, int status)
{
    res.status = status;
    res.body = std::move(json);
    res.contentType = "application/json; charset=utf-8";
}

void Call::noContent()
{
    res.status = 204;
}

void Call::html(const QString &page, int status)
{
    res.status = status;
    res.body = page.toStdString();
    res.contentType = "text/html; charset=utf-8";
    res.setHeader("Content-Security-Policy", "frame-ancestors 'none'");
    res.setHeader("X-Frame-Options", "DENY");
}

} // namespace cardserver
