#pragma once

#include "app/servercalls.h"
#include "records/byte.h"
#include "records/kept.h"
#include "records/landed.h"
#include "records/notesummary.h"

#include <functional>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>
#include <QVariantMap>

namespace orvel {

// A short lesson offered to the learner, who decides for each phrase whether it goes (bin),
// becomes a line of a note, or becomes a card; nothing is kept until they commit. The sheet's
// owner (the deck's composer) gives the keep operation, which sends the choices to the server.
class ByteSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A lesson sheet is opened by the deck's composer")
    Q_PROPERTY(orvel::Byte byte READ byte CONSTANT)
    Q_PROPERTY(QString language READ language CONSTANT)
    Q_PROPERTY(QVariantList phrases READ phrases NOTIFY fatesChanged)
    Q_PROPERTY(QVariantList intoChoices READ intoChoices CONSTANT)
    Q_PROPERTY(int into READ intoId WRITE setIntoId NOTIFY intoChanged)
    Q_PROPERTY(bool context READ context WRITE setContext NOTIFY contextChanged)
    Q_PROPERTY(bool offersContext READ offersContext CONSTANT)
    Q_PROPERTY(QString contextLabel READ contextLabel CONSTANT)
    Q_PROPERTY(int kept READ kept NOTIFY fatesChanged)
    Q_PROPERTY(int cards READ cards NOTIFY fatesChanged)
    Q_PROPERTY(QString keepLabel READ keepLabel NOTIFY fatesChanged)
    Q_PROPERTY(QString keepHint READ keepHint NOTIFY fatesChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)
public:
    // What becomes of one phrase.
    enum class Fate { Bin, Note, Card };
    Q_ENUM(Fate)

    // The keep operation: the kept phrases, whether the idea and correction go along, and the
    // note that receives the lines (none: a new note). It throws ServerError on failure.
    using Keep = std::function<QCoro::Task<Landed>(QList<Kept>, bool, std::optional<int>)>;

    ByteSheet(Byte byte, QString language, QList<NoteSummary> notes, Keep keep,
              QObject *parent = nullptr);
    ~ByteSheet() override;

    const Byte &byte() const { return m_byte; }
    QString language() const { return m_language; }
    const QList<NoteSummary> &notes() const { return m_notes; }

    // Each phrase with its text, reading, meaning, when-to-use and fate (as a Fate value).
    QVariantList phrases() const;
    QList<Fate> fates() const { return m_fates; }
    Fate fate(int at) const;
    // Sets one phrase's fate; an index outside the phrases is ignored.
    Q_INVOKABLE void setFate(int at, orvel::ByteSheet::Fate fate);
    // Moves one phrase on to its next fate: bin, note, card, bin…
    Q_INVOKABLE void cycleFate(int at);

    // "Into": the deck's notes by title ("Untitled" for none) and "a new note" (id 0).
    QVariantList intoChoices() const;
    std::optional<int> into() const { return m_into; }
    int intoId() const { return m_into.value_or(0); }
    // 0 (or an id that is not one of the deck's notes) means a new note.
    void setIntoId(int id);

    bool context() const { return m_context; }
    void setContext(bool context);
    // Whether the lesson has an idea or a correction to take along.
    bool offersContext() const;
    // "the idea too", "the correction too", "the idea and the correction too".
    QString contextLabel() const;

    int kept() const;
    int cards() const;
    QString keepLabel() const;
    // "nothing kept yet" while every phrase is on bin, else empty.
    QString keepHint() const;
    // The phrases kept, in phrase order.
    QList<Kept> keptList() const;

    bool working() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }
    // The sheet's fixed wording by name: byte, pattern, remember, whatToRemember, hearIt, into,
    // cancel, and the fate buttons bin, note and card.
    static QVariantMap texts();

    // Sends the choices (nothing is sent while every phrase is on bin). On success the sheet
    // reports what landed and closes; on failure it shows the message and keeps the choices.
    // Ignored while a commit is on its way.
    QCoro::Task<> commit();
    Q_INVOKABLE void keep();
    // Closes without keeping anything.
    Q_INVOKABLE void dismiss();

signals:
    void fatesChanged();
    void intoChanged();
    void contextChanged();
    void workingChanged();
    void troubleChanged();
    // The server kept the choices: the note and the new cards.
    void landed(const orvel::Landed &landed);
    // The sheet is done (kept, or dismissed).
    void closed();

private:
    Byte m_byte;
    QString m_language;
    QList<NoteSummary> m_notes;
    Keep m_keep;
    QList<Fate> m_fates;
    bool m_context = false;
    std::optional<int> m_into;
    ServerCalls m_calls{this, &ByteSheet::workingChanged, &ByteSheet::troubleChanged};
};

} // namespace orvel
