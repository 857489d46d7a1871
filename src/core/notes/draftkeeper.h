#pragma once

#include "notes/draftjournal.h"
#include "notes/journalclaim.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>

namespace orvel {

// Keeps the open note's drafts in the draft journal for as long as the server has not
// acknowledged them: written a moment after each change (off the keystroke's path) and before
// each save, forgotten once the server holds the note as it is.
class DraftKeeper : public QObject {
    Q_OBJECT
public:
    // `current` gives the note's entry as it stands; `needed` says whether the server lacks it.
    DraftKeeper(std::function<JournalEntry()> current, std::function<bool()> needed,
                QObject *parent = nullptr);
    ~DraftKeeper() override;

    // Starts keeping the note, holding its claim so the background replay leaves its entry to
    // this keeper; gives the entry the journal already holds for it, if any.
    std::optional<JournalEntry> open(int noteId);
    // Keeps the note shortly (the debounce restarts).
    void soon();
    // Keeps the note now when the server lacks it, or forgets the entry when it does not; false
    // when the journal could not be written (`error()` says why).
    bool now();
    // The note is gone from the server: its entry goes too, and the claim.
    void drop();
    // The editor leaves the note: what the server lacks is kept now, and the claim is let go so
    // the background replay takes the entry over.
    void leave();
    bool holds() const { return m_kept.has_value(); }
    QString error() const { return m_journal.error(); }

signals:
    // Writing the journal failed or works again (`error()`).
    void errorChanged();

private:
    void forgetKept();

    DraftJournal m_journal;
    std::function<JournalEntry()> m_current;
    std::function<bool()> m_needed;
    QTimer m_timer;
    int m_noteId = 0;
    JournalClaim m_claim;
    // The entry this keeper last wrote, as it is on disk.
    std::optional<JournalEntry> m_kept;
    bool m_failed = false;
};

} // namespace orvel
