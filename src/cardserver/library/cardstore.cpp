#include "library/cardstore.h"

#include "http/apierror.h"
#include "store/database.h"
#include "store/sql.h"
#include "store/textmatch.h"
#include "text/clock.h"
#include "text/jsonwriter.h"
#include "text/textfold.h"

#include <QJsonDocument>

namespace cardserver {

namespace {

const QString Columns = QStringLiteral(
    "c.id, c.deck_id, c.term, c.reading, c.part_of_speech, c.gender, c.translation, "
    "c.definition, c.usage_notes, c.examples, c.related, c.conjugations, c.seen, c.known, "
    "c.streak, c.last_reviewed, c.created_at");

const QStringList TextFields = {"term",        "reading",    "part_of_speech", "gender",
                                "translation", "definition", "usage_notes"};

QJsonArray arrayFrom(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).array();
}

QString arrayText(const QJsonValue &v)
{
    return QString::fromUtf8(QJsonDocument(v.toArray()).toJson(QJsonDocument::Compact));
}

QJsonObject fromRow(const Sql &q)
{
    QJsonObject c{{"id", q.integer(0)},
                  {"deck_id", q.integer(1)},
                  {"term", q.text(2)},
                  {"reading", q.text(3)},
                  {"part_of_speech", q.text(4)},
                  {"gender", q.text(5)},
                  {"translation", q.text(6)},
                  {"definition", q.text(7)},
                  {"usage_notes", q.text(8)},
                  {"examples", arrayFrom(q.text(9))},
                  {"related", arrayFrom(q.text(10))},
                  {"conjugations", arrayFrom(q.text(11))},
                  {"seen", q.integer(12)},
                  {"known", q.integer(13)},
                  {"streak", q.integer(14)},
                  {"last_reviewed", q.isNull(15) ? QJsonValue() : QJsonValue(q.text(15))},
                  {"created_at", q.text(16)}};
    return c;
}

QString textOf(const QJsonValue &v)
{
    if (v.isString())
        return v.toString();
    if (v.isDouble())
        return QString::number(v.toDouble());
    return QString();
}

// Keeps only the keys a list item may carry, each as text.
QJsonArray items(const QJsonValue &list, const QStringList &keys,
                 const std::function<void(QJsonObject &, const QJsonObject &)> &extra = {})
{
    QJsonArray out;
    for (const QJsonValue &v : list.toArray()) {
        if (!v.isObject())
            continue;
        const QJsonObject in = v.toObject();
        QJsonObject o;
        for (const QString &k : keys)
            o.insert(k, textOf(in.value(k)));
        if (extra)
            extra(o, in);
        out.append(o);
    }
    return out;
}

QString searchText(const QJsonObject &c)
{
    return TextFold::fold(c.value("term").toString() + "\n" + c.value("translation").toString() +
                          "\n" + c.value("reading").toString());
}

QString termKey(const QString &term)
{
    return term.trimmed().toCaseFolded();
}

// The columns a writer's answer fills, in the order bindWritten() binds them.
const QStringList WrittenColumns = {"term",           "term_fold", "search_fold", "reading",
                                    "part_of_speech", "gender",    "translation", "definition",
                                    "usage_notes",    "examples",  "related",     "conjugations"};

Sql &bindWritten(Sql &q, const QJsonObject &c)
{
    return q.bind(c.value("term").toString())
        .bind(termKey(c.value("term").toString()))
        .bind(searchText(c))
        .bind(c.value("reading").toString())
        .bind(c.value("part_of_speech").toString())
        .bind(c.value("gender").toString())
        .bind(c.value("translation").toString())
        .bind(c.value("definition").toString())
        .bind(c.value("usage_notes").toString())
        .bind(arrayText(c.value("examples")))
        .bind(arrayText(c.value("related")))
        .bind(arrayText(c.value("conjugations")));
}

} // namespace

QJsonObject CardStore::normalised(const QJsonObject &w)
{
    QJsonObject c;
    for (const QString &k : TextFields)
        c.insert(k, textOf(w.value(k)).trimmed());
    c.insert("examples", items(w.value("examples"), {"sentence", "translation", "note"}));
    c.insert("related", items(w.value("related"), {"word", "translation", "relation"}));
    c.insert("conjugations",
             items(w.value("conjugations"), {"tense", "note"},
                   [](QJsonObject &o, const QJsonObject &in) {
                       o.insert("forms", items(in.value("forms"), {"label", "form"}));
                   }));
    return c;
}

QJsonObject CardStore::card(qint64 userId, qint64 cardId)
{
    Sql q(m_db, "SELECT " + Columns +
                    " FROM cards c JOIN decks d ON d.id = c.deck_id WHERE c.id = ? AND "
                    "d.user_id = ?");
    q.bind(cardId).bind(userId).exec();
    if (!q.next())
        throw ApiError::notFound(QStringLiteral("That card does not exist."));
    return fromRow(q);
}

std::string CardStore::ofDeckText(qint64 deckId)
{
    Sql q(m_db, "SELECT " + Columns + " FROM cards c WHERE c.deck_id = ? ORDER BY c.id DESC");
    q.bind(deckId).exec();
    JsonWriter w;
    w.beginArray();
    while (q.next()) {
        w.beginObject();
        w.key("id").value(q.integer(0));
        w.key("deck_id").value(q.integer(1));
        static const char *const texts[] = {"term",        "reading",    "part_of_speech", "gender",
                                            "translation", "definition", "usage_notes"};
        for (int i = 0; i < 7; ++i)
            w.key(texts[i]).value(q.text(2 + i));
        // The lists are stored as compact JSON written by the server itself.
        w.key("examples").raw(q.text(9));
        w.key("related").raw(q.text(10));
        w.key("conjugations").raw(q.text(11));
        w.key("seen").value(q.integer(12));
        w.key("known").value(q.integer(13));
        w.key("streak").value(q.integer(14));
        w.key("last_reviewed");
        q.isNull(15) ? w.null() : w.value(q.text(15));
        w.key("created_at").value(q.text(16));
        w.endObject();
    }
    w.endArray();
    return w.take();
}

std::optional<QJsonObject> CardStore::withTerm(qint64 deckId, const QString &term)
{
    Sql q(m_db, "SELECT " + Columns +
                    " FROM cards c WHERE c.deck_id = ? AND c.term_fold = ? ORDER BY c.id LIMIT 1");
    q.bind(deckId).bind(termKey(term)).exec();
    if (!q.next())
        return std::nullopt;
    return fromRow(q);
}

QJsonObject CardStore::insert(qint64 deckId, const QJsonObject &written)
{
    const QJsonObject c = normalised(written);
    qint64 id = 0;
    m_db.write([&] {
        Sql q(m_db, "INSERT INTO cards (deck_id, " + WrittenColumns.join(", ") +
                        ", created_at) VALUES (?, " +
                        QString("?, ").repeated(WrittenColumns.size()) + "?) RETURNING id");
        id = bindWritten(q.bind(deckId), c).bind(Clock::nowText()).insertedId();
    });
    Sql q(m_db, "SELECT " + Columns + " FROM cards c WHERE c.id = ?");
    q.bind(id).exec();
    q.next();
    return fromRow(q);
}

QJsonObject CardStore::rewrite(qint64 userId, qint64 cardId, const QJsonObject &written)
{
    const QJsonObject c = normalised(written);
    m_db.write([&] {
        // A rewrite that comes back without a term keeps the card's own (as this run of the
        // transaction reads it: the write may run again).
        QJsonObject row = c;
        const QJsonObject current = card(userId, cardId); // 404 unless it is the account's
        if (row.value("term").toString().isEmpty())
            row.insert("term", current.value("term"));
        Sql q(m_db, "UPDATE cards SET " + WrittenColumns.join(" = ?, ") + " = ? WHERE id = ?");
        bindWritten(q, row).bind(cardId).exec();
    });
    return card(userId, cardId);
}

QJsonObject CardStore::review(qint64 userId, qint64 cardId, bool known)
{
    m_db.write([&] {
        const qint64 deckId = deckOf(userId, cardId);
        const QString now = Clock::nowText();
        Sql(m_db, "UPDATE cards SET seen = seen + 1, known = known + ?, streak = CASE WHEN ? "
                  "= 1 THEN streak + 1 ELSE 0 END, last_reviewed = ? WHERE id = ?")
            .bind(known ? 1 : 0)
            .bind(known ? 1 : 0)
            .bind(now)
            .bind(cardId)
            .exec();
        Sql(m_db, "UPDATE decks SET last_studied = ? WHERE id = ?").bind(now).bind(deckId).exec();
    });
    return card(userId, cardId);
}

void CardStore::remove(qint64 userId, qint64 cardId)
{
    m_db.write([&] {
        deckOf(userId, cardId);
        Sql(m_db, "DELETE FROM cards WHERE id = ?").bind(cardId).exec();
    });
}

qint64 CardStore::deckOf(qint64 userId, qint64 cardId)
{
    const qint64 deck = Sql(m_db, "SELECT c.deck_id FROM cards c JOIN decks d ON d.id = "
                                  "c.deck_id WHERE c.id = ? AND d.user_id = ?")
                            .bind(cardId)
                            .bind(userId)
                            .scalar(0);
    if (!deck)
        throw ApiError::notFound(QStringLiteral("That card does not exist."));
    return deck;
}

QJsonArray CardStore::search(qint64 userId, const QString &foldedQuery, int limit)
{
    const TextMatch match(m_db.engine(), foldedQuery);
    Sql q(m_db, "SELECT " + Columns +
                    " FROM cards c JOIN decks d ON d.id = c.deck_id WHERE d.user_id = ? AND " +
                    match.on("c.search_fold") + " ORDER BY c.id DESC LIMIT ?");
    q.bind(userId).bind(match.value()).bind(limit).exec();
    QJsonArray out;
    while (q.next())
        out.append(fromRow(q));
    return out;
}

} // namespace cardserver
