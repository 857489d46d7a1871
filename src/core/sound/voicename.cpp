#include "sound/voicename.h"

namespace orvel {

VoiceName VoiceName::split(const QString &full)
{
    const QString text = full.trimmed();
    // "Name (manner)": the last bracketed part, when something stands before it.
    if (text.endsWith(u')')) {
        const qsizetype open = text.lastIndexOf(QStringLiteral(" ("));
        if (open > 0) {
            const QString manner = text.mid(open + 2, text.size() - open - 3).trimmed();
            if (!manner.isEmpty())
                return {text.left(open).trimmed(), manner};
        }
    }
    // "Name — manner", with an em dash, an en dash or a spaced hyphen.
    for (const QString &separator : {QStringLiteral(" — "), QStringLiteral(" – "),
                                     QStringLiteral(" - "), QStringLiteral(" · ")}) {
        const qsizetype at = text.indexOf(separator);
        if (at > 0) {
            const QString manner = text.mid(at + separator.size()).trimmed();
            if (!manner.isEmpty())
                return {text.left(at).trimmed(), manner};
        }
    }
    return {text, {}};
}

} // namespace orvel
