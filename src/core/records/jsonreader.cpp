#include "records/jsonreader.h"

#include "records/decodeerror.h"

#include <QJsonArray>
#include <QJsonObject>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace orvel::json {

namespace {

constexpr int maxDepth = 1024;

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isContinuation(const char *p, const char *end)
{
    return p < end && (uchar(*p) & 0xC0) == 0x80;
}

// Length of the well-formed UTF-8 sequence at p (lead byte >= 0x80), or 0: no overlong forms,
// no surrogates, nothing above U+10FFFF.
int utf8Length(const char *p, const char *end)
{
    const uchar lead = uchar(*p);
    if (lead >= 0xC2 && lead <= 0xDF)
        return isContinuation(p + 1, end) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (p + 2 >= end || !isContinuation(p + 1, end) || !isContinuation(p + 2, end))
            return 0;
        const uchar second = uchar(p[1]);
        if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F))
            return 0;
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (p + 3 >= end || !isContinuation(p + 1, end) || !isContinuation(p + 2, end) ||
            !isContinuation(p + 3, end))
            return 0;
        const uchar second = uchar(p[1]);
        if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
            return 0;
        return 4;
    }
    return 0;
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

const char *describe(JsonReader::Kind kind)
{
    switch (kind) {
    case JsonReader::Kind::Object:
        return "an object";
    case JsonReader::Kind::Array:
        return "an array";
    case JsonReader::Kind::String:
        return "a string";
    case JsonReader::Kind::Number:
        return "a number";
    case JsonReader::Kind::Bool:
        return "a boolean";
    case JsonReader::Kind::Null:
        break;
    }
    return "null";
}

} // namespace

JsonReader::JsonReader(QByteArrayView text)
    : begin_(text.data()), p_(text.data()), end_(text.data() + text.size())
{}

void JsonReader::syntaxError(const char *what) const
{
    throw DecodeError::notJson(what, p_ - begin_);
}

void JsonReader::mismatch(const char *expected)
{
    throw DecodeError(std::string("expected ") + expected + ", found " + describe(peek()));
}

void JsonReader::skipSpace()
{
    while (p_ < end_ && isSpace(*p_))
        ++p_;
}

char JsonReader::next()
{
    skipSpace();
    if (p_ >= end_)
        syntaxError("unexpected end of text");
    return *p_;
}

void JsonReader::expect(char c, const char *what)
{
    if (next() != c)
        syntaxError(what);
    ++p_;
}

void JsonReader::expectWord(const char *word)
{
    for (; *word; ++word, ++p_)
        if (p_ >= end_ || *p_ != *word)
            syntaxError("unexpected character");
}

void JsonReader::enter()
{
    if (++depth_ > maxDepth)
        syntaxError("values nested too deeply");
}

JsonReader::Kind JsonReader::peek()
{
    const char c = next();
    switch (c) {
    case '{':
        return Kind::Object;
    case '[':
        return Kind::Array;
    case '"':
        return Kind::String;
    case 't':
    case 'f':
        return Kind::Bool;
    case 'n':
        return Kind::Null;
    default:
        if (c == '-' || isDigit(c))
            return Kind::Number;
    }
    syntaxError("unexpected character");
}

bool JsonReader::takeNull()
{
    if (peek() != Kind::Null)
        return false;
    expectWord("null");
    return true;
}

bool JsonReader::readBool()
{
    if (peek() != Kind::Bool)
        mismatch("a boolean");
    const bool value = *p_ == 't';
    expectWord(value ? "true" : "false");
    return value;
}

QString JsonReader::readString()
{
    if (peek() != Kind::String)
        mismatch("a string");
    QString text;
    scanString(&text);
    return text;
}

void JsonReader::scanString(QString *out)
{
    ++p_; // the opening quote
    const char *start = p_;
    bool ascii = true;
    while (p_ < end_) {
        const uchar c = uchar(*p_);
        if (c == '"') {
            if (out)
                *out = ascii ? QString::fromLatin1(start, p_ - start)
                             : QString::fromUtf8(start, p_ - start);
            ++p_;
            return;
        }
        if (c == '\\')
            break;
        if (c < 0x20)
            syntaxError("control character in a string");
        if (c < 0x80) {
            ++p_;
            continue;
        }
        const int length = utf8Length(p_, end_);
        if (length == 0)
            syntaxError("invalid UTF-8 in a string");
        ascii = false;
        p_ += length;
    }
    if (p_ >= end_)
        syntaxError("unterminated string");

    // Escapes: build the text piece by piece.
    QString text;
    if (out)
        text = QString::fromUtf8(start, p_ - start);
    for (;;) {
        if (p_ >= end_)
            syntaxError("unterminated string");
        const uchar c = uchar(*p_);
        if (c == '"') {
            ++p_;
            if (out)
                *out = std::move(text);
            return;
        }
        if (c == '\\') {
            if (++p_ >= end_)
                syntaxError("unterminated string");
            char16_t unit = 0;
            switch (*p_++) {
            case '"':
                unit = u'"';
                break;
            case '\\':
                unit = u'\\';
                break;
            case '/':
                unit = u'/';
                break;
            case 'b':
                unit = u'\b';
                break;
            case 'f':
                unit = u'\f';
                break;
            case 'n':
                unit = u'\n';
                break;
            case 'r':
                unit = u'\r';
                break;
            case 't':
                unit = u'\t';
                break;
            case 'u':
                for (int i = 0; i < 4; ++i, ++p_) {
                    const int digit = p_ < end_ ? hexValue(*p_) : -1;
                    if (digit < 0)
                        syntaxError("bad \\u escape");
                    unit = char16_t(unit * 16 + digit);
                }
                break;
            default:
                --p_;
                syntaxError("bad escape");
            }
            if (out)
                text += QChar(unit);
            continue;
        }
        if (c < 0x20)
            syntaxError("control character in a string");
        const char *run = p_;
        while (p_ < end_ && *p_ != '"' && *p_ != '\\' && uchar(*p_) >= 0x20) {
            if (uchar(*p_) < 0x80) {
                ++p_;
                continue;
            }
            const int length = utf8Length(p_, end_);
            if (length == 0)
                syntaxError("invalid UTF-8 in a string");
            p_ += length;
        }
        if (out)
            text += QString::fromUtf8(run, p_ - run);
    }
}

JsonReader::Number JsonReader::scanNumber()
{
    const char *start = p_;
    const bool negative = *p_ == '-';
    if (negative)
        ++p_;
    const char *digits = p_;
    if (p_ < end_ && *p_ == '0') {
        ++p_;
    } else if (p_ < end_ && isDigit(*p_) && *p_ != '0') {
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    } else {
        syntaxError("bad number");
    }
    const char *digitsEnd = p_;
    bool integral = true;
    if (p_ < end_ && *p_ == '.') {
        integral = false;
        ++p_;
        if (p_ >= end_ || !isDigit(*p_))
            syntaxError("bad number");
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    }
    if (p_ < end_ && (*p_ == 'e' || *p_ == 'E')) {
        integral = false;
        ++p_;
        if (p_ < end_ && (*p_ == '+' || *p_ == '-'))
            ++p_;
        if (p_ >= end_ || !isDigit(*p_))
            syntaxError("bad number");
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    }

    if (integral && digitsEnd - digits <= 19) {
        // Exact for every value that fits in qint64.
        const quint64 limit = negative ? quint64(1) << 63 : (quint64(1) << 63) - 1;
        quint64 magnitude = 0;
        bool fits = true;
        for (const char *d = digits; d < digitsEnd && fits; ++d) {
            const quint64 digit = quint64(*d - '0');
            fits = magnitude <= (limit - digit) / 10;
            magnitude = magnitude * 10 + digit;
        }
        if (fits) {
            const qint64 integer = negative ? qint64(0 - magnitude) : qint64(magnitude);
            return {true, integer, double(integer)};
        }
    }
    double value = 0;
    const auto [end, error] = std::from_chars(start, p_, value);
    if (error == std::errc::result_out_of_range) {
        // Underflow reads as (nearly) zero; overflow has no value.
        value = std::strtod(std::string(start, p_).c_str(), nullptr);
        if (!std::isfinite(value))
            syntaxError("number out of range");
    } else if (error != std::errc() || end != p_) {
        syntaxError("bad number");
    }
    return {false, 0, value};
}

double JsonReader::readDouble()
{
    if (peek() != Kind::Number)
        mismatch("a number");
    return scanNumber().value;
}

qint64 JsonReader::readInteger(qint64 min, qint64 max)
{
    if (peek() != Kind::Number)
        mismatch("an integer");
    const Number number = scanNumber();
    if (number.integral) {
        if (number.integer < min || number.integer > max)
            throw DecodeError("integer out of range");
        return number.integer;
    }
    if (std::trunc(number.value) != number.value)
        throw DecodeError("expected an integer, found " +
                          QByteArray::number(number.value).toStdString());
    if (number.value < double(min) ||
        number.value >= double(max) + 1.0) // max + 1 is exact where max itself is not
        throw DecodeError("integer out of range");
    return qint64(number.value);
}

void JsonReader::beginObject()
{
    if (peek() != Kind::Object)
        mismatch("an object");
    ++p_;
    enter();
}

bool JsonReader::nextKey(bool &first, QByteArrayView &key)
{
    if (next() == '}') {
        ++p_;
        leave();
        return false;
    }
    if (!first)
        expect(',', "expected , or }");
    first = false;
    if (next() != '"')
        syntaxError("expected a key");
    // Plain keys are viewed in place; keys with escapes or non-ASCII are decoded.
    const char *start = p_ + 1;
    const char *q = start;
    while (q < end_ && *q != '"' && *q != '\\' && uchar(*q) >= 0x20 && uchar(*q) < 0x80)
        ++q;
    if (q < end_ && *q == '"') {
        key = QByteArrayView(start, q - start);
        p_ = q + 1;
    } else {
        QString text;
        scanString(&text);
        key_ = text.toUtf8();
        key = key_;
    }
    expect(':', "expected :");
    return true;
}

void JsonReader::beginArray()
{
    if (peek() != Kind::Array)
        mismatch("an array");
    ++p_;
    enter();
}

bool JsonReader::nextItem(bool &first)
{
    if (next() == ']') {
        ++p_;
        leave();
        return false;
    }
    if (!first)
        expect(',', "expected , or ]");
    first = false;
    return true;
}

void JsonReader::skipValue()
{
    switch (peek()) {
    case Kind::Object: {
        beginObject();
        bool first = true;
        QByteArrayView key;
        while (nextKey(first, key))
            skipValue();
        return;
    }
    case Kind::Array: {
        beginArray();
        bool first = true;
        while (nextItem(first))
            skipValue();
        return;
    }
    case Kind::String:
        scanString(nullptr);
        return;
    case Kind::Number:
        scanNumber();
        return;
    case Kind::Bool:
        readBool();
        return;
    case Kind::Null:
        expectWord("null");
        return;
    }
}

QJsonValue JsonReader::readValue()
{
    switch (peek()) {
    case Kind::Object: {
        QJsonObject object;
        beginObject();
        bool first = true;
        QByteArrayView key;
        while (nextKey(first, key)) {
            const QString name = QString::fromUtf8(key);
            object.insert(name, readValue());
        }
        return object;
    }
    case Kind::Array: {
        QJsonArray array;
        beginArray();
        bool first = true;
        while (nextItem(first))
            array.append(readValue());
        return array;
    }
    case Kind::String:
        return readString();
    case Kind::Number: {
        const Number number = scanNumber();
        return number.integral ? QJsonValue(number.integer) : QJsonValue(number.value);
    }
    case Kind::Bool:
        return readBool();
    case Kind::Null:
        expectWord("null");
        break;
    }
    return QJsonValue(QJsonValue::Null);
}

void JsonReader::finish()
{
    skipSpace();
    if (p_ != end_)
        syntaxError("unexpected text after the value");
}

} // namespace orvel::json
