#pragma once

#include "app/servercalls.h"
#include "notes/draftjournal.h"

#include <qcoro/qcorotask.h>
#include <QObject>
#include <QString>
#include <QTimer>

namespace orvel {

class APIClient;
class AppState;

// Saves the notes whose lines the journal still holds because their save never got through: a
// lost connection, a server that was down, an app that quit or was killed before the save. It
// runs when the learner signs in, when an editor lets a note go (ClaimNotice), and every
// `Timings::journalRetry` while signed in, saving each journaled note that no open editor claims
// (JournalClaim) and removing its entry once the server acknowledged that content. A note the
// server no longer has is made again in its deck so that its lines survive. Entries that cannot
// be saved stay for the next run.
class JournalReplay : public QObject {
    Q_OBJECT
    Q_PROPERTY(int waiting READ waiting NOTIFY waitingChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)

public:
    explicit JournalReplay(QObject *parent = nullptr);

    // How many notes have lines on disk that the server has not acknowledged.
    int waiting() const { return m_waiting; }
    bool working() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }

    // Starts a run now when signed in. While a run is going, it runs once more when it ends
    // instead (entries may have been written meanwhile); runs never overlap.
    Q_INVOKABLE void replay();

signals:
    void waitingChanged();
    void workingChanged();
    void troubleChanged();
    // A run (with any asked for while it went) has ended.
    void replayed();

private:
    // What saving one entry came to.
    enum class Outcome { Saved, Kept, Unreachable, Gone };

    QCoro::Task<> replaying();
    QCoro::Task<Outcome> save(JournalEntry entry);
    QCoro::Task<Outcome> recreate(JournalEntry entry);
    void authChanged();
    void tick();
    void refreshWaiting();

    AppState &m_state;
    APIClient &m_api;
    DraftJournal m_journal;
    QTimer m_retry;
    bool m_running = false;
    bool m_again = false;
    int m_waiting = 0;
    ServerCalls m_calls{this, &JournalReplay::workingChanged, &JournalReplay::troubleChanged};
};

} // namespace orvel
