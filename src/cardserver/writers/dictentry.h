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

// One meaning of an entry: its translations, the domain labels that introduce it ("zool.",
// "techn."), the notes beneath it and its example pairs.
struct DictSense {
    QStringList translations;
    QStringList labels;
    QStringList notes;
    QList<DictExample> examples;
};

// One FreeDict entry as dictfmt writes it:
//   Hund /hˈʊnt/ <masc, n, sg>
//    [zool.] dog <n>, dawg <n>
//            Note: used to represent American speech
//         "einen Hund abrichten"  - train a dog
//    see: {Hunde}, {Haushund}
//      Synonyms: {Förderwagen}, {Grubenwagen}
// Terse dictionaries give just the headword and a line of translations, or numbered senses.
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
