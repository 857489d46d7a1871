#include "library/learnerinput.h"

namespace orvel {

QString trimSpacesAndTabs(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && (text[start] == u' ' || text[start] == u'\t'))
        ++start;
    while (end > start && (text[end - 1] == u' ' || text[end - 1] == u'\t'))
        --end;
    return text.mid(start, end - start);
}

} // namespace orvel
