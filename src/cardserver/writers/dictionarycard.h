#pragma once
#include "dictentry.h"
#include "writer.h"

#include <QList>
#include <QString>

namespace cardserver {

// Turns the dictionary entries of one word into a card: picks the sense a learner most likely
// means (one with examples, without a specialist, stylistic, regional or dated label), shows
// its plain translations, and writes its marked translations and the other senses as the
// definition ("Also: …").
class DictionaryCard {
public:
    // entries: every entry found for the word; language: the code of the studied language.
    DictionaryCard(const QString &language, const QList<DictEntry> &entries);

    QString term() const { return m_term; }
    // The best sense's plain translations, at most `limit` of them, joined with ", ".
    QString gloss(int limit = 3) const;
    // "common" or "rare", from how much the dictionary has to say about the word.
    QString level(bool smallDictionary) const;

    // Writes the card in wire form, reporting each field as it is determined; reading falls back
    // to the given function (espeak-ng) when no entry carries an IPA.
    WrittenCard write(const CardProgress &progress,
                      const std::function<QString(const QString &term)> &readingFallback) const;

    // Scores a sense: examples count most; a specialist field counts against it, and a
    // register, region or period, or having only marked translations, counts more.
    static double score(const DictEntry &entry, const DictSense &sense);

private:
    // score(), less for the entry of a noun's plural beside the noun's own entries.
    double rank(const DictEntry &entry, const DictSense &sense) const;

    QString m_language;
    QString m_term;
    QList<DictEntry> m_entries; // those of the chosen headword
    int m_bestEntry = -1;
    int m_bestSense = -1;
    bool m_singular = false; // some entry is a singular noun
};

} // namespace cardserver
