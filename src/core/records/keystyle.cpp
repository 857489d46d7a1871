#include "records/keystyle.h"

namespace orvel::json {

QString snakeCase(QStringView camel)
{
    // Keep leading and trailing underscores; only the word part in between is converted.
    qsizetype begin = 0;
    while (begin < camel.size() && camel[begin] == u'_')
        ++begin;
    qsizetype end = camel.size();
    while (end > begin && camel[end - 1] == u'_')
        --end;

    QString out;
    out.reserve(camel.size() + 4);
    out += camel.first(begin);
    for (qsizetype i = begin; i < end; ++i) {
        const QChar c = camel[i];
        if (c.isUpper() && i > begin) {
            // A word starts at an upper-case letter that follows a lower-case one, and at the
            // last capital of a run that is followed by a lower-case letter ("URLString").
            const bool afterLower = !camel[i - 1].isUpper() && camel[i - 1] != u'_';
            const bool endsRun = camel[i - 1].isUpper() && i + 1 < end && camel[i + 1].isLower();
            if (afterLower || endsRun)
                out += u'_';
        }
        out += c.toLower();
    }
    out += camel.sliced(end);
    return out;
}

} // namespace orvel::json
