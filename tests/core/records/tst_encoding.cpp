// Encoding: the bodies the client sends, key styles (snake_case and literal), dictionary keys
// that are never converted, and records surviving a round trip through their own encoding.

#include "records/json.h"
#include "records/records.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::KeyStyle;

namespace {

QJsonObject encodedObject(const QByteArray &bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

template <class T> void checkRoundTrip(const QJsonObject &reply)
{
    const T decoded = json::decode<T>(wire::bytes(reply));
    QCOMPARE(json::decode<T>(json::encode(decoded)), decoded);
}

} // namespace

class EncodingTest : public QObject {
    Q_OBJECT

private slots:
    void snakeCaseKeys_data()
    {
        QTest::addColumn<QString>("camel");
        QTest::addColumn<QString>("snake");
        QTest::newRow("two words") << "nativeLanguage"
                                   << "native_language";
        QTest::newRow("three words") << "marginAsYouGo"
                                     << "margin_as_you_go";
        QTest::newRow("acronym at the end") << "sourceURL"
                                            << "source_url";
        QTest::newRow("acronym in the middle") << "sourceURLString"
                                               << "source_url_string";
        QTest::newRow("leading capital") << "Name"
                                         << "name";
        QTest::newRow("digits") << "line2Id"
                                << "line2_id";
    }

    void snakeCaseKeys()
    {
        QFETCH(QString, camel);
        QFETCH(QString, snake);
        QCOMPARE(json::snakeCase(camel), snake);
    }

    void draftLineLeavesOutAbsentIds()
    {
        NoteDraftLine line;
        line.text = "der Hund";
        line.source = "typed";
        line.kind = "phrase";
        line.annotations = {Annotation{}};
        const QJsonObject fresh = encodedObject(json::encode(line));
        QCOMPARE(fresh.keys(), QStringList({"annotations", "kind", "source", "text"}));

        line.id = 11;
        line.mediaId = 9;
        const QJsonObject stored = encodedObject(json::encode(line));
        QCOMPARE(stored.value("id").toInt(), 11);
        QCOMPARE(stored.value("media_id").toInt(), 9);
        QVERIFY(!stored.contains("mediaId"));
        const QJsonObject remark = stored.value("annotations").toArray().at(0).toObject();
        QCOMPARE(remark.value("kind").toString(), "note");
        QCOMPARE(remark.keys(), QStringList({"body", "deeper", "edited", "kind", "span", "term"}));
    }

    void sentBodiesUseSnakeCaseKeys()
    {
        QCOMPARE(json::encode(Kept{.at = 2, .card = true}), R"({"at":2,"card":true})");
        QCOMPARE(json::encode(QList<BatchWord>{{.term = "gehen", .source = "Er ging."}}),
                 R"([{"source":"Er ging.","term":"gehen"}])");

        FoundImage image;
        image.url = "u";
        image.sourceUrl = "https://example.org/p";
        const QJsonObject found = encodedObject(json::encode(image));
        QCOMPARE(found.value("source_url").toString(), "https://example.org/p");
        QVERIFY(!found.contains("animated"));
        QCOMPARE(found.size(), 9);
    }

    void textTravelsAsUtf8()
    {
        BatchWord word{.term = "Straße", .source = "„Grüß Gott“ – 名詞"};
        const QByteArray bytes = json::encode(word);
        QVERIFY(bytes.contains("Straße"));
        QVERIFY(bytes.contains("名詞"));
        QVERIFY(!bytes.contains("\\u"));
        QCOMPARE(json::decode<BatchWord>(bytes), word);
    }

    void literalStyleKeepsFieldNames()
    {
        const auto prefs = json::decode<Preferences>(wire::bytes(wire::preferences()));
        const QJsonObject literal = encodedObject(json::encode(prefs, KeyStyle::Literal));
        QVERIFY(literal.contains("hearOnFlip"));
        QVERIFY(literal.contains("marginAsYouGo"));
        QVERIFY(!literal.contains("hear_on_flip"));
        QVERIFY(!literal.contains("provider"));

        const QJsonObject snake = encodedObject(json::encode(prefs));
        QVERIFY(snake.contains("hear_on_flip"));
        QVERIFY(snake.contains("margin_as_you_go"));
    }

    void dictionaryKeysAreNeverConverted()
    {
        const QMap<QString, QString> voices{{"pt_BR", "a"}, {"zhHans", "b"}, {"de", "c"}};
        for (KeyStyle style : {KeyStyle::Snake, KeyStyle::Literal}) {
            const QJsonObject object = json::toValue(voices, style).toObject();
            QCOMPARE(object.keys(), QStringList({"de", "pt_BR", "zhHans"}));
            Preferences prefs;
            prefs.voices = voices;
            const QJsonObject inBody =
                encodedObject(json::encode(prefs, style)).value("voices").toObject();
            QCOMPARE(inBody.keys(), QStringList({"de", "pt_BR", "zhHans"}));
        }
        using Dictionary = QMap<QString, QString>;
        QCOMPARE(json::decode<Dictionary>(R"({"zhHans":"b"})").firstKey(), "zhHans");
    }

    void recordsSurviveARoundTrip()
    {
        checkRoundTrip<Card>(wire::card());
        checkRoundTrip<DeckSummary>(wire::deckSummary());
        checkRoundTrip<DeckSummary>(wire::without(wire::deckSummary(), "folder_id"));
        checkRoundTrip<Note>(wire::note());
        checkRoundTrip<Preferences>(wire::preferences());
        checkRoundTrip<Byte>(QJsonObject{
            {"title", "t"},
            {"phrases", QJsonArray{QJsonObject{{"phrase", "Hallo"}, {"meaning", "hello"}}}},
            {"correction", QJsonObject{{"wrong", "w"}, {"right", "r"}}}});
    }

    void anEncodedReplyDecodesOnlyInItsOwnStyle()
    {
        const Card card = json::decode<Card>(wire::bytes(wire::card()));
        QVERIFY_THROWS_EXCEPTION(json::DecodeError,
                                 json::decode<Card>(json::encode(card, KeyStyle::Literal)));
    }
};

QTEST_GUILESS_MAIN(EncodingTest)
#include "tst_encoding.moc"
