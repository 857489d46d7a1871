#pragma once
#include <QByteArray>
#include <QString>
#include <QVector>
#include <vector>

namespace cardserver {

// Where one entry lies in the uncompressed dictionary text.
struct DictLocation {
    qint64 offset = 0;
    qint64 length = 0;
    bool operator==(const DictLocation &) const = default;
};

// A dictd index (lines "headword TAB offset TAB length", numbers in dictd's base64), held as a
// sorted table of 64-bit hashes of the lower-cased headwords: 24 bytes per line, so the
// German index of half a million lines stays near 12 MB and a lookup is a binary search.
class DictIndex {
public:
    // Reads and indexes the whole file; throws WriterError(503) when it cannot be read.
    explicit DictIndex(const QString &path);

    // Every entry whose headword equals word, ignoring case, in file order.
    QVector<DictLocation> find(const QString &word) const;
    qsizetype size() const { return qsizetype(m_rows.size()); }

    // dictd's base64 number ("A-Za-z0-9+/", most significant digit first); -1 when malformed.
    static qint64 decodeNumber(QByteArrayView digits);
    // The key a headword is filed under: lower-cased, trimmed.
    static QByteArray key(const QString &word);

private:
    struct Row {
        quint64 hash;
        quint32 order;  // line number, to keep file order among equal keys
        quint32 offset; // dictionaries stay far below 4 GB
        quint32 length;
    };
    std::vector<Row> m_rows;
};

} // namespace cardserver
