#include "palette/palettequery.h"

#include "app/textfold.h"

#include <algorithm>
#include <QTextBoundaryFinder>
#include <QVarLengthArray>

namespace orvel {

namespace {

// Characters below this fold one by one through a table: Latin letters with their accents,
// precomposed, with no combining marks, each a character (grapheme cluster) of its own.
constexpr char16_t tableEnd = 0x250;

struct FoldTable {
    QString folded[tableEnd];
    // Whether every character of the folded form is also below tableEnd.
    bool inTable[tableEnd];

    FoldTable()
    {
        for (char16_t c = 0; c < tableEnd; ++c) {
            folded[c] = foldText(QString(QChar(c)));
            inTable[c] = std::all_of(folded[c].cbegin(), folded[c].cend(),
                                     [](QChar f) { return f.unicode() < tableEnd; });
        }
    }
};

const FoldTable &foldTable()
{
    static const FoldTable table;
    return table;
}

// Whether every character of the text folds through the table.
bool foldsByTable(QStringView text)
{
    const FoldTable &table = foldTable();
    for (const QChar c : text)
        if (c.unicode() >= tableEnd || !table.inTable[c.unicode()])
            return false;
    return true;
}

QString foldByTable(QStringView text)
{
    const FoldTable &table = foldTable();
    qsizetype size = 0;
    for (const QChar c : text)
        size += table.folded[c.unicode()].size();
    QString folded(size, Qt::Uninitialized);
    QChar *out = folded.data();
    for (const QChar c : text) {
        const QString &one = table.folded[c.unicode()];
        for (const QChar f : one)
            *out++ = f;
    }
    return folded;
}

// A candidate text folded and cut into words, knowing where its characters (grapheme
// clusters) begin, so that a prefix can be checked to end on a whole character.
class FoldedWords {
public:
    explicit FoldedWords(const QString &text)
    {
        if (foldsByTable(text)) {
            // Every character is a cluster of its own (CR LF is no word either way).
            m_text = foldByTable(text);
            m_everyBoundary = true;
            const qsizetype size = m_text.size();
            qsizetype start = -1;
            for (qsizetype at = 0; at <= size; ++at)
                closeOrOpen(at < size && m_text.at(at).isLetterOrNumber(), at, start);
            return;
        }
        m_text = foldText(text);
        const qsizetype size = m_text.size();
        m_boundary.resize(size + 1);
        std::fill(m_boundary.begin(), m_boundary.end(), false);
        QTextBoundaryFinder clusters(QTextBoundaryFinder::Grapheme, m_text);
        qsizetype start = -1;
        qsizetype from = 0;
        m_boundary[0] = true;
        while (from < size) {
            qsizetype to = clusters.toNextBoundary();
            if (to < 0 || to > size)
                to = size;
            m_boundary[to] = true;
            closeOrOpen(firstIsLetterOrNumber(from, to), from, start);
            from = to;
        }
        closeOrOpen(false, size, start);
    }

    qsizetype count() const { return m_words.size(); }
    // Whether word `index` starts with `prefix` and the prefix ends on a character boundary.
    bool wordStartsWith(qsizetype index, const QString &prefix) const
    {
        const auto [begin, end] = m_words[index];
        if (prefix.isEmpty() || end - begin < prefix.size())
            return false;
        return QStringView(m_text).sliced(begin, prefix.size()) == prefix &&
               (m_everyBoundary || m_boundary[begin + prefix.size()]);
    }

private:
    bool firstIsLetterOrNumber(qsizetype from, qsizetype to) const
    {
        char32_t c = m_text.at(from).unicode();
        if (QChar::isHighSurrogate(c) && from + 1 < to)
            c = QChar::surrogateToUcs4(m_text.at(from), m_text.at(from + 1));
        return QChar::isLetterOrNumber(c);
    }
    void closeOrOpen(bool inWord, qsizetype at, qsizetype &start)
    {
        if (inWord && start < 0)
            start = at;
        else if (!inWord && start >= 0) {
            m_words.append({start, at});
            start = -1;
        }
    }

    QString m_text;
    // Set when every position is a character boundary (m_boundary is then left empty).
    bool m_everyBoundary = false;
    QVarLengthArray<bool, 64> m_boundary;
    QVarLengthArray<std::pair<qsizetype, qsizetype>, 8> m_words;
};

} // namespace

QString paletteFold(const QString &text)
{
    return foldsByTable(text) ? foldByTable(text) : foldText(text);
}

PaletteQuery::PaletteQuery(const QString &query)
{
    const QString folded = paletteFold(query);
    for (const QStringView piece : QStringView(folded).split(u' ', Qt::SkipEmptyParts))
        m_words.append(piece.toString());
}

bool PaletteQuery::matches(const QString &text) const
{
    if (m_words.isEmpty())
        return true;
    const FoldedWords candidate(text);
    for (const QString &word : m_words) {
        bool found = false;
        for (qsizetype i = 0; i < candidate.count() && !found; ++i)
            found = candidate.wordStartsWith(i, word);
        if (!found)
            return false;
    }
    return true;
}

bool PaletteQuery::leads(const QString &text) const
{
    if (m_words.isEmpty())
        return false;
    const FoldedWords candidate(text);
    return candidate.count() > 0 && candidate.wordStartsWith(0, m_words.first());
}

bool paletteMatches(const QString &text, const QString &query)
{
    return PaletteQuery(query).matches(text);
}

} // namespace orvel
