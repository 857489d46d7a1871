#pragma once
#include "notes/noteline.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>

namespace cardserver {

class Database;

// Notes of a deck and their lines: the Note, NoteSummary and NoteLine records, saving the
// whole line list, the margin of each line and its card. Another account's notes and lines
// answer 404.
class NoteStore {
public:
    explicit NoteStore(Database &db) : m_db(db) {}

    // A line to add at the end of a note.
    struct NewLine {
        QString text;
        QString source;
        QString kind;
        QJsonArray annotations; // kept as a current margin when not empty
    };

    QJsonArray summaries(qint64 deckId);
    QJsonObject note(qint64 userId, qint64 noteId);
    qint64 deckOf(qint64 userId, qint64 noteId);
    QJsonObject create(qint64 deckId, const QString &title, const QString &text);
    qint64 createEmpty(qint64 deckId, const QString &title);
    // Saves the whole line list (NoteDraftLine objects): lines with a known id keep it,
    // others are new, missing ones are deleted, order is the list's. Throws 400/404/422.
    QJsonObject save(qint64 userId, qint64 noteId, const std::optional<QString> &title,
                     const QJsonArray &lines);
    void remove(qint64 userId, qint64 noteId);
    void append(qint64 noteId, const QList<NewLine> &lines);

    QList<NoteLine> lines(qint64 noteId);
    NoteLine line(qint64 userId, qint64 noteId, qint64 lineId);
    // Stores a freshly written margin for the text it was written for.
    void setMargin(qint64 lineId, const QJsonArray &annotations, const QString &forText);
    void setAnnotations(qint64 lineId, const QJsonArray &annotations);
    void setCard(qint64 lineId, qint64 cardId);
    void touch(qint64 noteId);

    QJsonArray searchNotes(qint64 userId, const QString &folded, int limit);
    QJsonArray searchLines(qint64 userId, const QString &folded, int limit);

    // Annotation objects with every key present and of the right type; bad entries are
    // refused with ApiError 400 (`strict`) or dropped.
    static QJsonArray cleanAnnotations(const QJsonValue &value, bool strict);

private:
    Database &m_db;
};

} // namespace cardserver
