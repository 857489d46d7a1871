#include "writers/dictentry.h"
#include "writers/dictlabels.h"
#include "writers/genderarticle.h"
#include "writers/germanverbforms.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace cardserver;

static const char *kHund = R"(Hund /hˈʊnt/ <masc, n, sg>
 [zool.] dog <n>, dawg <n>
         Note: used to represent American speech
      "einen Hund abrichten"  - train a dog
      "Schlafende Hunde soll man nicht wecken."  - Let sleeping dogs lie.
 see: {Hunde}, {Haushund}, {Pflegehund}, {knurriger Hund}
   Synonyms: {Förderwagen}, {Grubenwagen}
)";

class TestDictEntry : public QObject {
    Q_OBJECT
private slots:
    void parsesAFullGermanEntry()
    {
        const DictEntry e = DictEntry::parse(QString::fromUtf8(kHund));
        QCOMPARE(e.headword, "Hund");
        QCOMPARE(e.reading, "hˈʊnt");
        QCOMPARE(e.tags, (QStringList{"masc", "n", "sg"}));
        QCOMPARE(e.partOfSpeech(), "noun");
        QCOMPARE(e.genderCode(), "masc");
        QCOMPARE(e.senses.size(), 1);
        const DictSense &s = e.senses.first();
        QCOMPARE(s.words(), (QStringList{"dog", "dawg"}));
        QCOMPARE(s.labels, QStringList{"zool."});
        // The note marks "dawg" as an eye-dialect spelling, not the sense.
        QVERIFY(s.notes.isEmpty());
        QVERIFY(s.translations[0].plain());
        QCOMPARE(s.translations[1].notes, QStringList{"used to represent American speech"});
        QVERIFY(!s.translations[1].plain());
        QCOMPARE(s.examples.size(), 2);
        QCOMPARE(s.examples[0], (DictExample{"einen Hund abrichten", "train a dog"}));
        QCOMPARE(s.examples[1], (DictExample{"Schlafende Hunde soll man nicht wecken.",
                                             "Let sleeping dogs lie."}));
        QCOMPARE(e.seeAlso, (QStringList{"Hunde", "Haushund", "Pflegehund", "knurriger Hund"}));
        QCOMPARE(e.synonyms, (QStringList{"Förderwagen", "Grubenwagen"}));
        QCOMPARE(e.exampleCount(), 2);
    }

    void parsesTerseAndNumberedEntries()
    {
        const DictEntry chien = DictEntry::parse("chien /ʃi/ <n, masc>\ndog\n");
        QCOMPARE(chien.headword, "chien");
        QCOMPARE(chien.reading, "ʃi");
        QCOMPARE(chien.genderCode(), "masc");
        QCOMPARE(chien.senses.size(), 1);
        QCOMPARE(chien.senses[0].words(), QStringList{"dog"});

        const DictEntry aller = DictEntry::parse("aller /ale/ <v>\n1. fare\n2. go, ride, travel\n");
        QCOMPARE(aller.partOfSpeech(), "verb");
        QCOMPARE(aller.senses.size(), 2);
        QCOMPARE(aller.senses[1].words(), (QStringList{"go", "ride", "travel"}));

        // No reading, no tags: still a headword and a sense.
        const DictEntry casa = DictEntry::parse("casa\nhouse\n");
        QCOMPARE(casa.headword, "casa");
        QVERIFY(casa.reading.isEmpty());
        QVERIFY(casa.partOfSpeech().isEmpty());
        QCOMPARE(casa.senses[0].words(), QStringList{"house"});

        // Inline labels and tags leave the translations; commas inside brackets do not split.
        const DictEntry wagen = DictEntry::parse("Hund /hˈʊnt/ <masc, n, sg>\nmine car <n>, corf "
                                                 "<n> [Br.] , cocoa pan (small, old) <n>\n");
        QCOMPARE(wagen.senses[0].words(),
                 (QStringList{"mine car", "corf", "cocoa pan (small, old)"}));
        QVERIFY(wagen.senses[0].labels.isEmpty());
        QCOMPARE(wagen.senses[0].translations[1].labels, QStringList{"Br."});
        QVERIFY(wagen.senses[0].translations[1].plain()); // British English is still plain

        // Notes after the blank line gloss the headword in German; they are not usage notes.
        const DictEntry schoen = DictEntry::parse(
            "schön /ʃˈøːn/ <adj>\nfair <adj>\n         Note: weather\n   Synonym: {heiter}\n\n"
            "         Note: Wetter\n");
        QCOMPARE(schoen.senses[0].notes, QStringList{"weather"});
        QCOMPARE(schoen.synonyms, QStringList{"heiter"});
        QVERIFY(DictEntry::parse("").headword.isEmpty());
    }

    void readsLabelsAndNotesWhereTheyStand_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("headword");
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QStringList>("labels");
        QTest::addColumn<QStringList>("notes");     // about the whole sense
        QTest::addColumn<QStringList>("marked");    // translations that are not plain
        QTest::addColumn<QStringList>("wordNotes"); // "word: note"

        QTest::newRow("a note in the middle, the list going on after it")
            << "Spucktüte /ʃpˈʊktyːtə/ <fem, n, sg>\n [Dt.] air sickness bag <n>\n"
               "         Note: plane, sick bag <n>, barf bag <n> [Am.]  [slang]\n"
            << "Spucktüte" << QStringList{"air sickness bag", "sick bag", "barf bag"}
            << QStringList{"Dt."} << QStringList{} << QStringList{"barf bag"}
            << QStringList{"air sickness bag: plane"};
        QTest::newRow("a closing note explains the sense")
            << "Ach ja! /ˈax jˈɑː/ <int>\nOh yes! <int>, Oh right! <int>\n"
               "         Note: used to show that you have remembered sth.\n"
            << "Ach ja!" << QStringList{"Oh yes!", "Oh right!"} << QStringList{}
            << QStringList{"used to show that you have remembered sth."} << QStringList{}
            << QStringList{};
        QTest::newRow("a register note on the last of several words")
            << "Dichter /dˈɪçtɜ/ <masc, n, sg>\npoet <n>, poetess <n>\n"
               "         Note: rare and slightly affected\n"
            << "Dichter" << QStringList{"poet", "poetess"} << QStringList{} << QStringList{}
            << QStringList{"poetess"} << QStringList{"poetess: rare and slightly affected"};
        QTest::newRow("a register note on the only word marks the sense")
            << "Schankwirtin <fem, n, sg>\nalewife <n>\n         Note: obsolete\n"
            << "Schankwirtin" << QStringList{"alewife"} << QStringList{} << QStringList{"obsolete"}
            << QStringList{} << QStringList{};
        QTest::newRow("an abbreviation after the reading and after a word")
            << "Zimmer /tsˈɪmɜ/ (Zi. /tsˈiː/) <neut, n, sg>\nroom <n>rm,  /ˌɛrˈɛm/\n"
            << "Zimmer" << QStringList{"room"} << QStringList{} << QStringList{} << QStringList{}
            << QStringList{};
        QTest::newRow("the case the headword governs")
            << "Berg /bˈɛɾk/ ([+ nom]) <masc, n, sg>\nheap <n>, pile <n>\n"
            << "Berg" << QStringList{"heap", "pile"} << QStringList{} << QStringList{}
            << QStringList{} << QStringList{};
        QTest::newRow("labels on both sides")
            << "Kind /kˈɪnt/ <neut, n, sg>\nchild <n>, bairn <n> [Sc.]  [Northern English]\n"
            << "Kind" << QStringList{"child", "bairn"} << QStringList{} << QStringList{}
            << QStringList{"bairn"} << QStringList{};
        QTest::newRow("a numbered sense with a label")
            << "batterie /batʀi/ <n, fem>\n2.  [mus] percussion section, drum kit\n"
            << "batterie" << QStringList{"percussion section", "drum kit"} << QStringList{"mus"}
            << QStringList{} << QStringList{} << QStringList{};
    }

    void readsLabelsAndNotesWhereTheyStand()
    {
        QFETCH(QString, text);
        QFETCH(QString, headword);
        QFETCH(QStringList, words);
        QFETCH(QStringList, labels);
        QFETCH(QStringList, notes);
        QFETCH(QStringList, marked);
        QFETCH(QStringList, wordNotes);
        const DictEntry e = DictEntry::parse(text);
        QCOMPARE(e.headword, headword);
        QCOMPARE(e.senses.size(), 1);
        const DictSense &s = e.senses.first();
        QCOMPARE(s.words(), words);
        QCOMPARE(s.labels, labels);
        QCOMPARE(s.notes, notes);
        QStringList notPlain, notesOfWords;
        for (const DictTranslation &t : s.translations) {
            if (!t.plain())
                notPlain.append(t.text);
            for (const QString &n : t.notes)
                notesOfWords.append(t.text + ": " + n);
        }
        QCOMPARE(notPlain, marked);
        QCOMPARE(notesOfWords, wordNotes);
    }

    void tellsRegisterNotesFromExplanations()
    {
        for (const char *note : {"used to represent American speech", "phonetic spelling",
                                 "rare and slightly affected", "Old-fashioned",
                                 "humorously for 'die'", "offensive word", "very rare"})
            QVERIFY2(isRegisterNote(note), note);
        for (const char *note :
             {"of a text", "railway", "affected with combat fatigue",
              "used to show that you have remembered sth.", "plane", "rarely of being bishop"})
            QVERIFY2(!isRegisterNote(note), note);
    }

    void namesPartsOfSpeech()
    {
        const auto pos = [](const char *tags) {
            return DictEntry::parse(QStringLiteral("x <%1>\ny\n").arg(tags)).partOfSpeech();
        };
        QCOMPARE(pos("v, intr"), "intransitive verb");
        QCOMPARE(pos("v, refl"), "reflexive verb");
        QCOMPARE(pos("vt"), "transitive verb");
        QCOMPARE(pos("pl"), "noun (plural)");
        QCOMPARE(pos("fem, n, sg"), "noun");
        QCOMPARE(DictEntry::parse("x <masc, fem, n, sg>\ny\n").genderCode(), "masc/fem");
    }

    void givesEachLanguageItsArticles()
    {
        // Two genders read as both articles, unless the language has one for both.
        QCOMPARE(genderArticle("de", "masc/fem"), "der/die");
        QCOMPARE(genderArticle("nl", "masc/fem"), "de");
        QCOMPARE(genderArticle("nl", "neut"), "het");
        QCOMPARE(genderArticle("de-AT", "neut"), "das"); // a regional code takes its language's
        QCOMPARE(genderArticle("fr", "neut"), "");
        QCOMPARE(genderArticle("de", ""), "");
        QCOMPARE(genderArticle("ja", "masc"), "");
    }

    void readsGermanVerbFormsFromSeeLists()
    {
        const QList<DictEntry> entries{
            DictEntry::parse("essen /ˈɛsn/ <v>\neat <v>\n see: {essend}, {gegessen}, {ich esse}, "
                             "{du isst}, {ich/er/sie aß}, {wir/sie aßen}, {ich/er/sie äße}, "
                             "{iss!}, {auswärts essen}\n"),
            // Forms of other verbs of the same sense are not the verb's own.
            DictEntry::parse(
                "essen /ˈɛsn/ <v>\ndine <v>\n see: {speisend}, {essend}, {gespeist}\n")};
        const QJsonArray tables = germanVerbForms("essen", entries);
        QCOMPARE(tables.size(), 5);
        const auto table = [&](int i) {
            QStringList out;
            for (const QJsonValue &f : tables[i]["forms"].toArray())
                out.append(f["label"].toString() + '=' + f["form"].toString());
            return tables[i]["tense"].toString() + ": " + out.join(", ");
        };
        QCOMPARE(table(0), "Present: ich=esse, du=isst");
        QCOMPARE(table(1), "Simple past: ich/er/sie=aß, wir/sie=aßen");
        QCOMPARE(table(2), "Subjunctive II: ich/er/sie=äße");
        QCOMPARE(table(3), "Imperative: du=iss!");
        QCOMPARE(table(4), "Participles: present=essend, past=gegessen");
        QCOMPARE(tables[0]["note"].toString(), "");

        QVERIFY(germanVerbForms("essen", {entries[1]}).isEmpty());
        QVERIFY(germanVerbForms("Hund", {DictEntry::parse(QString::fromUtf8(kHund))}).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDictEntry)
#include "tst_dictentry.moc"
