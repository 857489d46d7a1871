#pragma once

namespace orvel {

// An open editor's hold on its note's journal entry. While any claim on a note is alive, the
// background replay leaves that note's entry alone: the editor is the one saving it, and a second
// save racing the editor's would be wasted at best and reorder saves at worst.
//
// Claims are counted (two editors on the same note both hold it) and released when destroyed or
// moved from. A default-made claim holds nothing, so an editor can keep one as a member and
// assign a real one when it opens a note. Used on the main thread only.
class JournalClaim {
public:
    JournalClaim() = default;
    explicit JournalClaim(int noteId);
    ~JournalClaim();

    JournalClaim(const JournalClaim &) = delete;
    JournalClaim &operator=(const JournalClaim &) = delete;
    JournalClaim(JournalClaim &&other) noexcept;
    JournalClaim &operator=(JournalClaim &&other) noexcept;

    // The claimed note, or 0 when this claim holds nothing.
    int noteId() const { return m_noteId; }
    // Gives the claim up early (the destructor then does nothing).
    void release();

    // Whether an editor holds a claim on the note.
    static bool claimed(int noteId);

private:
    int m_noteId = 0;
};

} // namespace orvel
