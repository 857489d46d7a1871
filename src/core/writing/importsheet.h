#pragma once

#include "records/card.h"
#include "writing/importcandidates.h"
#include "writing/passed.h"

#include <functional>
#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;
class StreamReply;

// Adding cards from a pasted text, in three stages. Paste: the learner pastes what they are
// reading and asks the server to find the words worth a card. Choose: the words come back ticked
// (specialist words unticked) and the learner picks. Writing: the server writes the chosen
// words one after another while the sheet counts them; each card is handed on as it arrives.
// The server finishes a batch whether or not anyone listens, so closing the sheet stops nothing.
class ImportSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("An import sheet is opened by the deck's composer")
    Q_PROPERTY(Stage stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(int deckId READ deckId CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString characterCount READ characterCount NOTIFY textChanged)
    Q_PROPERTY(bool canFind READ canFind NOTIFY canFindChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY subtitleChanged)
    Q_PROPERTY(QString unreadNotice READ unreadNotice NOTIFY foundChanged)
    Q_PROPERTY(QString skippedNotice READ skippedNotice NOTIFY foundChanged)
    Q_PROPERTY(orvel::ImportCandidates *candidates READ candidates CONSTANT)
    Q_PROPERTY(QString writeLabel READ writeLabel NOTIFY writeLabelChanged)
    Q_PROPERTY(int total READ total NOTIFY progressChanged)
    Q_PROPERTY(int done READ done NOTIFY progressChanged)
    Q_PROPERTY(bool finished READ finished NOTIFY progressChanged)
    Q_PROPERTY(int writtenCount READ writtenCount NOTIFY progressChanged)
    Q_PROPERTY(QString writingTerm READ writingTerm NOTIFY progressChanged)
    Q_PROPERTY(QVariantList writtenCards READ writtenCards NOTIFY progressChanged)
    Q_PROPERTY(QVariantList skips READ skips NOTIFY progressChanged)
    Q_PROPERTY(QVariantList failures READ failures NOTIFY progressChanged)
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)
public:
    enum class Stage { Paste, Choose, Writing };
    Q_ENUM(Stage)

    // Receives the cards written, as they arrive, so the deck's list can show them.
    using Wrote = std::function<void(const QList<Card> &)>;

    // For the deck `deckId`, whose language is named `languageName` in the texts, starting with
    // `seed` as the text. The client comes from the installed services.
    ImportSheet(int deckId, QString languageName, QString seed, Wrote wrote,
                QObject *parent = nullptr);
    ~ImportSheet() override;

    Stage stage() const { return m_stage; }
    int deckId() const { return m_deckId; }
    QString title() const;
    QString placeholder() const;
    QString text() const { return m_text; }
    void setText(const QString &text);
    // "1 character", "120 characters": the text's characters, counted as the learner sees them
    // (a letter outside the basic plane counts once).
    QString characterCount() const;
    bool canFind() const;
    bool busy() const { return m_busy; }
    QString trouble() const { return m_trouble; }
    // What the sheet says under its title, for the stage it is at.
    QString subtitle() const;
    // "Read the first 20,000 characters; N to go" when the server left some unread, else empty.
    QString unreadNotice() const;
    // "N already in the deck" when words were left out for that, else empty.
    QString skippedNotice() const;
    ImportCandidates *candidates() const { return m_candidates; }
    QString summary() const { return m_summary; }
    int skipped() const { return m_skipped; }
    int unread() const { return m_unread; }
    QString writeLabel() const;
    int total() const { return m_total; }
    int done() const { return m_done; }
    // The batch is over (finished, or its stream broke): nothing is pending any more.
    bool finished() const { return m_stage == Stage::Writing && !m_busy; }
    int writtenCount() const { return int(m_written.size()); }
    const QList<Card> &written() const { return m_written; }
    // The word being written just now, until the batch is over.
    QString writingTerm() const { return m_writingTerm; }
    const QList<Passed> &passed() const { return m_passed; }
    // The cards written so far, newest first: each {term, translation}.
    QVariantList writtenCards() const;
    // The words passed over on purpose, and those that failed: each {term, why}.
    QVariantList skips() const { return passedWords(false); }
    QVariantList failures() const { return passedWords(true); }
    QVariantMap texts() const;

    // Asks the server for the words of the text; on success the sheet moves on to choosing.
    Q_INVOKABLE void find();
    QCoro::Task<> findTask();
    // Writes the chosen words, in the server's order.
    Q_INVOKABLE void write();
    QCoro::Task<> writeTask();
    // From choosing back to the text, which is kept.
    Q_INVOKABLE void back();
    // Closes the sheet; a batch being written goes on, and its cards are still handed on.
    Q_INVOKABLE void close();

signals:
    void stageChanged();
    void textChanged();
    void canFindChanged();
    void busyChanged();
    void troubleChanged();
    void subtitleChanged();
    void foundChanged();
    void writeLabelChanged();
    void progressChanged();
    // The sheet was closed: its view goes away; the object may live on until its batch ends.
    void closed();
    // The sheet has nothing more to do (closed, and no batch still being read).
    void over();

private:
    QVariantList passedWords(bool failed) const;
    // Makes a change that may start or stop the sheet being able to find words, and says so.
    void changeFinding(const std::function<void()> &change);
    void setStage(Stage stage);
    void setBusy(bool busy);
    void setTrouble(const QString &trouble);
    void setFound(const QString &summary, int skipped, int unread);
    void pass(const QString &term, const QString &why, bool failed);
    void cancelStream();

    APIClient &m_api;
    const int m_deckId;
    const QString m_languageName;
    const Wrote m_wrote;
    Stage m_stage = Stage::Paste;
    QString m_text;
    bool m_busy = false;
    bool m_closed = false;
    QString m_trouble;
    QString m_summary;
    ImportCandidates *m_candidates;
    int m_skipped = 0;
    int m_unread = 0;
    int m_total = 0;
    int m_done = 0;
    QString m_writingTerm;
    QList<Card> m_written;
    QList<Passed> m_passed;
    QPointer<StreamReply> m_stream;
    // Shared with the running stream readers, which outlive nothing but may wake after the sheet
    // is gone.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace orvel
