#include "eventlinereader.h"

namespace orvel {

QList<QByteArray> EventLineReader::feed(const QByteArray &bytes)
{
    QList<QByteArray> out;
    const char *data = bytes.constData();
    const qsizetype size = bytes.size();
    qsizetype start = 0;
    for (qsizetype i = 0; i < size; ++i) {
        const char c = data[i];
        if (c != '\n' && c != '\r')
            continue;
        m_line.append(data + start, i - start);
        start = i + 1;
        if (c == '\n')
            endLine(out);
    }
    m_line.append(data + start, size - start);
    return out;
}

void EventLineReader::endLine(QList<QByteArray> &out)
{
    static const QByteArray prefix("data:");
    if (m_line.startsWith(prefix)) {
        qsizetype from = prefix.size();
        if (from < m_line.size() && m_line.at(from) == ' ')
            ++from;
        out.append(m_line.mid(from));
    }
    m_line.clear();
}

} // namespace orvel
