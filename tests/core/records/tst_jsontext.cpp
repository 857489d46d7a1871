// Reading JSON text: what is and is not JSON, strings with escapes and UTF-8, numbers, and the
// one-pass reader agreeing with the QJsonValue decoders on the same text.

#include "records/json.h"
#include "records/records.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::DecodeError;

class JsonTextTest : public QObject {
    Q_OBJECT

private slots:
    // Each text would be a whole folder but for one fault of syntax, so only the JSON rules can
    // reject it.
    void notJson_data()
    {
        QTest::addColumn<QByteArray>("text");
        const auto folder = [](const QByteArray &id, const QByteArray &name = "\"x\"") {
            return "{\"id\":" + id + ",\"name\":" + name + ",\"deck_count\":0}";
        };
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("only space") << QByteArray(" \n ");
        QTest::newRow("trailing comma in object") << folder("1").chopped(1) + ",}";
        QTest::newRow("trailing comma in array") << folder("1") + "[1,]";
        QTest::newRow("missing comma") << QByteArray(R"({"id":1 "name":"x","deck_count":0})");
        QTest::newRow("missing colon") << QByteArray(R"({"id" 1,"name":"x","deck_count":0})");
        QTest::newRow("unquoted key") << QByteArray(R"({id:1,"name":"x","deck_count":0})");
        QTest::newRow("single quotes") << folder("1", "'x'");
        QTest::newRow("unterminated object") << folder("1").chopped(1);
        QTest::newRow("unterminated string") << QByteArray("{\"id\":1,\"name\":\"x");
        QTest::newRow("text after the value") << folder("1") + " x";
        QTest::newRow("two values") << folder("1") + " {}";
        QTest::newRow("leading zero") << folder("01");
        QTest::newRow("plus sign") << folder("+1");
        QTest::newRow("bare fraction") << folder(".5");
        QTest::newRow("dangling point") << folder("1.");
        QTest::newRow("dangling exponent") << folder("1e");
        QTest::newRow("huge exponent") << folder("1e999");
        QTest::newRow("NaN") << folder("NaN");
        QTest::newRow("misspelt literal") << folder("1", "nul");
        QTest::newRow("control character") << folder("1", "\"a\tb\"");
        QTest::newRow("bad escape") << folder("1", "\"\\q\"");
        QTest::newRow("short unicode escape") << folder("1", "\"\\u12\"");
        QTest::newRow("invalid UTF-8") << folder("1", "\"\xC3\x28\"");
        QTest::newRow("overlong UTF-8") << folder("1", "\"\xC0\xAF\"");
        QTest::newRow("UTF-8 surrogate") << folder("1", "\"\xED\xA0\x80\"");
        QTest::newRow("truncated UTF-8") << QByteArray("{\"id\":1,\"name\":\"\xE6\x97");
        QTest::newRow("nested too deeply") << folder("1").chopped(1) +
                                                  ",\"x\":" + QByteArray(5000, '[') +
                                                  QByteArray(5000, ']') + "}";
    }

    void notJson()
    {
        QFETCH(QByteArray, text);
        try {
            json::decode<Folder>(text);
            QFAIL("decoded text that is not JSON");
        } catch (const DecodeError &error) {
            QVERIFY2(QString(error.what()).startsWith("not JSON: "), error.what());
        }
    }

    void syntaxErrorsSayWhere()
    {
        try {
            json::decode<Folder>(R"({"id":1,})");
            QFAIL("decoded a trailing comma");
        } catch (const DecodeError &error) {
            QCOMPARE(QString(error.what()), "not JSON: expected a key at offset 8");
        }
    }

    void unknownKeysOfAnyShapeAreSkipped()
    {
        const auto folder = json::decode<Folder>(
            " {\"extra\":{\"a\":[1,2.5e3,{\"b\":null}],\"c\":\"\\\"q\\\" \\u00e9\"},\"id\":1,"
            "\"name\":\"Travel\",\"more\":[true,false,[]],\"deck_count\":3} ");
        QCOMPARE(folder.id, 1);
        QCOMPARE(folder.name, "Travel");
        QCOMPARE(folder.deckCount, 3);
    }

    void stringEscapesAndUtf8()
    {
        const QString name = json::decode<QString>(
            "\"a\\\"b\\\\c\\/d\\b\\f\\n\\r\\t \\u00e9 \\ud83d\\ude00 Straße 名詞\"");
        QCOMPARE(name, QString::fromUtf8("a\"b\\c/d\b\f\n\r\t é 😀 Straße 名詞"));
        QCOMPARE(json::decode<QString>("\"caf\xC3\xA9\""), QString::fromUtf8("café"));
        // Keys are matched after unescaping.
        QCOMPARE(
            json::decode<Folder>("{\"id\":1,\"n\\u0061me\":\"x\",\"deck\\u005fcount\":0}").name,
            "x");
    }

    void numbers()
    {
        QCOMPARE(json::decode<qint64>("-9223372036854775808"), std::numeric_limits<qint64>::min());
        QCOMPARE(json::decode<qint64>("9223372036854775807"), std::numeric_limits<qint64>::max());
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<qint64>("9223372036854775808"));
        QCOMPARE(json::decode<int>("1e3"), 1000);
        QCOMPARE(json::decode<int>("-0"), 0);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<int>("2147483648"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<int>("1e-3"));
        QCOMPARE(json::decode<double>("-12.5e-1"), -1.25);
        QCOMPARE(json::decode<double>("1e-400"), 0.0);
        QCOMPARE(json::decode<double>("12345678901234567890"), 12345678901234567890.0);
    }

    // The same text through the one-pass reader (decode) and through QJsonDocument (fromValue)
    // must give the same record, or fail in both.
    void bothPathsAgree_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("card") << wire::bytes(wire::card());
        QTest::newRow("card without examples")
            << wire::bytes(wire::without(wire::card(), "examples"));
        QTest::newRow("card with a fractional id")
            << wire::bytes(wire::with(wire::card(), "id", 1.5));
        QTest::newRow("note") << wire::bytes(wire::note());
        QTest::newRow("note line with a null state") << wire::bytes(
            wire::with(wire::note(), "lines",
                       QJsonArray{wire::with(wire::noteLine(), "state", QJsonValue::Null)}));
        QTest::newRow("preferences") << wire::bytes(wire::preferences());
        QTest::newRow("empty object") << QByteArray("{}");
    }

    void bothPathsAgree()
    {
        QFETCH(QByteArray, text);
        const QJsonValue tree = QJsonDocument::fromJson(text).object();
        compare<Card>(text, tree);
        compare<Note>(text, tree);
        compare<Preferences>(text, tree);
        compare<Annotation>(text, tree);
        compare<Byte>(text, tree);
    }

private:
    template <class T> static void compare(const QByteArray &text, const QJsonValue &tree)
    {
        std::optional<T> streamed, fromTree;
        QString streamError, treeError;
        try {
            streamed = json::decode<T>(text);
        } catch (const DecodeError &error) {
            streamError = error.what();
        }
        try {
            fromTree = json::fromValue<T>(tree);
        } catch (const DecodeError &error) {
            treeError = error.what();
        }
        QCOMPARE(streamed, fromTree);
        QCOMPARE(streamError, treeError);
    }
};

QTEST_GUILESS_MAIN(JsonTextTest)
#include "tst_jsontext.moc"
