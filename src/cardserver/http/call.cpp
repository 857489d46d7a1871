#include "http/call.h"

#include "http/apierror.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace cardserver {

qint64 Call::id(int group) const
{
    if (group >= static_cast<int>(req.matches.size()))
        throw ApiError::notFound(QStringLiteral("Not found."));
    bool ok = false;
    const qint64 value = QString::fromStdString(req.matches[group].str()).toLongLong(&ok);
    if (!ok || value <= 0)
        throw ApiError::notFound(QStringLiteral("Not found."));
    return value;
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
