#pragma once
#include <QList>
#include <QString>
#include <QStringList>

namespace cardserver {

struct DictExample {
    QString sentence;
    QString translation;
    bool operator==(const DictExample &) const = default;
};

// One translation of a sense with the labels written after it ("corf [Br.]") and the notes
// that follow it ("dawg" — "used to represent American speech").
struct DictTranslation {
    QString text;
    QStringList labels;
    QStringList notes;
    bool operator==(const DictTranslation &) const = default;

    // Whether this is an ordinary word for the meaning: no stylistic, regional or dated label
    // and no note calling it a non-standard form. American and British words are plain.
    bool plain() const;
};

// One meaning of an entry: its translations in the dictionary's order, the labels that
// introduce it ("zool.", "ugs.", "Ös."), the notes about the whole of it and its example pairs.
struct DictSense {
    QList<DictTranslation> translations;
    QStringList labels;
    QStringList notes;
    QList<DictExample> examples;

    // The translations' words, in the dictionary's order.
    QStringList words() const;
};

// One FreeDict entry as dictfmt writes it:
//   Hund /hˈʊnt/ <masc, n, sg>
//    [zool.] dog <n>, dawg <n>
//            Note: used to represent American speech
//         "einen Hund abrichten"  - train a dog
//    see: {Hunde}, {Haushund}
//      Synonyms: {Förderwagen}, {Grubenwagen}
// A note belongs to the translation it follows; the translations after a note in the middle
// of the list go on on the note's line ("Note: plane, travel sickness bag <n>, sick bag <n>").
// A note at the end explains the whole sense, unless it calls the last of several
// translations a non-standard form, as the note on "dawg" does.
// Terse dictionaries give just the headword and a line of translations, or numbered senses,
// now and then with a label ("2.  [cul] whisk").
struct DictEntry {
    QString headword;
    QString reading;  // IPA without the slashes; empty when the entry has none
    QStringList tags; // the <…> tags of the headword line: "masc", "n", "sg", "v", "intr", …
    QList<DictSense> senses;
    QStringList synonyms;
    QStringList seeAlso;

    static DictEntry parse(const QString &text);

    // "noun", "verb", "intransitive verb", "adjective", …; empty when the tags say nothing.
    QString partOfSpeech() const;
    // "masc", "fem", "neut", or several joined with "/" ("masc/fem"); empty when not a noun.
    QString genderCode() const;
    int exampleCount() const;
};

} // namespace cardserver
