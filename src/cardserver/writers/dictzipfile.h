#pragma once
#include <mutex>
#include <QByteArray>
#include <QFile>
#include <QPair>
#include <QString>
#include <QVector>

namespace cardserver {

// Random access into a dictzip file (a gzip file whose "RA" extra field lists the compressed size
// of every fixed-size chunk). read() inflates only the chunks that hold the requested bytes, so
// an entry of a 100 MB dictionary costs one or two chunks of about 60 KB. Safe to call from
// several threads; the last chunk inflated is kept, since neighbouring entries share it.
class DictzipFile {
public:
    // Opens and checks the header; throws WriterError(503) when the file is missing or is not
    // dictzip.
    explicit DictzipFile(const QString &path);

    // length bytes of the uncompressed text from offset; throws WriterError when the range lies
    // outside the file or a chunk does not inflate.
    QByteArray read(qint64 offset, qint64 length);

    qint64 uncompressedSize() const { return qint64(m_chunkLength) * m_chunkOffsets.size(); }
    int chunkLength() const { return m_chunkLength; }
    int chunkCount() const { return int(m_chunkOffsets.size()); }

private:
    QByteArray chunk(int index); // called with m_mutex held
    QByteArray inflateChunk(int index);

    QString m_path;
    QFile m_file;
    int m_chunkLength = 0;
    QVector<qint64> m_chunkOffsets; // file offset of each compressed chunk
    QVector<int> m_chunkSizes;      // compressed size of each chunk
    std::mutex m_mutex;
    QVector<QPair<int, QByteArray>> m_recent; // most recently used first
};

} // namespace cardserver
