#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonValue>
#include <QString>

namespace orvel::json {

// A pull reader over UTF-8 JSON text. The record decoders walk replies with it directly, value
// by value, instead of building a QJsonDocument first: a large reply (a deck of thousands of
// cards) is read in one pass without an intermediate tree. It accepts exactly RFC 8259 JSON
// (UTF-8 checked, no trailing commas, nesting up to 1024 levels); anything else throws
// DecodeError("not JSON: … at offset N"). Type mismatches throw the same errors as the
// QJsonValue decoders ("expected a string, found a number").
class JsonReader {
public:
    enum class Kind { Object, Array, String, Number, Bool, Null };

    explicit JsonReader(QByteArrayView text);

    // The kind of the next value, without consuming it.
    Kind peek();
    // Consumes a null if one is next.
    bool takeNull();

    bool readBool();
    QString readString();
    double readDouble();
    // A whole number within [min, max]; "12.0" counts as whole.
    qint64 readInteger(qint64 min, qint64 max);

    // Objects and arrays: begin, then call next… until it returns false. `first` is the caller's
    // own state for the container, starting true.
    void beginObject();
    // The next key, unescaped; the view lasts until the next call on the reader.
    bool nextKey(bool &first, QByteArrayView &key);
    void beginArray();
    bool nextItem(bool &first);

    // Skips (and checks) the next value of any kind.
    void skipValue();
    // The next value as a QJsonValue (for types that decode themselves from a QJsonObject).
    QJsonValue readValue();
    // Only white space may follow the top-level value.
    void finish();

private:
    [[noreturn]] void syntaxError(const char *what) const;
    [[noreturn]] void mismatch(const char *expected);
    void skipSpace();
    char next(); // the next significant byte, not consumed; syntax error at the end
    void expect(char c, const char *what);
    void expectWord(const char *word);
    // Reads a string; `out` may be null to only check it. `ascii` tells whether it was plain.
    void scanString(QString *out);
    struct Number {
        bool integral;  // written without fraction or exponent and fits in qint64
        qint64 integer; // when integral
        double value;
    };
    Number scanNumber();
    void enter();
    void leave() { --depth_; }

    const char *begin_;
    const char *p_;
    const char *end_;
    int depth_ = 0;
    QByteArray key_;
};

} // namespace orvel::json
