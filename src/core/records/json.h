#pragma once

// The client's JSON helpers: records and events from reply bytes, and request bodies from
// records. Everything is decoded with snake_case keys ("display_name" fills `displayName`).

#include "records/codec.h"
#include "records/decodeerror.h"
#include "records/field.h"
#include "records/jsonreader.h"
#include "records/keystyle.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>

namespace orvel::json {

namespace detail {
// Parses an object, an array or a single scalar; bad JSON throws DecodeError.
QJsonValue parse(const QByteArray &bytes);
// Compact UTF-8 JSON of any value, scalars included.
QByteArray serialise(const QJsonValue &value);
} // namespace detail

template <class T> T fromValue(const QJsonValue &value)
{
    return Codec<T>::read(value);
}

// Reads the text in one pass with a JsonReader, without building a QJsonDocument. Types that
// decode themselves from a QJsonObject (the stream events) go through Qt's parser instead.
template <class T> T decode(const QByteArray &bytes)
{
    if constexpr (SelfDecoding<T> && !Record<T>) {
        return Codec<T>::read(detail::parse(bytes));
    } else {
        JsonReader reader(bytes);
        T value = Codec<T>::read(reader);
        reader.finish();
        return value;
    }
}

template <class T> QJsonValue toValue(const T &value, KeyStyle style = KeyStyle::Snake)
{
    return Codec<T>::write(value, style);
}

template <class T> QByteArray encode(const T &value, KeyStyle style = KeyStyle::Snake)
{
    return detail::serialise(Codec<T>::write(value, style));
}

// Reading single keys of an object whose keys depend on its content (the stream events).
// `key` is the wire key as sent.

// A required key: missing, null or of the wrong type throws DecodeError.
template <class T> T get(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    try {
        if (detail::isAbsent(value))
            throw DecodeError(value.isNull() ? "null where a value is required" : "missing");
        return Codec<T>::read(value);
    } catch (const DecodeError &error) {
        throw error.within(std::string(key.data(), std::size_t(key.size())));
    }
}

// An optional key: missing or null gives nullopt; a value of the wrong type still throws.
template <class T> std::optional<T> find(const QJsonObject &object, QLatin1StringView key)
{
    try {
        return Codec<std::optional<T>>::read(object.value(key));
    } catch (const DecodeError &error) {
        throw error.within(std::string(key.data(), std::size_t(key.size())));
    }
}

// A key with a default for missing or null.
template <class T> T getOr(const QJsonObject &object, QLatin1StringView key, T fallback)
{
    std::optional<T> value = find<T>(object, key);
    return value ? std::move(*value) : std::move(fallback);
}

} // namespace orvel::json
