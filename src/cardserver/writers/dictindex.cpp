#include "dictindex.h"

#include "writer.h"

#include <algorithm>
#include <QFile>

namespace cardserver {

namespace {

quint64 fnv1a(QByteArrayView bytes)
{
    quint64 h = 1469598103934665603ULL;
    for (char c : bytes) {
        h ^= quint8(c);
        h *= 1099511628211ULL;
    }
    return h;
}

// The hash of a headword as it appears in the file, lower-cased and trimmed as key() does; plain
// ASCII (most lines) is folded on the fly without making a string.
quint64 foldedHash(QByteArrayView raw)
{
    for (char c : raw) {
        if (quint8(c) >= 0x80)
            return fnv1a(QString::fromUtf8(raw).trimmed().toLower().toUtf8());
    }
    while (!raw.isEmpty() && quint8(raw.front()) <= ' ')
        raw = raw.sliced(1);
    while (!raw.isEmpty() && quint8(raw.back()) <= ' ')
        raw.chop(1);
    quint64 h = 1469598103934665603ULL;
    for (char c : raw) {
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
        h ^= quint8(c);
        h *= 1099511628211ULL;
    }
    return raw.isEmpty() ? 0 : h;
}

} // namespace

qint64 DictIndex::decodeNumber(QByteArrayView digits)
{
    if (digits.isEmpty() || digits.size() > 10)
        return -1;
    qint64 value = 0;
    for (char c : digits) {
        int d;
        if (c >= 'A' && c <= 'Z')
            d = c - 'A';
        else if (c >= 'a' && c <= 'z')
            d = c - 'a' + 26;
        else if (c >= '0' && c <= '9')
            d = c - '0' + 52;
        else if (c == '+')
            d = 62;
        else if (c == '/')
            d = 63;
        else
            return -1;
        value = value * 64 + d;
    }
    return value;
}

QByteArray DictIndex::key(const QString &word)
{
    return word.trimmed().toLower().toUtf8();
}

DictIndex::DictIndex(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw WriterError(QStringLiteral("The dictionary index %1 cannot be read.").arg(path));
    const QByteArray text = file.readAll();
    m_rows.reserve(size_t(text.count('\n')) + 1);

    quint32 order = 0;
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = text.indexOf('\n', at);
        if (end < 0)
            end = text.size();
        const QByteArrayView line(text.constData() + at, end - at);
        at = end + 1;
        const qsizetype tab2 = line.lastIndexOf('\t');
        const qsizetype tab1 = tab2 > 0 ? line.first(tab2).lastIndexOf('\t') : -1;
        if (tab1 < 0)
            continue;
        const qint64 offset = decodeNumber(line.sliced(tab1 + 1, tab2 - tab1 - 1));
        QByteArrayView lengthDigits = line.sliced(tab2 + 1);
        if (lengthDigits.endsWith('\r'))
            lengthDigits.chop(1);
        const qint64 length = decodeNumber(lengthDigits);
        if (offset < 0 || length <= 0 || offset + length > qint64(UINT32_MAX))
            continue;
        const quint64 hash = foldedHash(line.first(tab1));
        if (hash == 0)
            continue; // an empty headword
        m_rows.push_back({hash, order++, quint32(offset), quint32(length)});
    }
    std::sort(m_rows.begin(), m_rows.end(), [](const Row &a, const Row &b) {
        return a.hash != b.hash ? a.hash < b.hash : a.order < b.order;
    });
}

QVector<DictLocation> DictIndex::find(const QString &word) const
{
    const quint64 h = fnv1a(key(word));
    auto it = std::lower_bound(m_rows.begin(), m_rows.end(), h,
                               [](const Row &row, quint64 value) { return row.hash < value; });
    QVector<DictLocation> out;
    for (; it != m_rows.end() && it->hash == h; ++it)
        out.append({qint64(it->offset), qint64(it->length)});
    return out;
}

} // namespace cardserver
