#include "notes/notestore.h"

#include "http/apierror.h"
#include "http/requestbody.h"
#include "media/mediastore.h"
#include "store/database.h"
#include "store/sql.h"
#include "store/textmatch.h"
#include "text/clock.h"
#include "text/textfold.h"

#include <QHash>
#include <QJsonDocument>

namespace cardserver {

namespace {

constexpr int MaxLines = 2000;
constexpr int MaxLineLength = 10'000;

QString arrayText(const QJsonArray &a)
{
    return QString::fromUtf8(QJsonDocument(a).toJson(QJsonDocument::Compact));
}

QJsonArray arrayFrom(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).array();
}

const QString LineSelect = QStringLiteral(
    "SELECT l.id, l.note_id, l.ordinal, l.text, l.source, l.kind, l.annotations, "
    "l.annotated_text, l.card_id, l.created_at, m.id, m.file, m.width, m.height, m.origin, "
    "m.source_url, m.author, m.licence, m.title FROM note_lines l LEFT JOIN media m ON m.id = "
    "l.media_id WHERE l.note_id = ? ORDER BY l.ordinal, l.id");

QJsonObject lineFrom(const Sql &q)
{
    const QString text = q.text(3);
    const QJsonArray annotations = arrayFrom(q.text(6));
    const QString annotated = q.text(7);
    QJsonValue media;
    if (!q.isNull(10))
        media =
            MediaStore::record(q.integer(10), q.text(11), int(q.integer(12)), int(q.integer(13)),
                               {q.text(14), q.text(15), q.text(16), q.text(17), q.text(18)});
    return {{"id", q.integer(0)},
            {"note_id", q.integer(1)},
            {"ordinal", q.integer(2)},
            {"text", text},
            {"media", media},
            {"source", q.text(4)},
            {"kind", q.text(5)},
            {"annotations", annotations},
            {"annotated_text", annotated},
            {"state", NoteLine::state(text, annotations, annotated)},
            {"card_id", q.isNull(8) ? QJsonValue() : QJsonValue(q.integer(8))},
            {"created_at", q.text(9)}};
}

QStringList splitText(const QString &text)
{
    QStringList out;
    for (const QString &line : text.split('\n')) {
        QString t = line;
        t.remove('\r');
        if (!t.trimmed().isEmpty())
            out.append(t.trimmed());
    }
    return out;
}

} // namespace

QJsonArray NoteStore::cleanAnnotations(const QJsonValue &value, bool strict)
{
    static const QStringList kinds = {"translation", "gloss", "note", "caution"};
    QJsonArray out;
    if (value.isUndefined() || value.isNull())
        return out;
    if (!value.isArray()) {
        if (strict)
            throw ApiError::badRequest(QStringLiteral("“annotations” must be a list."));
        return out;
    }
    auto text = [&](const QJsonObject &o, const char *key) -> QString {
        const QJsonValue v = o.value(key);
        if (v.isString())
            return v.toString();
        if (!v.isUndefined() && !v.isNull() && strict)
            throw ApiError::badRequest(QStringLiteral("“%1” of a remark must be text.").arg(key));
        return QString();
    };
    for (const QJsonValue &v : value.toArray()) {
        if (!v.isObject()) {
            if (strict)
                throw ApiError::badRequest(QStringLiteral("Each remark must be an object."));
            continue;
        }
        const QJsonObject in = v.toObject();
        QString kind = text(in, "kind");
        if (!kinds.contains(kind))
            kind = QStringLiteral("note");
        QJsonArray deeper;
        for (const QJsonValue &d : in.value("deeper").toArray()) {
            const QJsonObject level = d.toObject();
            deeper.append(QJsonObject{{"level", level.value("level").toInt(deeper.size() + 1)},
                                      {"body", level.value("body").toString()},
                                      {"last", level.value("last").toBool(false)}});
        }
        out.append(QJsonObject{{"kind", kind},
                               {"span", text(in, "span")},
                               {"body", text(in, "body")},
                               {"term", text(in, "term")},
                               {"edited", in.value("edited").toBool(false)},
                               {"deeper", deeper}});
    }
    return out;
}

QJsonArray NoteStore::summaries(qint64 deckId)
{
    // A line is pending when it has words and its margin was not written for its text (the
    // same rule as NoteLine::pending, in SQL so the list takes one query).
    Sql q(m_db, "SELECT n.id, n.title, n.created_at, n.updated_at, COUNT(l.id), "
                "COALESCE(SUM(CASE WHEN trim(l.text, ?) <> '' AND l.annotated_text <> l.text "
                "THEN 1 ELSE 0 END), 0) "
                "FROM notes n LEFT JOIN note_lines l ON l.note_id = n.id WHERE n.deck_id = ? "
                "GROUP BY n.id ORDER BY n.updated_at DESC, n.id DESC");
    q.bind(QStringLiteral(" \t\n\r")).bind(deckId).exec();
    QJsonArray out;
    while (q.next())
        out.append(QJsonObject{{"id", q.integer(0)},
                               {"title", q.text(1)},
                               {"created_at", q.text(2)},
                               {"updated_at", q.text(3)},
                               {"line_count", q.integer(4)},
                               {"pending_count", q.integer(5)}});
    return out;
}

qint64 NoteStore::deckOf(qint64 userId, qint64 noteId)
{
    const qint64 deck = Sql(m_db, "SELECT n.deck_id FROM notes n JOIN decks d ON d.id = "
                                  "n.deck_id WHERE n.id = ? AND d.user_id = ?")
                            .bind(noteId)
                            .bind(userId)
                            .scalar(0);
    if (!deck)
        throw ApiError::notFound(QStringLiteral("That note does not exist."));
    return deck;
}

QJsonObject NoteStore::note(qint64 userId, qint64 noteId)
{
    QJsonObject n;
    {
        Sql q(m_db, "SELECT n.id, n.deck_id, n.title, n.created_at, n.updated_at FROM notes n "
                    "JOIN decks d ON d.id = n.deck_id WHERE n.id = ? AND d.user_id = ?");
        q.bind(noteId).bind(userId).exec();
        if (!q.next())
            throw ApiError::notFound(QStringLiteral("That note does not exist."));
        n = {{"id", q.integer(0)},
             {"deck_id", q.integer(1)},
             {"title", q.text(2)},
             {"created_at", q.text(3)},
             {"updated_at", q.text(4)}};
    }
    QJsonArray out;
    Sql q(m_db, LineSelect);
    q.bind(noteId).exec();
    while (q.next())
        out.append(lineFrom(q));
    n.insert("lines", out);
    return n;
}

qint64 NoteStore::createEmpty(qint64 deckId, const QString &title)
{
    qint64 id = 0;
    m_db.write([&] {
        const QString now = Clock::nowText();
        id = Sql(m_db, "INSERT INTO notes (deck_id, title, title_fold, created_at, updated_at) "
                       "VALUES (?, ?, ?, ?, ?) RETURNING id")
                 .bind(deckId)
                 .bind(title)
                 .bind(TextFold::fold(title))
                 .bind(now)
                 .bind(now)
                 .insertedId();
    });
    return id;
}

QJsonObject NoteStore::create(qint64 deckId, const QString &title, const QString &text)
{
    const QStringList texts = splitText(text);
    if (texts.size() > MaxLines)
        throw ApiError::invalid(QStringLiteral("A note holds at most %1 lines.").arg(MaxLines));
    qint64 id = 0;
    m_db.write([&] {
        id = createEmpty(deckId, title);
        QList<NewLine> add;
        for (const QString &t : texts)
            add.append({t, QString(), QString(), {}});
        append(id, add);
    });
    const qint64 userId = Sql(m_db, "SELECT user_id FROM decks WHERE id = ?").bind(deckId).scalar();
    return note(userId, id);
}

void NoteStore::append(qint64 noteId, const QList<NewLine> &add)
{
    m_db.write([&] {
        qint64 ordinal = Sql(m_db, "SELECT COALESCE(MAX(ordinal) + 1, 0) FROM note_lines WHERE "
                                   "note_id = ?")
                             .bind(noteId)
                             .scalar();
        const QString now = Clock::nowText();
        for (const NewLine &l : add) {
            Sql(m_db, "INSERT INTO note_lines (note_id, ordinal, text, text_fold, source, kind, "
                      "annotations, annotated_text, created_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
                .bind(noteId)
                .bind(ordinal++)
                .bind(l.text)
                .bind(TextFold::fold(l.text))
                .bind(l.source)
                .bind(l.kind)
                .bind(arrayText(l.annotations))
                .bind(l.annotations.isEmpty() ? QString() : l.text)
                .bind(now)
                .exec();
        }
        touch(noteId);
    });
}

QJsonObject NoteStore::save(qint64 userId, qint64 noteId, const std::optional<QString> &title,
                            const QJsonArray &drafts)
{
    if (drafts.size() > MaxLines)
        throw ApiError::invalid(QStringLiteral("A note holds at most %1 lines.").arg(MaxLines));
    struct Draft {
        std::optional<qint64> id;
        QString text;
        std::optional<qint64> mediaId;
        QString source;
        QString kind;
        QJsonArray annotations;
    };
    QList<Draft> list;
    for (const QJsonValue &v : drafts) {
        const QJsonObject o = RequestBody::asObject(v, QStringLiteral("lines[]"));
        Draft d;
        d.id = RequestBody::integerIn(o, "id", "line");
        d.text = RequestBody::stringIn(o, "text", "line");
        d.mediaId = RequestBody::integerIn(o, "media_id", "line");
        d.source = RequestBody::stringIn(o, "source", "line", false);
        d.kind = RequestBody::stringIn(o, "kind", "line", false);
        d.annotations = cleanAnnotations(o.value("annotations"), true);
        if (d.text.size() > MaxLineLength)
            throw ApiError::invalid(
                QStringLiteral("A line holds at most %1 characters.").arg(MaxLineLength));
        list.append(d);
    }

    m_db.write([&] {
        deckOf(userId, noteId);
        QHash<qint64, NoteLine> existing;
        for (const NoteLine &l : lines(noteId))
            existing.insert(l.id, l);
        const QString now = Clock::nowText();
        qint64 ordinal = 0;
        for (const Draft &d : list) {
            if (d.mediaId && !Sql(m_db, "SELECT COUNT(*) FROM media WHERE id = ? AND user_id = ?")
                                  .bind(*d.mediaId)
                                  .bind(userId)
                                  .scalar())
                throw ApiError::notFound(QStringLiteral("That picture does not exist."));
            const QVariant media =
                d.mediaId ? QVariant(*d.mediaId) : QVariant(QMetaType(QMetaType::LongLong));
            if (d.id && existing.contains(*d.id)) {
                const NoteLine old = existing.take(*d.id);
                // The margin stays tied to the text it was written for.
                const QString annotated = !old.annotatedText.isEmpty()
                                              ? old.annotatedText
                                              : (d.annotations.isEmpty() ? QString() : d.text);
                Sql(m_db,
                    "UPDATE note_lines SET ordinal = ?, text = ?, text_fold = ?, media_id = "
                    "?, source = ?, kind = ?, annotations = ?, annotated_text = ? WHERE id = ?")
                    .bind(ordinal++)
                    .bind(d.text)
                    .bind(TextFold::fold(d.text))
                    .bind(media)
                    .bind(d.source)
                    .bind(d.kind)
                    .bind(arrayText(d.annotations))
                    .bind(annotated)
                    .bind(*d.id)
                    .exec();
            } else {
                Sql(m_db, "INSERT INTO note_lines (note_id, ordinal, text, text_fold, media_id, "
                          "source, kind, annotations, annotated_text, created_at) VALUES (?, ?, "
                          "?, ?, ?, ?, ?, ?, ?, ?)")
                    .bind(noteId)
                    .bind(ordinal++)
                    .bind(d.text)
                    .bind(TextFold::fold(d.text))
                    .bind(media)
                    .bind(d.source)
                    .bind(d.kind)
                    .bind(arrayText(d.annotations))
                    .bind(d.annotations.isEmpty() ? QString() : d.text)
                    .bind(now)
                    .exec();
            }
        }
        for (const NoteLine &gone : std::as_const(existing))
            Sql(m_db, "DELETE FROM note_lines WHERE id = ?").bind(gone.id).exec();
        if (title)
            Sql(m_db, "UPDATE notes SET title = ?, title_fold = ? WHERE id = ?")
                .bind(*title)
                .bind(TextFold::fold(*title))
                .bind(noteId)
                .exec();
        touch(noteId);
    });
    return note(userId, noteId);
}

void NoteStore::remove(qint64 userId, qint64 noteId)
{
    m_db.write([&] {
        deckOf(userId, noteId);
        Sql(m_db, "DELETE FROM notes WHERE id = ?").bind(noteId).exec();
    });
}

QList<NoteLine> NoteStore::lines(qint64 noteId)
{
    Sql q(m_db, "SELECT id, text, annotations, annotated_text FROM note_lines WHERE note_id = ? "
                "ORDER BY ordinal, id");
    q.bind(noteId).exec();
    QList<NoteLine> out;
    while (q.next())
        out.append({q.integer(0), noteId, q.text(1), arrayFrom(q.text(2)), q.text(3)});
    return out;
}

NoteLine NoteStore::line(qint64 userId, qint64 noteId, qint64 lineId)
{
    deckOf(userId, noteId);
    for (const NoteLine &l : lines(noteId))
        if (l.id == lineId)
            return l;
    throw ApiError::notFound(QStringLiteral("That line does not exist."));
}

void NoteStore::setMargin(qint64 lineId, const QJsonArray &annotations, const QString &forText)
{
    m_db.write([&] {
        Sql(m_db, "UPDATE note_lines SET annotations = ?, annotated_text = ? WHERE id = ?")
            .bind(arrayText(annotations))
            .bind(forText)
            .bind(lineId)
            .exec();
    });
}

void NoteStore::setAnnotations(qint64 lineId, const QJsonArray &annotations)
{
    m_db.write([&] {
        Sql(m_db, "UPDATE note_lines SET annotations = ? WHERE id = ?")
            .bind(arrayText(annotations))
            .bind(lineId)
            .exec();
    });
}

void NoteStore::setCard(qint64 lineId, qint64 cardId)
{
    m_db.write([&] {
        Sql(m_db, "UPDATE note_lines SET card_id = ? WHERE id = ?")
            .bind(cardId)
            .bind(lineId)
            .exec();
    });
}

void NoteStore::touch(qint64 noteId)
{
    m_db.write([&] {
        Sql(m_db, "UPDATE notes SET updated_at = ? WHERE id = ?")
            .bind(Clock::nowText())
            .bind(noteId)
            .exec();
    });
}

QJsonArray NoteStore::searchNotes(qint64 userId, const QString &folded, int limit)
{
    const TextMatch match(m_db.engine(), folded);
    Sql q(m_db, "SELECT n.id, n.deck_id, n.title FROM notes n JOIN decks d ON d.id = n.deck_id "
                "WHERE d.user_id = ? AND " +
                    match.on("n.title_fold") + " ORDER BY n.updated_at DESC LIMIT ?");
    q.bind(userId).bind(match.value()).bind(limit).exec();
    QJsonArray out;
    while (q.next())
        out.append(
            QJsonObject{{"id", q.integer(0)}, {"deck_id", q.integer(1)}, {"title", q.text(2)}});
    return out;
}

QJsonArray NoteStore::searchLines(qint64 userId, const QString &folded, int limit)
{
    const TextMatch match(m_db.engine(), folded);
    Sql q(m_db, "SELECT l.id, l.note_id, n.deck_id, n.title, l.text FROM note_lines l JOIN notes "
                "n ON n.id = l.note_id JOIN decks d ON d.id = n.deck_id WHERE d.user_id = ? AND " +
                    match.on("l.text_fold") + " ORDER BY n.updated_at DESC, l.ordinal LIMIT ?");
    q.bind(userId).bind(match.value()).bind(limit).exec();
    QJsonArray out;
    while (q.next())
        out.append(QJsonObject{{"id", q.integer(0)},
                               {"note_id", q.integer(1)},
                               {"deck_id", q.integer(2)},
                               {"note_title", q.text(3)},
                               {"text", q.text(4)}});
    return out;
}

} // namespace cardserver
