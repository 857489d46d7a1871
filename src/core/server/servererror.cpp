#include "servererror.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace orvel {

ServerError::ServerError(QString message)
    : m_message(std::move(message)), m_what(m_message.toStdString())
{}

APIError::APIError(int status, QString message) : ServerError(std::move(message)), m_status(status)
{}

QString APIError::messageFrom(const QByteArray &body, int status)
{
    // Only a JSON object with a non-empty string "error" counts as the server's own words.
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isObject()) {
        const QJsonValue error = document.object().value(QLatin1String("error"));
        if (error.isString() && !error.toString().isEmpty())
            return error.toString();
    }
    if (status == 401)
        return QStringLiteral("You are signed out.");
    return QStringLiteral("The server answered %1.").arg(status);
}

QString APIError::couldNotRead()
{
    return QStringLiteral(
        "Orvel could not read the server\u2019s reply. If this keeps happening, updating the app "
        "may help.");
}

TransportError::TransportError(int code, QString message)
    : ServerError(std::move(message)), m_code(code)
{}

} // namespace orvel
