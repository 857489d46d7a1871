#include "dictzipfile.h"

#include "writer.h"

#include <zlib.h>

namespace cardserver {

namespace {

constexpr quint8 kFlagText = 1, kFlagHeaderCrc = 2, kFlagExtra = 4, kFlagName = 8,
                 kFlagComment = 16;

quint16 le16(const QByteArray &b, qsizetype at)
{
    return quint16(quint8(b[at])) | quint16(quint8(b[at + 1])) << 8;
}

} // namespace

DictzipFile::DictzipFile(const QString &path) : m_path(path), m_file(path)
{
    Q_UNUSED(kFlagText);
    if (!m_file.open(QIODevice::ReadOnly))
        throw WriterError(QStringLiteral("The dictionary file %1 cannot be read.").arg(path));
    const auto bad = [&](const char *why) {
        return WriterError(QStringLiteral("The dictionary file %1 is not a dictzip file (%2).")
                               .arg(path, QString::fromLatin1(why)));
    };

    QByteArray head = m_file.read(12);
    if (head.size() < 12 || quint8(head[0]) != 0x1f || quint8(head[1]) != 0x8b || head[2] != 8)
        throw bad("no gzip header");
    const quint8 flags = quint8(head[3]);
    if (!(flags & kFlagExtra))
        throw bad("no extra field");
    const int extraLength = le16(head, 10);
    const QByteArray extra = m_file.read(extraLength);
    if (extra.size() != extraLength)
        throw bad("truncated extra field");

    // The extra field holds sub-fields (id1 id2 len data); dictzip's is "RA".
    bool found = false;
    for (qsizetype at = 0; at + 4 <= extra.size();) {
        const int length = le16(extra, at + 2);
        if (at + 4 + length > extra.size())
            throw bad("malformed extra field");
        if (extra[at] == 'R' && extra[at + 1] == 'A') {
            const QByteArray ra = extra.mid(at + 4, length);
            if (ra.size() < 6 || le16(ra, 0) != 1)
                throw bad("unknown RA version");
            m_chunkLength = le16(ra, 2);
            const int count = le16(ra, 4);
            if (ra.size() < 6 + 2 * count || m_chunkLength == 0)
                throw bad("truncated chunk table");
            m_chunkSizes.reserve(count);
            for (int i = 0; i < count; ++i)
                m_chunkSizes.append(le16(ra, 6 + 2 * i));
            found = true;
            break;
        }
        at += 4 + length;
    }
    if (!found)
        throw bad("no RA field");

    // Skip the optional zero-terminated name and comment, and the header CRC.
    const auto skipZeroTerminated = [&] {
        char c = 1;
        while (m_file.getChar(&c) && c != 0) {
        }
        if (c != 0)
            throw bad("truncated header");
    };
    if (flags & kFlagName)
        skipZeroTerminated();
    if (flags & kFlagComment)
        skipZeroTerminated();
    if (flags & kFlagHeaderCrc)
        m_file.skip(2);

    qint64 offset = m_file.pos();
    m_chunkOffsets.reserve(m_chunkSizes.size());
    for (int size : std::as_const(m_chunkSizes)) {
        m_chunkOffsets.append(offset);
        offset += size;
    }
    if (offset > m_file.size())
        throw bad("chunks run past the end of the file");
}

QByteArray DictzipFile::read(qint64 offset, qint64 length)
{
    if (offset < 0 || length < 0 || offset + length > uncompressedSize())
        throw WriterError(
            QStringLiteral("An entry lies outside the dictionary file %1.").arg(m_path));
    QByteArray out;
    out.reserve(length);
    std::lock_guard lock(m_mutex);
    qint64 at = offset;
    const qint64 end = offset + length;
    while (at < end) {
        const int index = int(at / m_chunkLength);
        const QByteArray &data = chunk(index);
        const qint64 within = at - qint64(index) * m_chunkLength;
        const qint64 take = std::min<qint64>(end - at, data.size() - within);
        if (take <= 0)
            throw WriterError(
                QStringLiteral("An entry lies outside the dictionary file %1.").arg(m_path));
        out.append(data.constData() + within, take);
        at += take;
    }
    return out;
}

QByteArray DictzipFile::chunk(int index)
{
    constexpr int kKept = 32; // about 2 MB of text for the German dictionary
    for (qsizetype i = 0; i < m_recent.size(); ++i) {
        if (m_recent[i].first == index) {
            if (i > 0)
                m_recent.move(i, 0);
            return m_recent.front().second;
        }
    }
    m_recent.prepend({index, inflateChunk(index)});
    if (m_recent.size() > kKept)
        m_recent.removeLast();
    return m_recent.front().second;
}

QByteArray DictzipFile::inflateChunk(int index)
{
    if (!m_file.seek(m_chunkOffsets[index]))
        throw WriterError(QStringLiteral("The dictionary file %1 cannot be read.").arg(m_path));
    QByteArray packed = m_file.read(m_chunkSizes[index]);
    if (packed.size() != m_chunkSizes[index])
        throw WriterError(QStringLiteral("The dictionary file %1 is truncated.").arg(m_path));

    // Each chunk ends at a full flush, so it inflates on its own as raw deflate data.
    QByteArray out(m_chunkLength, Qt::Uninitialized);
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        throw WriterError(QStringLiteral("Cannot start inflating the dictionary."));
    stream.next_in = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_in = uInt(packed.size());
    stream.next_out = reinterpret_cast<Bytef *>(out.data());
    stream.avail_out = uInt(out.size());
    const int rc = inflate(&stream, Z_SYNC_FLUSH);
    const qsizetype produced = out.size() - qsizetype(stream.avail_out);
    inflateEnd(&stream);
    if (rc != Z_OK && rc != Z_STREAM_END && !(rc == Z_BUF_ERROR && produced > 0))
        throw WriterError(
            QStringLiteral("The dictionary file %1 is damaged (chunk %2 does not inflate).")
                .arg(m_path)
                .arg(index));
    out.truncate(produced);
    return out;
}

} // namespace cardserver
