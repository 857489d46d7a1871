#include "store/textmatch.h"

namespace cardserver {

TextMatch::TextMatch(StoreAddress::Engine engine, const QString &folded) : m_engine(engine)
{
    if (engine == StoreAddress::Engine::Sqlite) {
        m_value = folded;
        return;
    }
    m_value.reserve(folded.size() + 8);
    m_value += '%';
    for (const QChar c : folded) {
        if (c == '\\' || c == '%' || c == '_')
            m_value += '\\';
        m_value += c;
    }
    m_value += '%';
}

QString TextMatch::on(const QString &column) const
{
    if (m_engine == StoreAddress::Engine::Sqlite)
        return QStringLiteral("instr(%1, ?) > 0").arg(column);
    return QStringLiteral("%1 LIKE ? ESCAPE '\\'").arg(column);
}

} // namespace cardserver
