#include "notes/notetitle.h"

#include <algorithm>

namespace orvel {

namespace {

// Spaces and tabs trimmed from both ends and runs of them inside made one space.
QString collapsed(const QString &text)
{
    QString out;
    out.reserve(text.size());
    bool space = false;
    for (const QChar c : text) {
        if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r') {
            space = !out.isEmpty();
            continue;
        }
        if (space)
            out.append(u' ');
        space = false;
        out.append(c);
    }
    return out;
}

bool trailingPunctuation(QChar c)
{
    return c == u' ' || c == u',' || c == u';' || c == u':' || c == u'-' || c == u'–' ||
           c == u'—' || c == u'.';
}

} // namespace

QString suggestedTitle(const QList<Draft> &drafts, int maxLength)
{
    for (const Draft &draft : drafts) {
        if (!draft.kept())
            continue;
        const QString text = collapsed(draft.text);
        if (text.isEmpty())
            return {}; // a picture without words names nothing
        if (text.startsWith(u'/'))
            continue; // a command, not something the learner heard
        if (text.size() <= maxLength)
            return text;
        // Room for the ellipsis; cut at the last space when it leaves at least half the room,
        // else mid-word (one very long word), never between the halves of a surrogate pair.
        const int room = std::max(1, maxLength - 1);
        qsizetype cut = text.lastIndexOf(u' ', room);
        if (cut < room / 2)
            cut = room;
        if (cut > 0 && text.at(cut - 1).isHighSurrogate())
            --cut;
        QString title = text.left(cut);
        while (!title.isEmpty() && trailingPunctuation(title.back()))
            title.chop(1);
        return title + u'…';
    }
    return {};
}

} // namespace orvel
