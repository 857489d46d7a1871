#pragma once

#include "notes/draft.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <functional>
#include <optional>

namespace orvel {

// One state of a note the learner can go back to: its lines, its title and the line that held
// the caret (by key, so it is found again after lines moved).
struct Moment {
    QList<Draft> drafts{};
    QString title{};
    std::optional<QUuid> caret{};

    // Two moments are the same step when lines and title agree; where the caret was does not
    // make a step of its own.
    bool sameAs(const Moment &other) const
    {
        return drafts == other.drafts && title == other.title;
    }
};

// The note's undo and redo lists. `settled` is the state last recorded; recording a different
// one pushes it onto the undo list (at most `limit` steps kept) and clears the redo list.
class UndoHistory {
public:
    explicit UndoHistory(int limit = 60) : m_limit(limit) {}

    // Forgets every step and starts from `moment`.
    void reset(Moment moment);
    // Records the state; false when it is the same as the settled one (nothing recorded).
    bool record(Moment moment);
    // The state to go back (or forward) to, which becomes the settled one; nullopt when there
    // is none.
    std::optional<Moment> undo();
    std::optional<Moment> redo();

    bool canUndo() const { return !m_past.isEmpty(); }
    bool canRedo() const { return !m_future.isEmpty(); }
    int undoSteps() const { return int(m_past.size()); }
    const std::optional<Moment> &settled() const { return m_settled; }

    // Applies a change the server made (a line's id, its margin) to every kept state, so that
    // going back does not undo what the server already holds.
    void patch(const std::function<void(Draft &)> &change);

private:
    int m_limit;
    QList<Moment> m_past;
    QList<Moment> m_future;
    std::optional<Moment> m_settled;
};

} // namespace orvel
