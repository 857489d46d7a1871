#pragma once

#include "notes/draft.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace orvel {

// A note's drafts as the journal keeps them until the server has acknowledged them.
struct JournalEntry {
    int noteId = 0;
    // The note's deck, so that a note deleted elsewhere meanwhile can be made again there.
    int deckId = 0;
    QString title{};
    QList<Draft> drafts{};

    bool operator==(const JournalEntry &) const = default;

    // Self-describing JSON, keys and all, so an entry read back restores the same drafts.
    QByteArray encode() const;
    // nullopt for bytes that are not an entry (a torn or foreign file).
    static std::optional<JournalEntry> decode(const QByteArray &bytes);
};

// Lines typed but not yet saved on the server, kept on disk so that neither a lost connection
// nor a killed app loses them: one file per note in a private folder, each written to a
// temporary file, flushed to disk and renamed over the old one, readable by the owner only.
class DraftJournal {
public:
    // The folder the app uses: $XDG_DATA_HOME/orvel/drafts.
    static QString defaultFolder();

    explicit DraftJournal(QString folder = defaultFolder());

    // Writes the entry, replacing the note's previous one. False (and `error()` says why) when
    // it could not be written; the previous entry is then untouched.
    bool keep(const JournalEntry &entry);
    // The note's entry, if one is kept and readable.
    std::optional<JournalEntry> read(int noteId) const;
    // Removes the note's entry, but only if it still holds exactly `acknowledged`: an entry
    // written after the save that was acknowledged stays.
    void forget(int noteId, const JournalEntry &acknowledged);
    // The notes that have entries, lowest id first.
    QList<int> notes() const;

    QString folder() const { return m_folder; }
    QString error() const { return m_error; }

private:
    QString pathFor(int noteId) const;

    QString m_folder;
    QString m_error;
};

} // namespace orvel
