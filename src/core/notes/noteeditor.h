#pragma once

#include "app/servercalls.h"
#include "notes/draft.h"
#include "notes/draftkeeper.h"
#include "notes/notecommands.h"
#include "notes/notelines.h"
#include "notes/notepictures.h"
#include "notes/notesave.h"
#include "notes/undohistory.h"
#include "records/note.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <qcoro/qcorotask.h>

namespace orvel {

class APIClient;
class AppState;
class Resumer;
class StreamReply;

// The open note: its title and its lines as the learner edits them (the drafts), saved as a
// whole a moment after typing stops, with undo and redo, and the margin the server writes beside
// the lines. The view shows `lines` as a column of one-line fields, each reporting its keys
// through key() and its typing through edit().
//
// Saving: every change restarts the save debounce; a save sends every line with words (or a
// picture), and pairs the ids of the reply with the lines that were sent, by key, whatever the
// learner did meanwhile. Saves never overlap: a change during a save is saved after it. A failed
// save leaves the lines as they are, shows its message as `trouble` and is tried again, after
// the next change and on its own after a growing pause. Until the server has acknowledged them
// the lines are kept in the draft journal on disk, and a note opened with lines there that never
// reached the server gets them back.
//
// Keys (key() answers whether the editor took the key; a key not taken does what the field
// does by itself):
// - Newline adds a line below; DeleteEmpty and DeleteLine remove the line (a note keeps one);
// - Up/CrossUp and Down/CrossDown go to the line above (its end) or below (its start), and are
//   not taken at the first or last line;
// - Tab goes to the end of the next line, BackTab to the end of the line before; neither is
//   taken at the last or first line, so focus moves on out of the note;
// - MoveUp/MoveDown swap the line with its neighbour; not taken at either end;
// - Undo/Redo step through the history; not taken when there is nothing to step to;
// - CommandReturn asks for the margin of the pending lines;
// - Escape closes what the editor has open (the delete question, a card made message, a run's
//   outcome) and is not taken otherwise;
// - PasteImage is not taken here: the view hands a pasted picture to pictures()->place();
// - while the line with the caret reads as a slash command, Up/Down move in its menu, Return
//   picks or runs (commands()), and Escape closes the menu.
class NoteEditor : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int noteId READ noteId NOTIFY noteChanged)
    Q_PROPERTY(bool loaded READ loaded NOTIFY noteChanged)
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString titlePlaceholder READ titlePlaceholder CONSTANT)
    Q_PROPERTY(QString suggestedTitle READ suggestedTitle NOTIFY linesChanged)
    Q_PROPERTY(orvel::NoteLines *lines READ lines CONSTANT)
    Q_PROPERTY(orvel::NoteCommands *commands READ commands CONSTANT)
    Q_PROPERTY(orvel::NotePictures *pictures READ pictures CONSTANT)
    Q_PROPERTY(int caret READ caret NOTIFY caretChanged)
    Q_PROPERTY(LinePlace caretPlace READ caretPlace NOTIFY caretChanged)
    Q_PROPERTY(int caretMoves READ caretMoves NOTIFY caretChanged)
    Q_PROPERTY(bool saving READ saving NOTIFY savingChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(bool localOnly READ localOnly NOTIFY localOnlyChanged)
    Q_PROPERTY(QString localOnlyText READ localOnlyText NOTIFY localOnlyChanged)
    Q_PROPERTY(QString recoveredText READ recoveredText NOTIFY recoveredChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY historyChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY historyChanged)
    Q_PROPERTY(bool confirmingDelete READ confirmingDelete NOTIFY confirmingDeleteChanged)
    Q_PROPERTY(QString deleteQuestion READ deleteQuestion NOTIFY confirmingDeleteChanged)
    Q_PROPERTY(int pendingCount READ pendingCount NOTIFY marginChanged)
    Q_PROPERTY(QString askText READ askText NOTIFY marginChanged)
    Q_PROPERTY(QString askTitle READ askTitle NOTIFY marginChanged)
    Q_PROPERTY(QString allAnnotatedText READ allAnnotatedText NOTIFY marginChanged)
    Q_PROPERTY(QString hint READ hint NOTIFY marginChanged)
    Q_PROPERTY(bool annotating READ annotating NOTIFY runChanged)
    Q_PROPERTY(QString progressText READ progressText NOTIFY runChanged)
    Q_PROPERTY(QString outcome READ outcome NOTIFY runChanged)
    Q_PROPERTY(QString cardMade READ cardMade NOTIFY cardMadeChanged)
    Q_PROPERTY(bool makingCard READ makingCard NOTIFY cardMadeChanged)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString remarkHint READ remarkHint CONSTANT)
    Q_PROPERTY(QString lessDeepText READ lessDeepText CONSTANT)
    Q_PROPERTY(QString makeCardText READ makeCardText CONSTANT)
public:
    enum class LinePlace { Keep, Start, End };
    Q_ENUM(LinePlace)
    enum class LineKey {
        Newline,
        CommandReturn,
        DeleteEmpty,
        DeleteLine,
        Up,
        Down,
        MoveUp,
        MoveDown,
        CrossUp,
        CrossDown,
        Undo,
        Redo,
        Escape,
        PasteImage,
        Tab,
        BackTab,
    };
    Q_ENUM(LineKey)

    explicit NoteEditor(QObject *parent = nullptr);
    ~NoteEditor() override;

    // Shows the note (as the server sent it) for editing; the deck's language is kept for the
    // margin. Lines typed on this computer that never reached the server come back from the
    // journal and are saved.
    void open(const Note &note, int deckId, const QString &language);
    // Shows no note (another deck was opened).
    void close();

    int noteId() const { return m_noteId; }
    int deckId() const { return m_deckId; }
    QString language() const { return m_language; }
    bool loaded() const { return m_loaded; }
    QString title() const { return m_title; }
    void setTitle(const QString &title);
    QString titlePlaceholder() const;
    QString suggestedTitle() const;
    NoteLines *lines() const { return m_lines; }
    NoteCommands *commands() const { return m_commands; }
    NotePictures *pictures() const { return m_pictures; }
    int caret() const { return m_caret; }
    LinePlace caretPlace() const { return m_caretPlace; }
    int caretMoves() const { return m_caretMoves; }
    bool saving() const { return m_saving; }
    bool working() const { return m_calls.working(); }
    bool localOnly() const { return m_localOnly; }
    QString localOnlyText() const;
    QString recoveredText() const { return m_recovered; }
    QString trouble() const { return m_calls.trouble(); }
    bool canUndo() const { return m_history.canUndo() || m_settleTimer.isActive(); }
    bool canRedo() const { return m_history.canRedo(); }
    bool confirmingDelete() const { return m_confirmingDelete; }
    QString deleteQuestion() const;
    int pendingCount() const { return m_lines->pendingCount(); }
    QString askText() const;
    QString askTitle() const;
    QString allAnnotatedText() const;
    QString hint() const;
    bool annotating() const { return m_annotating; }
    QString progressText() const;
    QString outcome() const { return m_outcome; }
    QString cardMade() const { return m_cardMade; }
    bool makingCard() const { return m_makingCard; }
    QString placeholder() const;
    QString remarkHint() const;
    QString lessDeepText() const;
    QString makeCardText() const;

    // A key pressed in the line at `index`; true when the editor took it.
    Q_INVOKABLE bool key(int index, int lineKey);
    // Text pasted into a line: with two or more non-empty lines the first replaces the line's
    // text and the others become lines after it (true); otherwise the field pastes (false).
    Q_INVOKABLE bool pasteText(int index, const QString &text);
    // The line's text as the learner typed it.
    Q_INVOKABLE void edit(int index, const QString &text);
    // The learner put the caret into a line (a click); nothing is saved.
    Q_INVOKABLE void placeCaret(int index);

    // Changes the commands and pictures make, each an undoable, saved change: a line's text
    // (the caret at its end); a line replaced by lines that record where they came from; a
    // line's picture put on or taken off (with the line's text, when given).
    void rewriteLine(int index, const QString &text);
    void replaceLine(int index, const QStringList &texts, const QString &source);
    void setPicture(const QUuid &key, const std::optional<Media> &media,
                    const std::optional<QString> &text = std::nullopt);

    // Margin: the pending lines, every line again, and per remark.
    Q_INVOKABLE void askForMargin();
    Q_INVOKABLE void annotateAll();
    Q_INVOKABLE void deeper(int line, int remark);
    Q_INVOKABLE void lessDeep(int line, int remark);
    // The remark's body as the learner rewrote it; an empty body removes the remark.
    Q_INVOKABLE void editRemark(int line, int remark, const QString &body);
    Q_INVOKABLE void setRemarkKind(int line, int remark, const QString &kind);
    Q_INVOKABLE void makeCard(int line);

    Q_INVOKABLE void requestDelete();
    Q_INVOKABLE void confirmDelete();
    Q_INVOKABLE void cancelDelete();

    // Saves now whatever the server has not acknowledged, waiting for a save under way first;
    // for quitting (the app bounds the wait; the journal keeps what did not make it). True when
    // the server holds the note as it is.
    QCoro::Task<bool> flush();
    // The editors that exist, oldest first, for the app's last save before it quits.
    static const QList<NoteEditor *> &editors();
    // Whether the open note has changes the server has not acknowledged.
    bool unsaved() const { return dirty(); }
    // The margin run over the pending lines (false) or every line (true); ends when the run
    // does.
    QCoro::Task<> annotate(bool all);

signals:
    void noteChanged();
    void titleChanged();
    void linesChanged();
    void caretChanged();
    void savingChanged();
    void workingChanged();
    void localOnlyChanged();
    void recoveredChanged();
    void troubleChanged();
    void historyChanged();
    void confirmingDeleteChanged();
    void marginChanged();
    void runChanged();
    void cardMadeChanged();
    // The server acknowledged a save; the note as it now stands there.
    void saved(const orvel::Note &note);
    // The note was deleted on the server.
    void removed(int noteId);

private:
    NoteSave payload() const { return NoteSave::of(m_title, m_lines->drafts()); }
    JournalEntry journalEntry() const;
    // The journal's drafts in place of the server's lines: lines the journal has without an id
    // take the id of a stored line with the same text that no other line claims, so lines that
    // did reach the server are not made twice.
    QList<Draft> recovered(const JournalEntry &kept, const Note &note) const;
    void setRecovered(const QString &text);

    // Every change of lines or title goes through here: undo record, save and journal debounce.
    void changed();
    void remember();
    void recordNow();
    void settleTyping();
    void setCaret(int index, LinePlace place);
    void setCaretQuietly(int index);
    void addLine(int after);
    void deleteLine(int index);
    bool go(int index, int step, LinePlace place);
    bool reorder(int index, int step);
    bool step(bool back);
    void setSaving(bool saving);
    void setLocalOnly(bool localOnly);
    void setOutcome(const QString &outcome);
    void setCardMade(const QString &text);
    bool dirty() const;
    Moment moment() const;

    // Saves once (never two at once: a save asked for during one is made after it); true when
    // the server acknowledged.
    QCoro::Task<bool> save();
    // Waits for a save under way, then saves if anything is left; true when nothing is left.
    QCoro::Task<bool> settle();
    QCoro::Task<> debouncedSave();
    QCoro::Task<> deleteNote();
    void acknowledge(const NoteSave &sent, const Note &reply);
    // Copies the margin of the server's lines into the drafts with the same ids.
    void takeMargin(const Note &note);
    void scheduleRetry();
    // Wakes whoever waits for the save under way to end.
    void wakeSaveWaiters();

    // Margin as you go: the first line that wants a margin and is not being typed.
    int unread() const;
    bool marginAsYouGo() const;
    void armMarginAsYouGo();
    QCoro::Task<> annotateQuietly();
    QCoro::Task<> deepen(QUuid key, int remark);
    QCoro::Task<> cardFrom(QUuid key);

    APIClient &m_api;
    AppState &m_state;
    ServerCalls m_calls;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    NoteLines *m_lines;
    NoteCommands *m_commands;
    NotePictures *m_pictures;
    DraftKeeper m_keeper{[this] { return journalEntry(); }, [this] { return dirty(); }};
    UndoHistory m_history;

    int m_noteId = 0;
    int m_deckId = 0;
    QString m_language;
    bool m_loaded = false;
    bool m_deleted = false;
    QString m_title;
    int m_caret = -1;
    LinePlace m_caretPlace = LinePlace::Keep;
    int m_caretMoves = 0;

    QTimer m_saveTimer;
    QTimer m_settleTimer;
    QTimer m_marginTimer;
    QTimer m_retryTimer;
    int m_failures = 0;
    bool m_saving = false;
    bool m_saveAgain = false;
    QList<QPointer<Resumer>> m_saveWaiters;
    // What the server holds, as the last acknowledged save sent it (with the ids it gave).
    NoteSave m_acknowledged;
    bool m_localOnly = false;
    QString m_recovered;
    bool m_confirmingDelete = false;

    // Opening another note makes replies to calls about the one before harmless.
    quint64 m_generation = 0;
    QPointer<StreamReply> m_stream;
    bool m_annotating = false;
    bool m_reading = false;
    int m_done = 0;
    int m_total = 0;
    QString m_outcome;
    bool m_makingCard = false;
    QString m_cardMade;
};

} // namespace orvel
