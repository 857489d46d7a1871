#include "requestbody.h"

#include <QJsonDocument>

namespace orvel {

QJsonObject RequestBody::toObject(json::KeyStyle style) const
{
    QJsonObject object;
    for (const Field &field : m_fields) {
        const QString key =
            style == json::KeyStyle::Snake ? json::snakeCase(field.name) : field.name;
        object.insert(key, field.value(style));
    }
    return object;
}

QByteArray RequestBody::encode(json::KeyStyle style) const
{
    return QJsonDocument(toObject(style)).toJson(QJsonDocument::Compact);
}

} // namespace orvel
