#include "speech/clipcache.h"

#include <algorithm>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace cardserver {

ClipCache::ClipCache(QString dir, qint64 maxBytes) : m_dir(std::move(dir)), m_maxBytes(maxBytes) {}

qint64 ClipCache::bytes() const
{
    std::lock_guard guard(m_lock);
    return m_total;
}

void ClipCache::loadLocked()
{
    if (m_loaded)
        return;
    m_loaded = true;
    QFileInfoList files = QDir(m_dir).entryInfoList({QStringLiteral("*.mp3")}, QDir::Files);
    std::sort(files.begin(), files.end(), [](const QFileInfo &a, const QFileInfo &b) {
        return a.lastModified() < b.lastModified();
    });
    for (const QFileInfo &f : files) {
        m_uses.push_back(f.fileName());
        m_entries.insert(f.fileName(), {f.size(), std::prev(m_uses.end())});
        m_total += f.size();
    }
}

void ClipCache::forgetLocked(const QString &name)
{
    const auto it = m_entries.find(name);
    if (it == m_entries.end())
        return;
    m_total -= it->size;
    m_uses.erase(it->use);
    m_entries.erase(it);
}

void ClipCache::touchLocked(const QString &name)
{
    const auto it = m_entries.find(name);
    if (it != m_entries.end())
        m_uses.splice(m_uses.end(), m_uses, it->use);
}

QByteArray ClipCache::read(const QString &name)
{
    QFile file(QDir(m_dir).filePath(name));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    std::lock_guard guard(m_lock);
    loadLocked();
    if (bytes.isEmpty())
        forgetLocked(name); // removed behind the cache's back
    else
        touchLocked(name);
    return bytes;
}

void ClipCache::store(const QString &name, const QByteArray &bytes)
{
    if (bytes.isEmpty() || bytes.size() > m_maxBytes || !QDir().mkpath(m_dir))
        return; // an unwritable cache costs speed, not the clip
    std::lock_guard guard(m_lock);
    loadLocked();
    forgetLocked(name);
    while (!m_uses.empty() && m_total + bytes.size() > m_maxBytes) {
        const QString oldest = m_uses.front();
        QFile::remove(QDir(m_dir).filePath(oldest));
        forgetLocked(oldest);
    }
    QSaveFile out(QDir(m_dir).filePath(name));
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return;
    m_uses.push_back(name);
    m_entries.insert(name, {bytes.size(), std::prev(m_uses.end())});
    m_total += bytes.size();
}

} // namespace cardserver
