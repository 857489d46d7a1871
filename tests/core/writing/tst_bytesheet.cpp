#include "awaittask.h"
#include "server/servererror.h"
#include "writing/bytesheet.h"

#include <QSignalSpy>
#include <QTest>

using namespace orvel;
using Fate = ByteSheet::Fate;

namespace {

Byte lesson(int phrases)
{
    Byte byte;
    byte.title = QStringLiteral("Asking for the bill");
    byte.gist = QStringLiteral("Ask politely, with möchte.");
    byte.correction = Correction{.wrong = QStringLiteral("Ich will zahlen."),
                                 .right = QStringLiteral("Ich möchte zahlen.")};
    for (int at = 0; at < phrases; ++at)
        byte.phrases.append(Phrase{.phrase = QStringLiteral("Phrase %1").arg(at)});
    return byte;
}

// A keep operation that records what it was given and answers as told.
struct KeepProbe {
    QList<Kept> kept;
    bool context = false;
    std::optional<int> into;
    int calls = 0;
    std::optional<QString> failWith;

    ByteSheet::Keep operation()
    {
        return [this](QList<Kept> list, bool ctx, std::optional<int> note) -> QCoro::Task<Landed> {
            return answer(this, std::move(list), ctx, note);
        };
    }

    static QCoro::Task<Landed> answer(KeepProbe *probe, QList<Kept> list, bool ctx,
                                      std::optional<int> note)
    {
        ++probe->calls;
        probe->kept = list;
        probe->context = ctx;
        probe->into = note;
        if (probe->failWith)
            throw APIError(500, *probe->failWith);
        Landed landed;
        landed.cards.append(Card{.id = 40});
        co_return landed;
    }
};

} // namespace

class TestByteSheet : public QObject {
    Q_OBJECT

private slots:
    void theKeepButtonCountsWhatIsKept()
    {
        KeepProbe probe;
        ByteSheet sheet(lesson(4), QStringLiteral("de"), {}, probe.operation());
        QCOMPARE(sheet.fates(), (QList<Fate>(4, Fate::Bin)));
        QCOMPARE(sheet.keepLabel(), QStringLiteral("Keep"));
        QCOMPARE(sheet.keepHint(), QStringLiteral("nothing kept yet"));

        QSignalSpy changed(&sheet, &ByteSheet::fatesChanged);
        sheet.setFate(0, Fate::Note);
        sheet.setFate(2, Fate::Note);
        sheet.setFate(3, Fate::Card);
        sheet.setFate(7, Fate::Card); // no such phrase
        QCOMPARE(changed.size(), 3);
        QCOMPARE(sheet.kept(), 3);
        QCOMPARE(sheet.cards(), 1);
        QCOMPARE(sheet.keepLabel(), QStringLiteral("Keep 3, write 1 card"));
        QCOMPARE(sheet.keepHint(), QString());

        sheet.cycleFate(2); // note → card
        QCOMPARE(sheet.keepLabel(), QStringLiteral("Keep 3, write 2 cards"));
        sheet.cycleFate(2); // card → bin
        sheet.cycleFate(3);
        QCOMPARE(sheet.keepLabel(), QStringLiteral("Keep 1"));
        sheet.cycleFate(1); // bin → note
        QCOMPARE(sheet.fate(1), Fate::Note);
        QCOMPARE(sheet.phrases()[1].toMap().value("fate").toInt(), int(Fate::Note));
    }

    void theContextAndIntoChoicesNameWhatGoesWhere()
    {
        const QList<NoteSummary> notes{NoteSummary{.id = 3, .title = QStringLiteral("Café")},
                                       NoteSummary{.id = 8, .title = QStringLiteral("  ")}};
        ByteSheet both(lesson(1), {}, notes, {});
        QCOMPARE(both.contextLabel(), QStringLiteral("the idea and the correction too"));
        QVERIFY(both.offersContext());

        Byte ideaOnly = lesson(1);
        ideaOnly.correction = {};
        QCOMPARE(ByteSheet(ideaOnly, {}, {}, {}).contextLabel(), QStringLiteral("the idea too"));
        Byte correctionOnly = lesson(1);
        correctionOnly.gist.clear();
        QCOMPARE(ByteSheet(correctionOnly, {}, {}, {}).contextLabel(),
                 QStringLiteral("the correction too"));
        ideaOnly.gist.clear();
        ByteSheet neither(ideaOnly, {}, {}, {});
        QVERIFY(!neither.offersContext());

        const QVariantList into = both.intoChoices();
        QCOMPARE(into.size(), 3);
        QCOMPARE(into[0].toMap().value("title").toString(), QStringLiteral("Café"));
        QCOMPARE(into[1].toMap().value("title").toString(), QStringLiteral("Untitled"));
        QCOMPARE(into[2].toMap().value("title").toString(), QStringLiteral("a new note"));
        QCOMPARE(into[2].toMap().value("id").toInt(), 0);
        QCOMPARE(both.into(), std::nullopt);
        both.setIntoId(8);
        QCOMPARE(both.into(), std::optional<int>(8));
        both.setIntoId(99); // not one of the deck's notes: a new note
        QCOMPARE(both.into(), std::nullopt);
    }

    void committingSendsTheKeptPhrasesInOrder()
    {
        KeepProbe probe;
        ByteSheet sheet(lesson(4), QStringLiteral("de"),
                        {NoteSummary{.id = 3, .title = QStringLiteral("Café")}}, probe.operation());
        QSignalSpy landed(&sheet, &ByteSheet::landed);
        QSignalSpy closed(&sheet, &ByteSheet::closed);

        testsupport::await(sheet.commit()); // nothing kept: nothing sent
        QCOMPARE(probe.calls, 0);
        QCOMPARE(closed.size(), 0);

        sheet.setFate(3, Fate::Card);
        sheet.setFate(1, Fate::Note);
        sheet.setFate(0, Fate::Card);
        sheet.setContext(true);
        sheet.setIntoId(3);
        testsupport::await(sheet.commit());
        QCOMPARE(probe.calls, 1);
        QCOMPARE(probe.kept, (QList<Kept>{Kept{.at = 0, .card = true}, Kept{.at = 1, .card = false},
                                          Kept{.at = 3, .card = true}}));
        QVERIFY(probe.context);
        QCOMPARE(probe.into, std::optional<int>(3));
        QCOMPARE(landed.size(), 1);
        QCOMPARE(landed[0][0].value<Landed>().cards.first().id, 40);
        QCOMPARE(closed.size(), 1);
        QVERIFY(!sheet.working());
    }

    void aFailedKeepKeepsTheChoices()
    {
        KeepProbe probe;
        probe.failWith = QStringLiteral("The deck is gone.");
        ByteSheet sheet(lesson(2), {}, {}, probe.operation());
        sheet.setFate(1, Fate::Card);
        QSignalSpy closed(&sheet, &ByteSheet::closed);
        testsupport::await(sheet.commit());
        QCOMPARE(sheet.trouble(), QStringLiteral("The deck is gone."));
        QCOMPARE(closed.size(), 0);
        QVERIFY(!sheet.working());
        QCOMPARE(sheet.fates(), (QList<Fate>{Fate::Bin, Fate::Card}));
        QCOMPARE(sheet.keepLabel(), QStringLiteral("Keep 1, write 1 card"));

        probe.failWith.reset();
        testsupport::await(sheet.commit());
        QCOMPARE(sheet.trouble(), QString());
        QCOMPARE(closed.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestByteSheet)
#include "tst_bytesheet.moc"
