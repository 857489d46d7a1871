#pragma once

#include <QString>
#include <QStringList>

namespace orvel {

// A typed query ready for matching: folded (case and diacritics, no locale) and split at the
// space character only, so punctuation and tabs stay inside its words. Made once per list;
// every candidate text is folded and split afresh on each match.
class PaletteQuery {
public:
    explicit PaletteQuery(const QString &query);

    // No words: everything matches.
    bool isEmpty() const { return m_words.isEmpty(); }
    const QStringList &words() const { return m_words; }

    // True when every query word starts one of the text's words (by whole characters, with
    // canonical equivalence). The text's words are its runs of letters and numbers; anything
    // else separates them. No infix matches: "ew" does not find "New".
    bool matches(const QString &text) const;
    // Whether the text's first word starts with the query's first word (false when either has
    // none): such a command or page leads the list.
    bool leads(const QString &text) const;

private:
    QStringList m_words;
};

// Text folded as foldText() folds it, faster for the Latin alphabets (a table per character).
QString paletteFold(const QString &text);

// The one matching rule of every palette list: PaletteQuery(query).matches(text).
bool paletteMatches(const QString &text, const QString &query);

} // namespace orvel
