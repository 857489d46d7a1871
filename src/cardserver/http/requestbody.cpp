#include "http/requestbody.h"

#include "http/apierror.h"

#include <cmath>
#include <QJsonDocument>
#include <QJsonParseError>

namespace cardserver {

namespace {

QString quoted(const QString &key)
{
    return QStringLiteral("“%1”").arg(key);
}

bool isIntegral(const QJsonValue &v)
{
    if (!v.isDouble())
        return false;
    const double d = v.toDouble();
    return std::isfinite(d) && std::floor(d) == d && std::fabs(d) < 9.0e15;
}

} // namespace

RequestBody RequestBody::parse(const std::string &bytes)
{
    if (bytes.find_first_not_of(" \t\r\n") == std::string::npos)
        return RequestBody(QJsonObject());
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())), &error);
    if (error.error != QJsonParseError::NoError)
        throw ApiError::badRequest(
            QStringLiteral("The request body is not valid JSON (%1).").arg(error.errorString()));
    if (!doc.isObject())
        throw ApiError::badRequest(QStringLiteral("The request body must be a JSON object."));
    return RequestBody(doc.object());
}

bool RequestBody::has(const QString &key) const
{
    return m_object.contains(key);
}

bool RequestBody::isNull(const QString &key) const
{
    return m_object.value(key).isNull();
}

QString RequestBody::string(const QString &key) const
{
    return stringIn(m_object, key, QString());
}

std::optional<QString> RequestBody::optionalString(const QString &key) const
{
    const QJsonValue v = m_object.value(key);
    if (v.isUndefined() || v.isNull())
        return std::nullopt;
    if (!v.isString())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" must be text."));
    return v.toString();
}

bool RequestBody::boolean(const QString &key) const
{
    const auto v = optionalBoolean(key);
    if (!v)
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" is missing."));
    return *v;
}

std::optional<bool> RequestBody::optionalBoolean(const QString &key) const
{
    const QJsonValue v = m_object.value(key);
    if (v.isUndefined() || v.isNull())
        return std::nullopt;
    if (!v.isBool())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" must be true or false."));
    return v.toBool();
}

qint64 RequestBody::integer(const QString &key) const
{
    const auto v = optionalInteger(key);
    if (!v)
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" is missing."));
    return *v;
}

std::optional<qint64> RequestBody::optionalInteger(const QString &key) const
{
    return integerIn(m_object, key, QString());
}

double RequestBody::number(const QString &key) const
{
    const QJsonValue v = m_object.value(key);
    if (v.isUndefined())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" is missing."));
    if (!v.isDouble())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" must be a number."));
    return v.toDouble();
}

QJsonArray RequestBody::array(const QString &key) const
{
    const QJsonValue v = m_object.value(key);
    if (v.isUndefined())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" is missing."));
    if (!v.isArray())
        throw ApiError::badRequest(quoted(key) + QStringLiteral(" must be a list."));
    return v.toArray();
}

QJsonObject RequestBody::objectAt(const QString &key) const
{
    return asObject(m_object.value(key), key);
}

QJsonObject RequestBody::asObject(const QJsonValue &value, const QString &what)
{
    if (value.isUndefined())
        throw ApiError::badRequest(quoted(what) + QStringLiteral(" is missing."));
    if (!value.isObject())
        throw ApiError::badRequest(quoted(what) + QStringLiteral(" must be an object."));
    return value.toObject();
}

QString RequestBody::stringIn(const QJsonObject &o, const QString &key, const QString &what,
                              bool required)
{
    const QString name = what.isEmpty() ? key : what + "." + key;
    const QJsonValue v = o.value(key);
    if (v.isUndefined() || v.isNull()) {
        if (required)
            throw ApiError::badRequest(quoted(name) + QStringLiteral(" is missing."));
        return QString();
    }
    if (!v.isString())
        throw ApiError::badRequest(quoted(name) + QStringLiteral(" must be text."));
    return v.toString();
}

std::optional<qint64> RequestBody::integerIn(const QJsonObject &o, const QString &key,
                                             const QString &what)
{
    const QString name = what.isEmpty() ? key : what + "." + key;
    const QJsonValue v = o.value(key);
    if (v.isUndefined() || v.isNull())
        return std::nullopt;
    if (!isIntegral(v))
        throw ApiError::badRequest(quoted(name) + QStringLiteral(" must be a whole number."));
    return static_cast<qint64>(v.toDouble());
}

} // namespace cardserver
