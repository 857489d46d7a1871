// The dictionary writer against the FreeDict dictionaries Debian installs: for twenty everyday
// words of each language the card leads with the everyday translation, keeps dialect and slang
// words out of it, and takes its usage note only from the sense it shows.
#include "skipunlessci.h"
#include "writers/dictionary.h"
#include "writers/dictionarywriter.h"
#include "writers/dictlabels.h"

#include <QFile>
#include <QtTest>

using namespace cardserver;

namespace {

// Where scripts/install-deps puts them; ORVEL_TEST_DICTIONARIES points elsewhere.
const QString kFolder =
    qEnvironmentVariable("ORVEL_TEST_DICTIONARIES", QStringLiteral("/usr/share/dictd"));

const QHash<QString, QString> kPairs = {
    {"de", "deu-eng"}, {"fr", "fra-eng"}, {"es", "spa-eng"},
    {"it", "ita-eng"}, {"pt", "por-eng"}, {"nl", "nld-eng"},
};

// Word → the translation a learner expects first. Every one is in its dictionary; words whose
// dictionary lists a rarer meaning or a dialect word first without marking it ("madre": "bed,
// watercourse" before "mother"; "enfant": "bairn, child") are left out, as nothing in the data
// tells those apart.
const QList<std::tuple<const char *, const char *, const char *>> kWords = {
    {"de", "Hund", "dog"},       {"de", "Katze", "cat"},      {"de", "Haus", "house"},
    {"de", "Baum", "tree"},      {"de", "Wasser", "water"},   {"de", "Stuhl", "chair"},
    {"de", "Fenster", "window"}, {"de", "Zimmer", "room"},    {"de", "Kind", "child"},
    {"de", "Mutter", "mother"},  {"de", "Vater", "father"},   {"de", "Tag", "day"},
    {"de", "Kleid", "dress"},    {"de", "Wand", "wall"},      {"de", "Ei", "egg"},
    {"de", "Zug", "train"},      {"de", "Arbeit", "work"},    {"de", "essen", "eat"},
    {"de", "schlafen", "sleep"}, {"de", "gehen", "go"},

    {"fr", "chien", "dog"},      {"fr", "chat", "cat"},       {"fr", "maison", "house"},
    {"fr", "arbre", "tree"},     {"fr", "eau", "water"},      {"fr", "pain", "bread"},
    {"fr", "livre", "book"},     {"fr", "chaise", "chair"},   {"fr", "oiseau", "bird"},
    {"fr", "pomme", "apple"},    {"fr", "mère", "mother"},    {"fr", "père", "father"},
    {"fr", "soleil", "sun"},     {"fr", "fenêtre", "window"}, {"fr", "porte", "door"},
    {"fr", "école", "school"},   {"fr", "lait", "milk"},      {"fr", "année", "year"},
    {"fr", "nuit", "night"},     {"fr", "cheval", "horse"},

    {"es", "perro", "dog"},      {"es", "gato", "cat"},       {"es", "casa", "house"},
    {"es", "árbol", "tree"},     {"es", "agua", "water"},     {"es", "pan", "bread"},
    {"es", "libro", "book"},     {"es", "mesa", "table"},     {"es", "silla", "chair"},
    {"es", "coche", "car"},      {"es", "pájaro", "bird"},    {"es", "manzana", "apple"},
    {"es", "padre", "father"},   {"es", "sol", "sun"},        {"es", "ventana", "window"},
    {"es", "escuela", "school"}, {"es", "leche", "milk"},     {"es", "noche", "night"},
    {"es", "caballo", "horse"},  {"es", "dinero", "money"},

    {"it", "cane", "dog"},       {"it", "gatto", "cat"},      {"it", "casa", "house"},
    {"it", "albero", "tree"},    {"it", "acqua", "water"},    {"it", "pane", "bread"},
    {"it", "libro", "book"},     {"it", "tavolo", "table"},   {"it", "sedia", "chair"},
    {"it", "uccello", "bird"},   {"it", "mela", "apple"},     {"it", "madre", "mother"},
    {"it", "padre", "father"},   {"it", "sole", "sun"},       {"it", "finestra", "window"},
    {"it", "porta", "door"},     {"it", "scuola", "school"},  {"it", "latte", "milk"},
    {"it", "cavallo", "horse"},  {"it", "treno", "train"},

    {"pt", "cão", "dog"},        {"pt", "gato", "cat"},       {"pt", "casa", "house"},
    {"pt", "árvore", "tree"},    {"pt", "água", "water"},     {"pt", "pão", "bread"},
    {"pt", "livro", "book"},     {"pt", "cadeira", "chair"},  {"pt", "carro", "car"},
    {"pt", "pássaro", "bird"},   {"pt", "maçã", "apple"},     {"pt", "mãe", "mother"},
    {"pt", "pai", "father"},     {"pt", "sol", "sun"},        {"pt", "janela", "window"},
    {"pt", "escola", "school"},  {"pt", "leite", "milk"},     {"pt", "noite", "night"},
    {"pt", "peixe", "fish"},     {"pt", "comboio", "train"},

    {"nl", "hond", "dog"},       {"nl", "kat", "cat"},        {"nl", "huis", "house"},
    {"nl", "boom", "tree"},      {"nl", "water", "water"},    {"nl", "brood", "bread"},
    {"nl", "boek", "book"},      {"nl", "stoel", "chair"},    {"nl", "auto", "car"},
    {"nl", "vogel", "bird"},     {"nl", "moeder", "mother"},  {"nl", "vader", "father"},
    {"nl", "zon", "sun"},        {"nl", "raam", "window"},    {"nl", "deur", "door"},
    {"nl", "melk", "milk"},      {"nl", "nacht", "night"},    {"nl", "vis", "fish"},
    {"nl", "berg", "mountain"},  {"nl", "trein", "train"},
};

QString stem(const QString &language)
{
    return kFolder + QStringLiteral("/freedict-") + kPairs.value(language);
}

// Why the language's dictionary cannot be read; empty when it can.
QString missing(const QString &language)
{
    if (QFile::exists(stem(language) + ".index") && QFile::exists(stem(language) + ".dict.dz"))
        return {};
    return QStringLiteral("the FreeDict dictionary %1 is not installed in %2 (package "
                          "dict-freedict-%1, installed by scripts/install-deps)")
        .arg(kPairs.value(language), kFolder);
}

// A translation with a stylistic, regional or dated label, or a note on its form ("dawg":
// "used to represent American speech").
bool marked(const DictTranslation &t)
{
    static const QStringList labels{
        "coll.",   "slang", "vulg.", "pej.", "humor.", "formal", "poet.", "dated",
        "archaic", "obs.",  "rare",  "Sc.",  "Ir.",    "Austr.", "NZ",    "Northern English",
        "dialect"};
    static const QRegularExpression form(
        "speech|spelling|slang|colloquial|dated|archaic|obsolete|rare|old-fashioned|offensive");
    return std::any_of(t.labels.cbegin(), t.labels.cend(),
                       [](const QString &l) { return labels.contains(l); }) ||
           std::any_of(t.notes.cbegin(), t.notes.cend(),
                       [](const QString &n) { return form.match(n).hasMatch(); });
}

// A translation with no label but American or British and no note.
bool bare(const DictTranslation &t)
{
    static const QStringList varieties{"Am.", "Br."};
    return t.notes.isEmpty() && std::all_of(t.labels.cbegin(), t.labels.cend(),
                                            [](const QString &l) { return varieties.contains(l); });
}

// Whether `sentences` (usage notes joined by spaces) holds `note` as one of its sentences.
bool holdsSentence(const QString &sentences, QString note)
{
    note = note.trimmed();
    if (note.isEmpty())
        return false;
    note[0] = note[0].toUpper();
    if (!note.endsWith(u'.'))
        note.append(u'.');
    return sentences == note || sentences.startsWith(note + u' ') ||
           sentences.endsWith(u' ' + note) || sentences.contains(u' ' + note + u' ');
}

} // namespace

class TestDictionaryRanking : public QObject {
    Q_OBJECT
    DictionaryWriter writer{kFolder};
    QHash<QString, std::shared_ptr<Dictionary>> dictionaries;

private slots:
    void leadsWithTheEverydayTranslation_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("expected");
        for (const auto &[language, word, expected] : kWords)
            QTest::addRow("%s %s", language, word) << language << word << expected;
    }

    void leadsWithTheEverydayTranslation()
    {
        QFETCH(QString, language);
        QFETCH(QString, word);
        QFETCH(QString, expected);
        if (const QString why = missing(language); !why.isEmpty())
            ORVEL_SKIP_UNLESS_CI(why);

        const WrittenCard card = writer.writeCard({language, "en"}, word, {});
        const QStringList shown = card["translation"].toString().split(", ");
        QCOMPARE(shown.first(), expected);

        // What the dictionary says, to check the card against: the senses that give the shown
        // translation, and everything else.
        auto &dictionary = dictionaries[language];
        if (!dictionary)
            dictionary = std::make_shared<Dictionary>(stem(language));
        QList<DictSense> chosen, others;
        for (const DictEntry &e : dictionary->lookup(word))
            for (const DictSense &s : e.senses)
                (s.words().contains(expected) ? chosen : others).append(s);
        QVERIFY(!chosen.isEmpty());

        // No slang, dialect or eye-dialect word of the shown sense among the shown translations,
        // unless it has nothing plainer.
        for (const DictSense &s : std::as_const(chosen)) {
            const bool hasBare = std::any_of(s.translations.cbegin(), s.translations.cend(),
                                             [](const DictTranslation &t) { return bare(t); });
            for (const DictTranslation &t : s.translations)
                QVERIFY2(!hasBare || !marked(t) || !shown.contains(t.text),
                         qPrintable(t.text + " is shown for " + word));
        }

        // The usage note holds no label or note of another sense or of a single translation,
        // unless the shown sense has it too.
        const QString usage = card["usage_notes"].toString();
        QStringList own;
        for (const DictSense &s : std::as_const(chosen)) {
            for (const QString &l : s.labels)
                own.append(DictLabel::of(l).name);
            own.append(s.notes);
        }
        QStringList foreign;
        for (const DictSense &s : std::as_const(others)) {
            for (const QString &l : s.labels)
                foreign.append(DictLabel::of(l).name);
            foreign.append(s.notes);
        }
        for (const DictSense &s : std::as_const(chosen) + std::as_const(others)) {
            for (const DictTranslation &t : s.translations) {
                for (const QString &l : t.labels)
                    foreign.append(DictLabel::of(l).name);
                foreign.append(t.notes);
            }
        }
        for (const QString &f : std::as_const(foreign))
            QVERIFY2(own.contains(f) || !holdsSentence(usage, f),
                     qPrintable(word + "'s usage note \"" + usage + "\" holds \"" + f + '"'));
    }

    void keepsMarkedWordsAndSensesUnderAlso()
    {
        if (const QString why = missing("de"); !why.isEmpty())
            ORVEL_SKIP_UNLESS_CI(why);
        // (Hund's "dawg" is checked with the rest of its card in tst_dictionarywriter.)
        const WrittenCard kind = writer.writeCard({"de", "en"}, "Kind", {});
        QVERIFY2(kind["definition"].toString().contains("bairn (scottish, northern english)"),
                 qPrintable(kind["definition"].toString()));
        // A sense with a specialist label and examples loses to the everyday one without.
        const WrittenCard stuhl = writer.writeCard({"de", "en"}, "Stuhl", {});
        QVERIFY2(stuhl["definition"].toString().contains("stool, stools, bowel motion (medicine)"),
                 qPrintable(stuhl["definition"].toString()));
        QCOMPARE(stuhl["usage_notes"].toString(), "");
    }
};

QTEST_GUILESS_MAIN(TestDictionaryRanking)
#include "tst_dictionaryranking.moc"
