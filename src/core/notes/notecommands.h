#pragma once

#include "app/servercalls.h"
#include "notes/slash.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QUuid>
#include <QVariantList>

namespace orvel {

class APIClient;
class NoteEditor;
class Speech;

// The slash commands of the note editor's lines. While the line with the caret reads as a
// command ("/conj laufen") a menu under it offers the commands that fit; Up and Down choose,
// Return picks one (or runs the command the line names), Escape stops and leaves the line as
// typed. Running: "say" speaks the word, "img" and "gif" open the picture picker, "conj" and
// "mnemonic" have the server write lines that take the command line's place.
class NoteCommands : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The slash commands belong to NoteEditor")
    Q_PROPERTY(int row READ row NOTIFY menuChanged)
    Q_PROPERTY(QVariantList offered READ offered NOTIFY menuChanged)
    Q_PROPERTY(int at READ at NOTIFY menuChanged)
    Q_PROPERTY(bool unknown READ unknown NOTIFY menuChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(bool running READ running NOTIFY runningChanged)
    Q_PROPERTY(QString footer READ footer CONSTANT)
    Q_PROPERTY(QString noSuchCommand READ noSuchCommand CONSTANT)
public:
    explicit NoteCommands(NoteEditor &editor, QObject *parent = nullptr);

    // The line whose menu is open, or -1.
    int row() const;
    // The commands the menu lists: {name ("/img"), hint}.
    QVariantList offered() const;
    int at() const { return m_at; }
    // The line names no command and begins none: the menu says so.
    bool unknown() const;
    // What the last command said: no word to run on, nothing came back, or the server's
    // refusal. Cleared by the next edit.
    QString message() const;
    bool running() const { return m_calls.working(); }
    QString footer() const;
    QString noSuchCommand() const;

    // The editor reports each edit of a line and each move of the caret.
    void lineEdited(int row, const QString &text);
    void caretMoved(int row);
    // Keys while a command line has the caret: Up/Down (+1/-1), Return and Escape; true when
    // taken.
    bool move(int step);
    bool returnPressed(int row);
    bool escape();

    // Picks a command of the menu (a click, or Return on the highlighted row): the line becomes
    // "/name " and what was typed after the verb, with the caret at its end.
    Q_INVOKABLE void pick(int index);
    // Closes the menu; the line stays as typed.
    Q_INVOKABLE void stop();

    // Runs the line's command on its word; for tests and the menu.
    QCoro::Task<> run(int row);

signals:
    void menuChanged();
    void messageChanged();
    void runningChanged();
    void troubleChanged();

private:
    void close();
    void setNotice(const QString &notice);
    QCoro::Task<> compose(QUuid key, Slash::Command command, QString word, QString line);

    NoteEditor &m_editor;
    APIClient &m_api;
    Speech &m_speech;
    ServerCalls m_calls{this, &NoteCommands::runningChanged, &NoteCommands::troubleChanged};
    QUuid m_key; // the line whose menu is open
    std::optional<Slash::Reading> m_reading;
    int m_at = 0;
    QString m_notice;
};

} // namespace orvel
