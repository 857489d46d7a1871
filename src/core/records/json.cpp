#include "records/json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <cmath>

namespace orvel::json::detail {

std::string describe(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return "null";
    case QJsonValue::Bool:
        return "a boolean";
    case QJsonValue::Double:
        return "a number";
    case QJsonValue::String:
        return "a string";
    case QJsonValue::Array:
        return "an array";
    case QJsonValue::Object:
        return "an object";
    case QJsonValue::Undefined:
        break;
    }
    return "nothing";
}

void mismatch(const char *expected, const QJsonValue &found)
{
    throw DecodeError(std::string("expected ") + expected + ", found " + describe(found));
}

qint64 readInteger(const QJsonValue &value, qint64 min, qint64 max)
{
    if (!value.isDouble())
        mismatch("an integer", value);
    const double number = value.toDouble();
    if (!std::isfinite(number) || std::trunc(number) != number)
        throw DecodeError("expected an integer, found " + QByteArray::number(number).toStdString());
    // Compare as doubles first so that huge values never reach the integer conversion.
    if (number < double(min) ||
        number >= double(max) + 1.0) // max + 1 is exact where max itself is not
        throw DecodeError("integer out of range");
    const qint64 integer = value.toInteger(qint64(number));
    if (integer < min || integer > max)
        throw DecodeError("integer out of range");
    return integer;
}

QJsonObject readObject(const QJsonValue &value)
{
    if (!value.isObject())
        mismatch("an object", value);
    return value.toObject();
}

QJsonValue parse(const QByteArray &bytes)
{
    qsizetype first = 0;
    while (first < bytes.size() && (bytes[first] == ' ' || bytes[first] == '\t' ||
                                    bytes[first] == '\n' || bytes[first] == '\r'))
        ++first;
    const bool container = first < bytes.size() && (bytes[first] == '{' || bytes[first] == '[');

    QJsonParseError error;
    // QJsonDocument holds only objects and arrays; a scalar is read as the one item of an array.
    const QJsonDocument document =
        QJsonDocument::fromJson(container ? bytes : '[' + bytes + ']', &error);
    if (error.error != QJsonParseError::NoError)
        throw DecodeError::notJson(error.errorString().toStdString(),
                                   container ? error.offset : qMax(0, error.offset - 1));
    if (document.isObject())
        return document.object();
    const QJsonArray array = document.array();
    if (container)
        return array;
    if (array.size() != 1)
        throw DecodeError::notJson("more than one value", 0);
    return array.first();
}

QByteArray serialise(const QJsonValue &value)
{
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    if (value.isArray())
        return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
    // Scalars: write a one-item array and take the brackets off.
    const QByteArray wrapped = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return wrapped.sliced(1, wrapped.size() - 2);
}

} // namespace orvel::json::detail
