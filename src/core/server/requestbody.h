#pragma once

#include "records/json.h"

#include <functional>
#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

namespace orvel {

// A JSON request body assembled field by field under the records' camelCase names. The key
// style is chosen only when the body is encoded: snake_case for most calls, the names exactly as
// written for the two literal calls. A value that is a record is encoded in the same style.
class RequestBody {
public:
    template <class T> RequestBody &set(const QString &name, const T &value)
    {
        m_fields.append(
            {name, [value](json::KeyStyle style) { return json::toValue(value, style); }});
        return *this;
    }

    // Sets the field only when the value is present: an absent key, not a null.
    template <class T> RequestBody &setIfPresent(const QString &name, const std::optional<T> &value)
    {
        if (value)
            set(name, *value);
        return *this;
    }

    QJsonObject toObject(json::KeyStyle style) const;
    QByteArray encode(json::KeyStyle style) const;

private:
    struct Field {
        QString name;
        std::function<QJsonValue(json::KeyStyle)> value;
    };
    QList<Field> m_fields;
};

} // namespace orvel
