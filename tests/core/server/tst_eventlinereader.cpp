#include "server/eventlinereader.h"

#include <QTest>

using orvel::EventLineReader;

namespace {

// Feeds the bytes in pieces of the given size and collects every payload; an unfinished last
// line shows as a trailing "<cut>".
QList<QByteArray> readAll(const QByteArray &bytes, int piece)
{
    EventLineReader reader;
    QList<QByteArray> out;
    for (qsizetype at = 0; at < bytes.size(); at += piece)
        out += reader.feed(bytes.mid(at, piece));
    if (reader.midLine())
        out += "<cut>";
    return out;
}

} // namespace

class TestEventLineReader : public QObject {
    Q_OBJECT
private slots:
    void dataLines_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QList<QByteArray>>("payloads");

        QTest::newRow("one event then a blank line") << QByteArray("data: {\"type\":\"card\"}\n\n")
                                                     << QList<QByteArray>{"{\"type\":\"card\"}"};
        QTest::newRow("no space after the colon")
            << QByteArray("data:{\"a\":1}\n") << QList<QByteArray>{"{\"a\":1}"};
        QTest::newRow("two spaces keep the second")
            << QByteArray("data:  {\"a\":1}\n") << QList<QByteArray>{" {\"a\":1}"};
        QTest::newRow("CR LF endings")
            << QByteArray("data: 1\r\n\r\ndata: 2\r\n") << QList<QByteArray>{"1", "2"};
        QTest::newRow("carriage returns inside a line are dropped")
            << QByteArray("da\rta: x\ry\n") << QList<QByteArray>{"xy"};
        QTest::newRow("event, id and comment lines are ignored")
            << QByteArray("event: progress\nid: 7\n: keep-alive\ndata: {}\n\n")
            << QList<QByteArray>{"{}"};
        QTest::newRow("data lines are not joined")
            << QByteArray("data: a\ndata: b\n\n") << QList<QByteArray>{"a", "b"};
        QTest::newRow("an empty data line is an event")
            << QByteArray("data:\n") << QList<QByteArray>{""};
        QTest::newRow("a last line without its line feed is a cut")
            << QByteArray("data: a\ndata: b") << QList<QByteArray>{"a", "<cut>"};
        QTest::newRow("a lone carriage return at the end is not a cut")
            << QByteArray("data: a\r\n\r") << QList<QByteArray>{"a"};
        QTest::newRow("DATA in capitals is not a data line")
            << QByteArray("DATA: a\n") << QList<QByteArray>{};
        QTest::newRow("utf-8 passes through") << QByteArray("data: {\"t\":\"Stra\xc3\x9f"
                                                            "e\"}\n")
                                              << QList<QByteArray>{"{\"t\":\"Stra\xc3\x9f"
                                                                   "e\"}"};
    }

    void dataLines()
    {
        QFETCH(QByteArray, body);
        QFETCH(QList<QByteArray>, payloads);
        // Whatever the pieces the bytes arrive in, the events are the same.
        for (int piece : {1, 2, 3, 7, 4096})
            QCOMPARE(readAll(body, piece), payloads);
    }

    void eventsComeOutAsSoonAsTheirLineEnds()
    {
        EventLineReader reader;
        QVERIFY(reader.feed("data: {\"type\":").isEmpty());
        QVERIFY(reader.feed("\"word\"}").isEmpty());
        QCOMPARE(reader.feed("\ndata: nex"), QList<QByteArray>{"{\"type\":\"word\"}"});
        QCOMPARE(reader.feed("t\n"), QList<QByteArray>{"next"});
        QVERIFY(!reader.midLine());
    }
};

QTEST_GUILESS_MAIN(TestEventLineReader)
#include "tst_eventlinereader.moc"
