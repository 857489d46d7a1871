#include "records/card.h"

#include <QTextBoundaryFinder>

namespace orvel {

namespace {

// Characters as the learner sees them (grapheme clusters), not UTF-16 units.
qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

} // namespace

QString Card::article() const
{
    // Only spaces are trimmed; the first word is then taken at any white space.
    qsizetype begin = 0;
    qsizetype end = gender.size();
    while (begin < end && gender[begin] == u' ')
        ++begin;
    while (end > begin && gender[end - 1] == u' ')
        --end;
    const QStringView trimmed = QStringView(gender).sliced(begin, end - begin);

    qsizetype start = 0;
    while (start < trimmed.size() && trimmed[start].isSpace())
        ++start;
    qsizetype stop = start;
    while (stop < trimmed.size() && !trimmed[stop].isSpace())
        ++stop;
    const QString word = trimmed.sliced(start, stop - start).toString();

    if (word.isEmpty() || word.endsWith(u'.'))
        return {};
    const qsizetype length = characterCount(word);
    if (length >= 4)
        return {};
    if (length == 1) {
        const QString code = word.toLower();
        if (code == u"m" || code == u"f" || code == u"n" || code == u"c")
            return {};
    }
    if (term.toLower().startsWith(word.toLower()))
        return {};
    return word;
}

} // namespace orvel
