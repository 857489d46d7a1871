#include "library/deckstore.h"

#include "http/apierror.h"
#include "store/database.h"
#include "store/sql.h"
#include "text/clock.h"
#include "text/jsonwriter.h"

namespace cardserver {

namespace {

const QString SummarySelect = QStringLiteral(
    "SELECT d.id, d.name, d.description, d.language, d.native_language, d.created_at, "
    "(SELECT COUNT(*) FROM cards c WHERE c.deck_id = d.id), "
    "(SELECT COUNT(*) FROM cards c WHERE c.deck_id = d.id AND c.streak > 0), "
    "d.last_studied, "
    "(SELECT COUNT(*) FROM notes n WHERE n.deck_id = d.id), "
    "d.folder_id FROM decks d WHERE d.user_id = ? ");

QJsonObject summaryFrom(const Sql &q)
{
    return {{"id", q.integer(0)},
            {"name", q.text(1)},
            {"description", q.text(2)},
            {"language", q.text(3)},
            {"native_language", q.text(4)},
            {"created_at", q.text(5)},
            {"card_count", q.integer(6)},
            {"known_count", q.integer(7)},
            {"last_studied", q.isNull(8) ? QJsonValue() : QJsonValue(q.text(8))},
            {"note_count", q.integer(9)},
            {"folder_id", q.isNull(10) ? QJsonValue() : QJsonValue(q.integer(10))}};
}

const QString FolderSelect =
    QStringLiteral("SELECT f.id, f.name, (SELECT COUNT(*) FROM decks d WHERE d.folder_id = f.id) "
                   "FROM folders f WHERE f.user_id = ? ");

QJsonObject folderFrom(const Sql &q)
{
    return {{"id", q.integer(0)}, {"name", q.text(1)}, {"deck_count", q.integer(2)}};
}

} // namespace

DeckInfo DeckStore::info(qint64 userId, qint64 deckId)
{
    Sql q(m_db, "SELECT id, name, language, native_language FROM decks WHERE id = ? AND "
                "user_id = ?");
    q.bind(deckId).bind(userId).exec();
    if (!q.next())
        throw ApiError::notFound(QStringLiteral("That deck does not exist."));
    return {q.integer(0), q.text(1), q.text(2), q.text(3)};
}

std::string DeckStore::summariesText(qint64 userId)
{
    // The list is asked for on every screen and changes only when something is written, so
    // it is kept until the next write to the store, through this process or another. The
    // stamp is read before the query: a write that lands during it makes the kept copy stale
    // at once. Where the store cannot say cheaply whether it changed, nothing is kept.
    const std::optional<quint64> stamp = m_db.changeStamp();
    if (!stamp)
        return readSummaries(userId);
    const quint64 generation = *stamp;
    {
        std::lock_guard lock(m_listingsLock);
        const auto it = m_listings.constFind(userId);
        if (it != m_listings.cend() && it->generation == generation)
            return it->text;
    }
    std::string text = readSummaries(userId);
    std::lock_guard lock(m_listingsLock);
    if (m_listings.size() > 10'000)
        m_listings.clear();
    m_listings.insert(userId, {generation, text});
    return text;
}

std::string DeckStore::readSummaries(qint64 userId)
{
    Sql q(m_db, SummarySelect + "ORDER BY d.id");
    q.bind(userId).exec();
    JsonWriter w;
    w.beginArray();
    while (q.next()) {
        w.beginObject();
        w.key("id").value(q.integer(0));
        w.key("name").value(q.text(1));
        w.key("description").value(q.text(2));
        w.key("language").value(q.text(3));
        w.key("native_language").value(q.text(4));
        w.key("created_at").value(q.text(5));
        w.key("card_count").value(q.integer(6));
        w.key("known_count").value(q.integer(7));
        w.key("last_studied");
        q.isNull(8) ? w.null() : w.value(q.text(8));
        w.key("note_count").value(q.integer(9));
        w.key("folder_id");
        q.isNull(10) ? w.null() : w.value(q.integer(10));
        w.endObject();
    }
    w.endArray();
    return w.take();
}

QJsonObject DeckStore::summary(qint64 userId, qint64 deckId)
{
    Sql q(m_db, SummarySelect + "AND d.id = ?");
    q.bind(userId).bind(deckId).exec();
    if (!q.next())
        throw ApiError::notFound(QStringLiteral("That deck does not exist."));
    return summaryFrom(q);
}

void DeckStore::requireFolder(qint64 userId, qint64 folderId)
{
    if (!Sql(m_db, "SELECT COUNT(*) FROM folders WHERE id = ? AND user_id = ?")
             .bind(folderId)
             .bind(userId)
             .scalar())
        throw ApiError::notFound(QStringLiteral("That folder does not exist."));
}

QJsonObject DeckStore::create(qint64 userId, const QString &name, const QString &description,
                              const QString &language, const QString &nativeLanguage,
                              std::optional<qint64> folderId)
{
    qint64 id = 0;
    m_db.write([&] {
        if (folderId)
            requireFolder(userId, *folderId);
        Sql q(m_db, "INSERT INTO decks (user_id, folder_id, name, description, language, "
                    "native_language, created_at) VALUES (?, ?, ?, ?, ?, ?, ?) RETURNING id");
        id = q.bind(userId)
                 .bind(folderId ? QVariant(*folderId) : QVariant(QMetaType(QMetaType::LongLong)))
                 .bind(name)
                 .bind(description)
                 .bind(language)
                 .bind(nativeLanguage)
                 .bind(Clock::nowText())
                 .insertedId();
    });
    return summary(userId, id);
}

QJsonObject DeckStore::update(qint64 userId, qint64 deckId, const std::optional<QString> &name,
                              const std::optional<QString> &description,
                              const std::optional<std::optional<qint64>> &moveTo)
{
    m_db.write([&] {
        info(userId, deckId);
        if (name)
            Sql(m_db, "UPDATE decks SET name = ? WHERE id = ?").bind(*name).bind(deckId).exec();
        if (description)
            Sql(m_db, "UPDATE decks SET description = ? WHERE id = ?")
                .bind(*description)
                .bind(deckId)
                .exec();
        if (moveTo) {
            if (*moveTo)
                requireFolder(userId, **moveTo);
            Sql(m_db, "UPDATE decks SET folder_id = ? WHERE id = ?")
                .bind(*moveTo ? QVariant(**moveTo) : QVariant(QMetaType(QMetaType::LongLong)))
                .bind(deckId)
                .exec();
        }
    });
    return summary(userId, deckId);
}

void DeckStore::remove(qint64 userId, qint64 deckId)
{
    m_db.write([&] {
        info(userId, deckId);
        Sql(m_db, "DELETE FROM decks WHERE id = ?").bind(deckId).exec();
    });
}

QStringList DeckStore::languages(qint64 userId)
{
    Sql q(m_db, "SELECT DISTINCT language FROM decks WHERE user_id = ? ORDER BY language");
    q.bind(userId).exec();
    QStringList out;
    while (q.next())
        out.append(q.text(0));
    return out;
}

QJsonArray DeckStore::folders(qint64 userId)
{
    Sql q(m_db, FolderSelect + "ORDER BY f.id");
    q.bind(userId).exec();
    QJsonArray out;
    while (q.next())
        out.append(folderFrom(q));
    return out;
}

QJsonObject DeckStore::folder(qint64 userId, qint64 folderId)
{
    Sql q(m_db, FolderSelect + "AND f.id = ?");
    q.bind(userId).bind(folderId).exec();
    if (!q.next())
        throw ApiError::notFound(QStringLiteral("That folder does not exist."));
    return folderFrom(q);
}

QJsonObject DeckStore::createFolder(qint64 userId, const QString &name)
{
    qint64 id = 0;
    m_db.write([&] {
        id = Sql(m_db, "INSERT INTO folders (user_id, name, created_at) VALUES (?, ?, ?) "
                       "RETURNING id")
                 .bind(userId)
                 .bind(name)
                 .bind(Clock::nowText())
                 .insertedId();
    });
    return folder(userId, id);
}

QJsonObject DeckStore::renameFolder(qint64 userId, qint64 folderId, const QString &name)
{
    m_db.write([&] {
        requireFolder(userId, folderId);
        Sql(m_db, "UPDATE folders SET name = ? WHERE id = ?").bind(name).bind(folderId).exec();
    });
    return folder(userId, folderId);
}

void DeckStore::removeFolder(qint64 userId, qint64 folderId)
{
    m_db.write([&] {
        requireFolder(userId, folderId);
        Sql(m_db, "UPDATE decks SET folder_id = NULL WHERE folder_id = ?").bind(folderId).exec();
        Sql(m_db, "DELETE FROM folders WHERE id = ?").bind(folderId).exec();
    });
}

} // namespace cardserver
