#include "dictionary.h"

#include "writer.h"

namespace cardserver {

Dictionary::Dictionary(QString stem) : m_stem(std::move(stem)) {}

void Dictionary::load()
{
    std::lock_guard lock(m_mutex);
    if (m_index)
        return;
    // A failure leaves nothing behind, so the next lookup tries again.
    auto data = std::make_shared<DictzipFile>(m_stem + QStringLiteral(".dict.dz"));
    auto index = std::make_shared<const DictIndex>(m_stem + QStringLiteral(".index"));
    m_data = std::move(data);
    m_index = std::move(index);
}

bool Dictionary::loaded() const
{
    std::lock_guard lock(m_mutex);
    return bool(m_index);
}

qsizetype Dictionary::headwordCount()
{
    load();
    std::lock_guard lock(m_mutex);
    return m_index->size();
}

QList<DictEntry> Dictionary::lookup(const QString &word)
{
    load();
    std::shared_ptr<const DictIndex> index;
    std::shared_ptr<DictzipFile> data;
    {
        std::lock_guard lock(m_mutex);
        index = m_index;
        data = m_data;
    }
    QList<DictEntry> out;
    if (word.trimmed().isEmpty())
        return out;
    for (const DictLocation &at : index->find(word)) {
        DictEntry entry = DictEntry::parse(QString::fromUtf8(data->read(at.offset, at.length)));
        if (!entry.headword.isEmpty() && !entry.senses.isEmpty())
            out.append(std::move(entry));
    }
    return out;
}

} // namespace cardserver
