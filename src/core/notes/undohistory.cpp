#include "notes/undohistory.h"

namespace orvel {

void UndoHistory::reset(Moment moment)
{
    m_past.clear();
    m_future.clear();
    m_settled = std::move(moment);
}

bool UndoHistory::record(Moment moment)
{
    if (m_settled && m_settled->sameAs(moment)) {
        m_settled->caret = moment.caret;
        return false;
    }
    if (m_settled) {
        m_past.append(std::move(*m_settled));
        while (m_past.size() > m_limit)
            m_past.removeFirst();
    }
    m_future.clear();
    m_settled = std::move(moment);
    return true;
}

std::optional<Moment> UndoHistory::undo()
{
    if (m_past.isEmpty())
        return std::nullopt;
    if (m_settled)
        m_future.append(std::move(*m_settled));
    m_settled = m_past.takeLast();
    return m_settled;
}

std::optional<Moment> UndoHistory::redo()
{
    if (m_future.isEmpty())
        return std::nullopt;
    if (m_settled)
        m_past.append(std::move(*m_settled));
    m_settled = m_future.takeLast();
    return m_settled;
}

void UndoHistory::patch(const std::function<void(Draft &)> &change)
{
    const auto apply = [&change](Moment &moment) {
        for (Draft &draft : moment.drafts)
            change(draft);
    };
    for (Moment &moment : m_past)
        apply(moment);
    for (Moment &moment : m_future)
        apply(moment);
    if (m_settled)
        apply(*m_settled);
}

} // namespace orvel
