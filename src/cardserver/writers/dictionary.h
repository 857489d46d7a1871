#pragma once
#include "dictentry.h"
#include "dictindex.h"
#include "dictzipfile.h"

#include <memory>
#include <mutex>
#include <QList>
#include <QString>

namespace cardserver {

// One installed FreeDict dictionary (freedict-<src>-<dst>.index and .dict.dz). The index is read
// on the first lookup, not before, so that opening every installed dictionary costs nothing;
// after that lookups are a binary search and the inflation of the entry's chunk.
class Dictionary {
public:
    // stem: the path without ".index" / ".dict.dz"
    explicit Dictionary(QString stem);

    // Every entry filed under word (case ignored), in file order. Throws WriterError(503) when
    // the dictionary's files cannot be read.
    QList<DictEntry> lookup(const QString &word);
    // Loads the index now (used to warm up, and by benchmarks).
    void load();
    bool loaded() const;
    // Lines of the index (loads it first).
    qsizetype headwordCount();

private:
    QString m_stem;
    mutable std::mutex m_mutex;
    std::shared_ptr<const DictIndex> m_index;
    std::shared_ptr<DictzipFile> m_data;
};

} // namespace cardserver
