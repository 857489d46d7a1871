#pragma once

#include <QObject>

namespace orvel {

// Says when the last editor holding a note lets it go (JournalClaim), so that whoever saves
// unclaimed journal entries can take that note's entry over at once rather than on its next
// round. One instance per process (shared()); main thread only.
class ClaimNotice : public QObject {
    Q_OBJECT
public:
    static ClaimNotice &shared();

signals:
    void released(int noteId);

private:
    ClaimNotice() = default;
};

} // namespace orvel
