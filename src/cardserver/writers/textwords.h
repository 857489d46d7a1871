#pragma once
#include <QList>
#include <QString>

namespace cardserver {

// One word of a text, with the sentence it stands in.
struct TextWord {
    QString word;
    QString sentence;
};

// Splits a text into words with Unicode word boundaries (letters of any script, apostrophes
// inside words kept), and knows each language's stop words, which carry no card of their own.
class TextWords {
public:
    // The words of text in order, numbers and punctuation left out.
    static QList<TextWord> split(const QString &text);
    // True for words a learner needs no card for in that language (articles, pronouns, "und").
    static bool isStopWord(const QString &language, const QString &word);
};

} // namespace cardserver
