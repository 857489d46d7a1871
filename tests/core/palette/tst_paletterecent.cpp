// The palette's recents as stored in the local settings: the exact bytes written, what is read
// back from hand-written data (and what makes it unreadable), and how noting an entry dedupes,
// orders and caps the list.
#include "palette/paletterecent.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

PaletteRecent hund()
{
    return PaletteRecent::card(
        {12, 345, QStringLiteral("Hund"), QStringLiteral("dog"), QStringLiteral("noun")});
}

QByteArray stored()
{
    return LocalSettings::store().value(settingskeys::paletteRecents()).toByteArray();
}

void store(const QByteArray &bytes)
{
    LocalSettings::store().setValue(settingskeys::paletteRecents(), bytes);
}

QStringList keys(const QList<PaletteRecent> &recents)
{
    QStringList keys;
    for (const PaletteRecent &recent : recents)
        keys.append(recent.key());
    return keys;
}

} // namespace

class TestPaletteRecent : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        LocalSettings::useFile(
            m_dir.filePath(QString("settings-%1.conf").arg(QTest::currentTestFunction())));
    }

    void keysNameTheCaseAndTheId()
    {
        QCOMPARE(PaletteRecent::deck(12).key(), QStringLiteral("deck-12"));
        QCOMPARE(hund().key(), QStringLiteral("card-345"));
        QCOMPARE(hund().deckId(), 12);
        QVERIFY(!PaletteRecent::deck(7).card());
        QCOMPARE(hund().card()->term, QStringLiteral("Hund"));
    }

    void writesTheStoredForm()
    {
        PaletteRecent::note(PaletteRecent::deck(12));
        PaletteRecent::note(hund());
        QCOMPARE(stored(),
                 QByteArray(R"([{"card":{"deckId":12,"cardId":345,"term":"Hund",)"
                            R"("translation":"dog","kind":"noun"}},{"deck":{"_0":12}}])"));
        // Texts are escaped as JSON strings.
        PaletteRecent::note(PaletteRecent::card(
            {1, 2, QStringLiteral("\"quoted\" \\ line\nbreak"), QStringLiteral("Ü"), {}}));
        QVERIFY(stored().startsWith("[{\"card\":{\"deckId\":1,\"cardId\":2,"
                                    "\"term\":\"\\\"quoted\\\" \\\\ line\\nbreak\","
                                    "\"translation\":\"\xc3\x9c\",\"kind\":\"\"}}"));
        QCOMPARE(PaletteRecent::load().first().card()->term,
                 QStringLiteral("\"quoted\" \\ line\nbreak"));
    }

    void readsHandWrittenData_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("deck and card")
            << QByteArray(R"([{"deck":{"_0":3}},{"card":{"deckId":3,"cardId":9,"term":"Katze",)"
                          R"("translation":"cat","kind":"noun"}}])")
            << QStringList{"deck-3", "card-9"};
        QTest::newRow("card keys in another order, spaces")
            << QByteArray(R"([ {"card": {"kind":"verb","term":"gehen","translation":"go",)"
                          R"("cardId":4,"deckId":1}} ])")
            << QStringList{"card-4"};
        QTest::newRow("unknown keys inside a case are ignored")
            << QByteArray(R"([{"deck":{"_0":5,"note":"x"}}])") << QStringList{"deck-5"};
        QTest::newRow("empty list") << QByteArray("[]") << QStringList{};
        QTest::newRow("not JSON") << QByteArray("deck-3") << QStringList{};
        QTest::newRow("not an array") << QByteArray(R"({"deck":{"_0":3}})") << QStringList{};
        QTest::newRow("two keys in one element")
            << QByteArray(R"([{"deck":{"_0":1},"card":{"deckId":1,"cardId":2,"term":"a",)"
                          R"("translation":"b","kind":"noun"}}])")
            << QStringList{};
        QTest::newRow("no key in one element")
            << QByteArray(R"([{"deck":{"_0":1}},{}])") << QStringList{};
        QTest::newRow("unknown case") << QByteArray(R"([{"note":{"_0":1}}])") << QStringList{};
        QTest::newRow("deck id missing") << QByteArray(R"([{"deck":{}}])") << QStringList{};
        QTest::newRow("deck id as text") << QByteArray(R"([{"deck":{"_0":"1"}}])") << QStringList{};
        QTest::newRow("deck id not whole")
            << QByteArray(R"([{"deck":{"_0":1.5}}])") << QStringList{};
        QTest::newRow("card without kind")
            << QByteArray(R"([{"card":{"deckId":1,"cardId":2,"term":"a","translation":"b"}}])")
            << QStringList{};
        QTest::newRow("card term null")
            << QByteArray(R"([{"card":{"deckId":1,"cardId":2,"term":null,"translation":"b",)"
                          R"("kind":"noun"}}])")
            << QStringList{};
        QTest::newRow("a bad element spoils the list")
            << QByteArray(R"([{"deck":{"_0":1}},{"deck":7}])") << QStringList{};
    }

    void readsHandWrittenData()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, expected);
        store(bytes);
        QCOMPARE(keys(PaletteRecent::load()), expected);
        // Reading never rewrites what is stored.
        QCOMPARE(stored(), bytes);
    }

    void saysWhyAnElementHasTooManyKeys()
    {
        QString error;
        QVERIFY(!PaletteRecent::decode(R"([{"deck":{"_0":1},"card":{}}])", &error));
        QCOMPARE(error, QStringLiteral("Invalid number of keys found, expected one."));
    }

    void nothingStoredReadsAsEmpty() { QVERIFY(PaletteRecent::load().isEmpty()); }

    void snapshotsRoundTrip()
    {
        const QList<PaletteRecent> list{hund(), PaletteRecent::deck(-4),
                                        PaletteRecent::card({1, 2, "日本", "Japan", "other"})};
        QVERIFY(PaletteRecent::decode(PaletteRecent::encode(list)) == list);
    }

    void notingDedupesOrdersAndCaps()
    {
        // The same deck twice: one entry, at the front.
        PaletteRecent::note(PaletteRecent::deck(1));
        PaletteRecent::note(PaletteRecent::deck(2));
        PaletteRecent::note(PaletteRecent::deck(1));
        QCOMPARE(keys(PaletteRecent::load()), (QStringList{"deck-1", "deck-2"}));

        // A card and a deck with the same number are different entries.
        PaletteRecent::note(PaletteRecent::card({9, 2, "Katze", "cat", "noun"}));
        QCOMPARE(keys(PaletteRecent::load()), (QStringList{"card-2", "deck-1", "deck-2"}));

        // A newer snapshot of the same card replaces the older one.
        PaletteRecent::note(PaletteRecent::deck(5));
        PaletteRecent::note(PaletteRecent::card({9, 2, "die Katze", "the cat", "noun"}));
        const QList<PaletteRecent> recents = PaletteRecent::load();
        QCOMPARE(keys(recents), (QStringList{"card-2", "deck-5", "deck-1", "deck-2"}));
        QCOMPARE(recents.first().card()->term, QStringLiteral("die Katze"));

        // After nine different things only the last eight stay.
        for (int id = 10; id < 19; ++id)
            PaletteRecent::note(PaletteRecent::deck(id));
        QCOMPARE(keys(PaletteRecent::load()),
                 (QStringList{"deck-18", "deck-17", "deck-16", "deck-15", "deck-14", "deck-13",
                              "deck-12", "deck-11"}));
    }

    void malformedDataIsReplacedAtTheNextNote()
    {
        store("not json");
        QVERIFY(PaletteRecent::load().isEmpty());
        PaletteRecent::note(PaletteRecent::deck(3));
        QCOMPARE(stored(), QByteArray(R"([{"deck":{"_0":3}}])"));
    }

    void survivesAReopenedStore()
    {
        const QString path = m_dir.filePath("reopened.conf");
        LocalSettings::useFile(path);
        PaletteRecent::note(hund());
        LocalSettings::store().sync();
        LocalSettings::useFile(path);
        QVERIFY(PaletteRecent::load() == QList<PaletteRecent>{hund()});
    }
};

QTEST_GUILESS_MAIN(TestPaletteRecent)

#include "tst_paletterecent.moc"
