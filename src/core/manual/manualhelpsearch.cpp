#include "manual/manualhelpsearch.h"

#include "app/appcommands.h"
#include "manual/manualbook.h"

#include <QVariantMap>

namespace orvel {

ManualHelpSearch::ManualHelpSearch(QObject *parent) : QObject(parent) {}

void ManualHelpSearch::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    emit queryChanged();
}

void ManualHelpSearch::setLimit(int limit)
{
    if (m_limit == limit || limit < 0)
        return;
    m_limit = limit;
    emit queryChanged();
}

QVariantList ManualHelpSearch::results() const
{
    QVariantList list;
    if (m_query.trimmed().isEmpty())
        return list;
    for (const ManualPage &page : ManualBook::search(m_query)) {
        if (list.size() >= m_limit)
            break;
        list.append(QVariantMap{{QStringLiteral("id"), page.id},
                                {QStringLiteral("question"), page.question}});
    }
    return list;
}

void ManualHelpSearch::open(const QString &id)
{
    if (ManualBook::page(id))
        AppCommands::shared().post(AppCommand::Manual, id);
}

} // namespace orvel
