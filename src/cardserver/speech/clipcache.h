#pragma once
#include <list>
#include <mutex>
#include <QByteArray>
#include <QHash>
#include <QString>

namespace cardserver {

// Spoken clips kept as files in one folder, under a total size: storing a clip that would pass
// the limit first removes the least recently used ones. Files already in the folder when the
// cache is first used count too, oldest first. Safe to use from several threads; a clip is
// written atomically, so a reader never sees half a file.
class ClipCache {
public:
    ClipCache(QString dir, qint64 maxBytes);

    // The clip stored under `name`, or empty when there is none; a hit counts as a use.
    QByteArray read(const QString &name);
    // Keeps the clip (one larger than the whole limit is not kept).
    void store(const QString &name, const QByteArray &bytes);

    QString dir() const { return m_dir; }
    qint64 bytes() const;

private:
    struct Entry {
        qint64 size = 0;
        std::list<QString>::iterator use;
    };
    void loadLocked();
    void forgetLocked(const QString &name);
    void touchLocked(const QString &name);

    const QString m_dir;
    const qint64 m_maxBytes;
    mutable std::mutex m_lock;
    bool m_loaded = false;
    qint64 m_total = 0;
    std::list<QString> m_uses; // least recently used first
    QHash<QString, Entry> m_entries;
};

} // namespace cardserver
