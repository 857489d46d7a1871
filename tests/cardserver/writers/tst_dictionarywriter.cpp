#include "skipunlessci.h"
#include "writers/dictionarywriter.h"

#include <QFile>
#include <QJsonArray>
#include <QtTest>
#include <thread>

using namespace cardserver;

namespace {

struct Recorded {
    QStringList order;
    QHash<QString, QString> texts;
    QHash<QString, int> counts;
    CardProgress progress()
    {
        return {[this](const QString &f, const QString &v) {
                    order.append(f);
                    texts.insert(f, v);
                },
                [this](const QString &f, int n) {
                    order.append(f);
                    counts.insert(f, n);
                }};
    }
};

bool installed(const char *pair)
{
    return QFile::exists(QStringLiteral("/usr/share/dictd/freedict-%1.index").arg(pair));
}

const Languages kGerman{"de", "en"};

} // namespace

class TestDictionaryWriter : public QObject {
    Q_OBJECT
    DictionaryWriter writer;
private slots:
    void initTestCase()
    {
        if (!installed("deu-eng") || !installed("fra-eng") || !installed("spa-eng"))
            ORVEL_SKIP_UNLESS_CI("the FreeDict dictionaries (dict-freedict-deu-eng, -fra-eng and "
                                 "-spa-eng) are not installed");
    }

    void writesHundWithEveryFieldInOrder()
    {
        Recorded r;
        const WrittenCard card = writer.writeCard(kGerman, "Hund", r.progress());
        QCOMPARE(card["term"].toString(), "Hund");
        QCOMPARE(card["reading"].toString(), "hˈʊnt");
        QCOMPARE(card["part_of_speech"].toString(), "noun");
        QCOMPARE(card["gender"].toString(), "der");
        // "dawg" is an eye-dialect spelling: among the other words with its note, as are the
        // other senses; "zool." names a subject, not a usage.
        QCOMPARE(card["translation"].toString(), "dog");
        const QString definition = card["definition"].toString();
        QVERIFY2(definition.startsWith("Also: dawg (used to represent American speech); "),
                 qPrintable(definition));
        QVERIFY2(definition.contains("mine car"), qPrintable(definition));
        QCOMPARE(card["usage_notes"].toString(), "");
        const QJsonArray examples = card["examples"].toArray();
        QVERIFY(examples.size() >= 2);
        QVERIFY(examples.contains(QJsonObject{
            {"sentence", "einen Hund abrichten"}, {"translation", "train a dog"}, {"note", ""}}));
        const QJsonArray related = card["related"].toArray();
        QVERIFY(related.contains(
            QJsonObject{{"word", "Haushund"}, {"translation", ""}, {"relation", "see also"}}));
        QVERIFY(!related.contains(
            QJsonObject{{"word", "Hund"}, {"translation", ""}, {"relation", "see also"}}));
        QCOMPARE(card["conjugations"].toArray().size(), 0);

        QCOMPARE(r.order, (QStringList{"term", "reading", "part_of_speech", "gender", "translation",
                                       "definition", "examples", "related", "conjugations"}));
        QCOMPARE(r.texts["translation"], "dog");
        QCOMPARE(r.counts["examples"], examples.size());
        QCOMPARE(r.counts["related"], related.size());
        QCOMPARE(r.counts["conjugations"], 0);
        // Lower case finds the same card.
        QCOMPARE(writer.writeCard(kGerman, "  hund ", {})["term"].toString(), "Hund");
    }

    void writesVerbsAndAdjectives()
    {
        const WrittenCard gehen = writer.writeCard(kGerman, "gehen", {});
        QCOMPARE(gehen["term"].toString(), "gehen"); // the verb, not the noun "Gehen"
        QVERIFY(gehen["part_of_speech"].toString().contains("verb"));
        QCOMPARE(gehen["gender"].toString(), "");
        QCOMPARE(gehen["translation"].toString(), "go");
        QVERIFY(gehen["examples"].toArray().size() >= 3);
        const QJsonArray tables = gehen["conjugations"].toArray();
        QVERIFY(tables.size() >= 2);
        QCOMPARE(tables[0]["tense"].toString(), "Present");
        QVERIFY(QJsonDocument(tables).toJson().contains("gegangen"));

        const WrittenCard noun = writer.writeCard(kGerman, "Gehen", {});
        QCOMPARE(noun["gender"].toString(), "das");

        const WrittenCard schoen = writer.writeCard(kGerman, "schön", {});
        QCOMPARE(schoen["part_of_speech"].toString(), "adjective");
        QVERIFY(!schoen["translation"].toString().isEmpty());
        QVERIFY(schoen["definition"].toString().contains("beautiful") ||
                schoen["translation"].toString().contains("beautiful"));
    }

    void writesOtherLanguages()
    {
        Recorded r;
        const WrittenCard chien = writer.writeCard({"fr", "en"}, "chien", r.progress());
        QCOMPARE(chien["term"].toString(), "chien");
        QCOMPARE(chien["translation"].toString(), "dog");
        QCOMPARE(chien["gender"].toString(), "le");
        QCOMPARE(chien["part_of_speech"].toString(), "noun");
        QCOMPARE(chien["examples"].toArray().size(), 0);
        QCOMPARE(r.counts["examples"], 0);
        QVERIFY(!r.texts.contains("usage_notes")); // nothing to say, nothing reported

        QCOMPARE(writer.writeCard({"es", "en"}, "casa", {})["reading"].toString(), "kˈasa");
    }

    void fallsBackFromPhraseToWordAndEspeakReading()
    {
        // The phrase is not an entry; its first content word is.
        const WrittenCard card = writer.writeCard(kGerman, "der Hund bellt", {});
        QCOMPARE(card["term"].toString(), "Hund");
        // An entry without IPA gets espeak-ng's reading.
        const WrittenCard casa = writer.writeCard({"it", "en"}, "cane", {});
        QVERIFY(!casa["reading"].toString().isEmpty());
    }

    void refusesWhatItCannotWrite()
    {
        try {
            writer.writeCard(kGerman, "Qwxzrtpl", {});
            QFAIL("an unknown word was written");
        } catch (const WriterError &e) {
            QCOMPARE(e.status(), 422);
            QCOMPARE(e.message(), "No entry for “Qwxzrtpl” in the German–English dictionary.");
        }
        try {
            writer.writeCard({"ja", "en"}, "犬", {});
            QFAIL("a language without a dictionary was written");
        } catch (const WriterError &e) {
            QCOMPARE(e.status(), 422);
            QVERIFY(e.message().contains("Japanese–English"));
        }
        QVERIFY_THROWS_EXCEPTION(WriterError, writer.writeCard(kGerman, "   ", {}));

        for (const auto &call : std::initializer_list<std::function<void()>>{
                 [&] { writer.byte(kGerman, "greetings"); },
                 [&] { writer.deepen(kGerman, "Hallo", {}, 1); },
                 [&] { writer.compose(kGerman, "mnemonic", "Hund"); },
                 [&] { writer.compose(kGerman, "conj", "Hund"); }}) {
            try {
                call();
                QFAIL("a language-model task succeeded");
            } catch (const WriterError &e) {
                QCOMPARE(e.status(), 503);
                QVERIFY2(e.message().contains("language model") &&
                             e.message().contains("--writer llm --llm-url URL --llm-model NAME"),
                         qPrintable(e.message()));
            }
        }
    }

    void composesConjugationLinesFromTheData()
    {
        const QStringList lines = writer.compose(kGerman, "conj", "essen");
        QVERIFY(lines.contains("Simple past: ich/er/sie aß, wir/sie aßen"));
        QVERIFY(lines.last().startsWith("Participles: present essend, past gegessen"));
    }

    void extractsCandidatesFromAText()
    {
        const QString text = "Der Hund schläft im Garten. Die Katze sieht den Hund! "
                             "Morgen gehen wir 2 Stunden spazieren.";
        QList<QJsonObject> streamed;
        const QJsonArray all =
            writer.extract(kGerman, text, [&](const QJsonObject &c) { streamed.append(c); });
        QCOMPARE(all.size(), streamed.size());
        QStringList terms;
        for (const QJsonObject &c : streamed)
            terms.append(c["term"].toString());
        QCOMPARE(terms.count("Hund"), 1); // duplicates once
        QVERIFY(!terms.contains("der") && !terms.contains("im") && !terms.contains("2"));
        QVERIFY(terms.contains("Katze"));
        QVERIFY(terms.contains("Garten"));
        const QJsonObject hund = streamed[terms.indexOf("Hund")];
        QCOMPARE(hund["seen_as"].toString(), "Hund");
        QCOMPARE(hund["sentence"].toString(), "Der Hund schläft im Garten.");
        QCOMPARE(hund["gloss"].toString(), "dog");
        QCOMPARE(hund["level"].toString(), "common");
        // An inflected form is offered as its dictionary form.
        QVERIFY(terms.contains("sehen"));
        QCOMPARE(streamed[terms.indexOf("sehen")]["seen_as"].toString(), "sieht");
        for (const QJsonObject &c : streamed) {
            QVERIFY(!c["gloss"].toString().isEmpty());
            QVERIFY(c["level"] == "common" || c["level"] == "rare");
        }
        QCOMPARE(streamed.last()["sentence"].toString(), "Morgen gehen wir 2 Stunden spazieren.");

        // Only the first 20,000 characters are read.
        const QString longText = QString(30000, u'x') + " Hund";
        QVERIFY(writer.extract(kGerman, QString(20000, u' ') + "Hund", {}).isEmpty());
        QVERIFY(writer.extract(kGerman, longText, {}).isEmpty());
    }

    void writesFromManyThreadsAtOnce()
    {
        // A fresh writer: the threads race to load the index, then share its chunk cache.
        DictionaryWriter fresh;
        const QStringList words{"Hund", "gehen", "schön", "Katze", "Haus", "Baum", "Zeit", "Hund"};
        QList<WrittenCard> cards(words.size());
        std::vector<std::thread> threads;
        for (qsizetype i = 0; i < words.size(); ++i)
            threads.emplace_back([&, i] { cards[i] = fresh.writeCard(kGerman, words[i], {}); });
        for (auto &t : threads)
            t.join();
        for (qsizetype i = 0; i < words.size(); ++i)
            QCOMPARE(cards[i], writer.writeCard(kGerman, words[i], {}));
    }

    void annotatesALine()
    {
        const QJsonArray notes = writer.annotateLine(kGerman, "Der Hund schläft.", {});
        QVERIFY(notes.contains(
            QJsonObject{{"kind", "gloss"}, {"span", "Hund"}, {"body", "dog"}, {"term", "Hund"}}));
        for (const QJsonValue &n : notes)
            QVERIFY(n["span"].toString() != "Der");
        const QJsonArray forms = writer.annotateLine(kGerman, "Die Katze sieht ihn.", {});
        QVERIFY(forms.contains(QJsonObject{
            {"kind", "gloss"}, {"span", "sieht"}, {"body", "views"}, {"term", "sehen"}}));
        QCOMPARE(writer.annotateLine(kGerman, "Qwxzrtpl vbnmq", {}).size(), 0);
        QCOMPARE(writer.annotateLine(kGerman, "  ", {}).size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestDictionaryWriter)
#include "tst_dictionarywriter.moc"
