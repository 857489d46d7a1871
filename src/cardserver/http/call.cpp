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
    if (group >= static_cast<int>(req.matches.size()))
        return QString();
    return QString::fromStdString(req.matches[group].str());
}

QByteArray Call::bodyBytes() const
{
    return QByteArray::fromStdString(req.body);
}

QStringList Call::headers(const char *name) const
{
    QStringList values;
    const size_t count = req.get_header_value_count(name);
    for (size_t i = 0; i < count; ++i)
        values.append(QString::fromStdString(req.get_header_value(name, i)));
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
    return QString::fromStdString(req.remote_addr);
}

void Call::setHeader(const char *name, const std::string &value)
{
    res.set_header(name, value);
}

void Call::send(const QByteArray &bytes, const std::string &mediaType, int status)
{
    res.status = status;
    res.set_content(bytes.toStdString(), mediaType);
}

void Call::redirect(const QString &location, int status)
{
    res.set_redirect(location.toStdString(), status);
}

QString Call::query(const char *name) const
{
    return QString::fromStdString(req.get_param_value(name));
}

bool Call::hasQuery(const char *name) const
{
    return req.has_param(name);
}

QString Call::header(const char *name) const
{
    return QString::fromStdString(req.get_header_value(name));
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

void Call::sendJson(httplib::Response &res, const QJsonValue &value, int status)
{
    res.status = status;
    res.set_content(jsonBytes(value), "application/json; charset=utf-8");
}

void Call::sendError(httplib::Response &res, int status, const QString &message)
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
    res.set_content(std::move(json), "application/json; charset=utf-8");
}

void Call::noContent()
{
    res.status = 204;
}

void Call::html(const QString &page, int status)
{
    res.status = status;
    res.set_content(page.toStdString(), "text/html; charset=utf-8");
}

} // namespace cardserver
