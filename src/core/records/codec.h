#pragma once

#include "records/decodeerror.h"
#include "records/field.h"
#include "records/jsonreader.h"
#include "records/keystyle.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QString>

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace orvel::json {

// A type that reads itself from a JSON object (the stream events, whose keys depend on their
// `type`). The helpers below decode it wherever a record could stand.
template <class T>
concept SelfDecoding = requires(const QJsonObject &object)
{
    {
        T::fromJson(object)
        } -> std::same_as<T>;
};

// Codec<T>::read turns a JSON value into T or throws DecodeError, either from a QJsonValue or
// straight from the text through a JsonReader (the fast path of json::decode); both apply the
// same rules. Codec<T>::write does the reverse. One specialisation per supported type; records
// and lists compose them.
template <class T> struct Codec;

namespace detail {

// "a string", "null", "missing" ... for error messages.
std::string describe(const QJsonValue &value);
[[noreturn]] void mismatch(const char *expected, const QJsonValue &found);
qint64 readInteger(const QJsonValue &value, qint64 min, qint64 max);
QJsonObject readObject(const QJsonValue &value);

inline bool isAbsent(const QJsonValue &value)
{
    return value.isNull() || value.isUndefined();
}

template <class T> struct IsOptional : std::false_type {};
template <class T> struct IsOptional<std::optional<T>> : std::true_type {};

// The wire keys of a record's fields in the given style, computed once per record.
template <Record R> const std::array<QString, fieldCount<R>> &recordKeys(KeyStyle style)
{
    static const auto keys = [] {
        std::array<std::array<QString, fieldCount<R>>, 2> all;
        std::size_t i = 0;
        std::apply(
            [&](const auto &...f) {
                ((all[1][i] = QString::fromLatin1(f.name), all[0][i] = snakeCase(all[1][i]), ++i),
                 ...);
            },
            R::fields);
        return all;
    }();
    return keys[style == KeyStyle::Snake ? 0 : 1];
}

// The snake_case wire keys of a record as UTF-8, for matching keys read from the text.
template <Record R> const std::array<QByteArray, fieldCount<R>> &wireKeys()
{
    static const auto keys = [] {
        std::array<QByteArray, fieldCount<R>> utf8;
        const auto &snake = recordKeys<R>(KeyStyle::Snake);
        for (std::size_t i = 0; i < utf8.size(); ++i)
            utf8[i] = snake[i].toUtf8();
        return utf8;
    }();
    return keys;
}

[[noreturn]] inline void absent(bool null)
{
    throw DecodeError(null ? "null where a value is required" : "missing");
}

template <class R, class M>
void readField(const QJsonObject &object, const QString &key, const Field<R, M> &field, R &record)
{
    const QJsonValue value = object.value(key);
    try {
        if constexpr (IsOptional<M>::value) {
            record.*field.member = Codec<M>::read(value);
        } else if (isAbsent(value)) {
            if (field.presence == Presence::Defaulted || isLenient<R>())
                return;
            absent(value.isNull());
        } else {
            record.*field.member = Codec<M>::read(value);
        }
    } catch (const DecodeError &error) {
        throw error.within(key.toStdString());
    }
}

template <class R, class M>
void readField(JsonReader &reader, const QByteArray &key, const Field<R, M> &field, R &record)
{
    try {
        if constexpr (IsOptional<M>::value) {
            record.*field.member = Codec<M>::read(reader);
        } else if (reader.takeNull()) {
            if (field.presence != Presence::Defaulted && !isLenient<R>())
                absent(true);
        } else {
            record.*field.member = Codec<M>::read(reader);
        }
    } catch (const DecodeError &error) {
        throw error.within(key.toStdString());
    }
}

// After the last key: a required field that never came is missing.
template <class R, class M>
void checkPresent(const QByteArray &key, const Field<R, M> &field, bool seen)
{
    if (seen || IsOptional<M>::value || field.presence == Presence::Defaulted || isLenient<R>())
        return;
    throw DecodeError("missing").within(key.toStdString());
}

template <class R, class M>
void writeField(QJsonObject &object, const QString &key, const Field<R, M> &field, const R &record,
                KeyStyle style)
{
    const M &member = record.*field.member;
    if constexpr (IsOptional<M>::value) {
        if (!member)
            return; // an absent optional is left out, never sent as null
    }
    object.insert(key, Codec<M>::write(member, style));
}

} // namespace detail

template <> struct Codec<bool> {
    static bool read(const QJsonValue &v)
    {
        if (!v.isBool())
            detail::mismatch("a boolean", v);
        return v.toBool();
    }
    static bool read(JsonReader &r) { return r.readBool(); }
    static QJsonValue write(bool v, KeyStyle) { return v; }
};

template <> struct Codec<int> {
    static int read(const QJsonValue &v)
    {
        return int(detail::readInteger(v, std::numeric_limits<int>::min(),
                                       std::numeric_limits<int>::max()));
    }
    static int read(JsonReader &r)
    {
        return int(r.readInteger(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    }
    static QJsonValue write(int v, KeyStyle) { return v; }
};

template <> struct Codec<qint64> {
    static qint64 read(const QJsonValue &v)
    {
        return detail::readInteger(v, std::numeric_limits<qint64>::min(),
                                   std::numeric_limits<qint64>::max());
    }
    static qint64 read(JsonReader &r)
    {
        return r.readInteger(std::numeric_limits<qint64>::min(),
                             std::numeric_limits<qint64>::max());
    }
    static QJsonValue write(qint64 v, KeyStyle) { return v; }
};

template <> struct Codec<double> {
    static double read(const QJsonValue &v)
    {
        if (!v.isDouble())
            detail::mismatch("a number", v);
        return v.toDouble();
    }
    static double read(JsonReader &r) { return r.readDouble(); }
    static QJsonValue write(double v, KeyStyle) { return v; }
};

template <> struct Codec<QString> {
    static QString read(const QJsonValue &v)
    {
        if (!v.isString())
            detail::mismatch("a string", v);
        return v.toString();
    }
    static QString read(JsonReader &r) { return r.readString(); }
    static QJsonValue write(const QString &v, KeyStyle) { return v; }
};

template <class T> struct Codec<std::optional<T>> {
    static std::optional<T> read(const QJsonValue &v)
    {
        if (detail::isAbsent(v))
            return std::nullopt;
        return Codec<T>::read(v);
    }
    static std::optional<T> read(JsonReader &r)
    {
        if (r.takeNull())
            return std::nullopt;
        return Codec<T>::read(r);
    }
    static QJsonValue write(const std::optional<T> &v, KeyStyle style)
    {
        return v ? Codec<T>::write(*v, style) : QJsonValue(QJsonValue::Null);
    }
};

template <class T> struct Codec<QList<T>> {
    static QList<T> read(const QJsonValue &v)
    {
        if (!v.isArray())
            detail::mismatch("an array", v);
        const QJsonArray array = v.toArray();
        QList<T> list;
        list.reserve(array.size());
        for (qsizetype i = 0; i < array.size(); ++i) {
            try {
                list.append(Codec<T>::read(array.at(i)));
            } catch (const DecodeError &error) {
                throw error.within("[" + std::to_string(i) + "]");
            }
        }
        return list;
    }
    static QList<T> read(JsonReader &r)
    {
        r.beginArray();
        QList<T> list;
        bool first = true;
        while (r.nextItem(first)) {
            try {
                list.append(Codec<T>::read(r));
            } catch (const DecodeError &error) {
                throw error.within("[" + std::to_string(list.size()) + "]");
            }
        }
        return list;
    }
    static QJsonValue write(const QList<T> &list, KeyStyle style)
    {
        QJsonArray array;
        for (const T &item : list)
            array.append(Codec<T>::write(item, style));
        return array;
    }
};

// A dictionary (e.g. language code -> voice id). Its keys are data, not field names: they are
// read and written exactly as spelled, whatever the key style.
template <> struct Codec<QMap<QString, QString>> {
    static QMap<QString, QString> read(const QJsonValue &v)
    {
        const QJsonObject object = detail::readObject(v);
        QMap<QString, QString> map;
        for (auto it = object.begin(); it != object.end(); ++it) {
            try {
                map.insert(it.key(), Codec<QString>::read(it.value()));
            } catch (const DecodeError &error) {
                throw error.within(it.key().toStdString());
            }
        }
        return map;
    }
    static QMap<QString, QString> read(JsonReader &r)
    {
        r.beginObject();
        QMap<QString, QString> map;
        bool first = true;
        QByteArrayView key;
        while (r.nextKey(first, key)) {
            const QString name = QString::fromUtf8(key);
            try {
                map.insert(name, Codec<QString>::read(r));
            } catch (const DecodeError &error) {
                throw error.within(name.toStdString());
            }
        }
        return map;
    }
    static QJsonValue write(const QMap<QString, QString> &map, KeyStyle)
    {
        QJsonObject object;
        for (auto it = map.begin(); it != map.end(); ++it)
            object.insert(it.key(), it.value());
        return object;
    }
};

template <Record R> struct Codec<R> {
    static R read(const QJsonValue &v)
    {
        const QJsonObject object = detail::readObject(v);
        const auto &keys = detail::recordKeys<R>(KeyStyle::Snake);
        R record{};
        std::size_t i = 0;
        std::apply(
            [&](const auto &...f) { (detail::readField(object, keys[i++], f, record), ...); },
            R::fields);
        return record;
    }
    static R read(JsonReader &reader)
    {
        constexpr std::size_t count = fieldCount<R>;
        const auto &keys = detail::wireKeys<R>();
        R record{};
        std::array<bool, count> seen{};
        reader.beginObject();
        bool first = true;
        QByteArrayView key;
        std::size_t hint = 0; // replies usually list keys in a stable order
        while (reader.nextKey(first, key)) {
            std::size_t index = count;
            // A record without fields (Done) reads no key; its count must never be a divisor.
            if constexpr (count > 0) {
                for (std::size_t n = 0; n < count; ++n) {
                    const std::size_t candidate = (hint + n) % count;
                    if (keys[candidate] == key) {
                        index = candidate;
                        break;
                    }
                }
            }
            if (index == count) {
                reader.skipValue(); // a key this client does not read
                continue;
            }
            hint = index + 1;
            seen[index] = true;
            std::size_t i = 0;
            std::apply(
                [&](const auto &...f) {
                    ((i++ == index ? detail::readField(reader, keys[index], f, record) : void()),
                     ...);
                },
                R::fields);
        }
        std::size_t i = 0;
        std::apply(
            [&](const auto &...f) { ((detail::checkPresent(keys[i], f, seen[i]), ++i), ...); },
            R::fields);
        return record;
    }
    static QJsonValue write(const R &record, KeyStyle style)
    {
        const auto &keys = detail::recordKeys<R>(style);
        QJsonObject object;
        std::size_t i = 0;
        std::apply(
            [&](const auto &...f) {
                (detail::writeField(object, keys[i++], f, record, style), ...);
            },
            R::fields);
        return object;
    }
};

template <SelfDecoding T>
requires(!Record<T>) struct Codec<T> {
    static T read(const QJsonValue &v) { return T::fromJson(detail::readObject(v)); }
    static T read(JsonReader &r)
    {
        if (r.peek() != JsonReader::Kind::Object)
            r.beginObject(); // reports the mismatch
        return T::fromJson(r.readValue().toObject());
    }
};

} // namespace orvel::json
