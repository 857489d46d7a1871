#include "store/schema.h"

#include "store/database.h"
#include "store/sql.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <stdexcept>

namespace cardserver {

namespace {

// Migration n brings the schema from version n to n + 1. Never edit a released entry;
// append a new one.
const QList<QStringList> &migrations()
{
    static const QList<QStringList> all = {
        {
            R"(CREATE TABLE users (
                id INTEGER PRIMARY KEY,
                email TEXT NOT NULL UNIQUE COLLATE NOCASE,
                password_hash TEXT NOT NULL,
                display_name TEXT NOT NULL,
                confirmed INTEGER NOT NULL DEFAULT 0,
                created_at TEXT NOT NULL))",
            R"(CREATE TABLE tokens (
                token TEXT PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                kind TEXT NOT NULL,
                expires_at INTEGER NOT NULL))",
            R"(CREATE TABLE sessions (
                id TEXT PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                expires_at INTEGER NOT NULL,
                created_at TEXT NOT NULL))",
            "CREATE INDEX sessions_user ON sessions(user_id)",
            R"(CREATE TABLE preferences (
                user_id INTEGER PRIMARY KEY REFERENCES users(id) ON DELETE CASCADE,
                body TEXT NOT NULL))",
            R"(CREATE TABLE folders (
                id INTEGER PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                name TEXT NOT NULL,
                created_at TEXT NOT NULL))",
            "CREATE INDEX folders_user ON folders(user_id)",
            R"(CREATE TABLE decks (
                id INTEGER PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                folder_id INTEGER REFERENCES folders(id) ON DELETE SET NULL,
                name TEXT NOT NULL,
                description TEXT NOT NULL,
                language TEXT NOT NULL,
                native_language TEXT NOT NULL,
                created_at TEXT NOT NULL,
                last_studied TEXT))",
            "CREATE INDEX decks_user ON decks(user_id)",
            R"(CREATE TABLE media (
                id INTEGER PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                file TEXT NOT NULL,
                mime TEXT NOT NULL,
                width INTEGER NOT NULL,
                height INTEGER NOT NULL,
                origin TEXT NOT NULL,
                source_url TEXT NOT NULL,
                author TEXT NOT NULL,
                licence TEXT NOT NULL,
                title TEXT NOT NULL,
                title_fold TEXT NOT NULL,
                created_at TEXT NOT NULL))",
            "CREATE INDEX media_user ON media(user_id)",
            R"(CREATE TABLE cards (
                id INTEGER PRIMARY KEY,
                deck_id INTEGER NOT NULL REFERENCES decks(id) ON DELETE CASCADE,
                term TEXT NOT NULL,
                term_fold TEXT NOT NULL,
                search_fold TEXT NOT NULL,
                reading TEXT NOT NULL,
                part_of_speech TEXT NOT NULL,
                gender TEXT NOT NULL,
                translation TEXT NOT NULL,
                definition TEXT NOT NULL,
                usage_notes TEXT NOT NULL,
                examples TEXT NOT NULL,
                related TEXT NOT NULL,
                conjugations TEXT NOT NULL,
                seen INTEGER NOT NULL DEFAULT 0,
                known INTEGER NOT NULL DEFAULT 0,
                streak INTEGER NOT NULL DEFAULT 0,
                last_reviewed TEXT,
                created_at TEXT NOT NULL))",
            "CREATE INDEX cards_deck ON cards(deck_id)",
            R"(CREATE TABLE notes (
                id INTEGER PRIMARY KEY,
                deck_id INTEGER NOT NULL REFERENCES decks(id) ON DELETE CASCADE,
                title TEXT NOT NULL,
                title_fold TEXT NOT NULL,
                created_at TEXT NOT NULL,
                updated_at TEXT NOT NULL))",
            "CREATE INDEX notes_deck ON notes(deck_id)",
            R"(CREATE TABLE note_lines (
                id INTEGER PRIMARY KEY,
                note_id INTEGER NOT NULL REFERENCES notes(id) ON DELETE CASCADE,
                ordinal INTEGER NOT NULL,
                text TEXT NOT NULL,
                text_fold TEXT NOT NULL,
                media_id INTEGER REFERENCES media(id) ON DELETE SET NULL,
                source TEXT NOT NULL,
                kind TEXT NOT NULL,
                annotations TEXT NOT NULL,
                annotated_text TEXT NOT NULL,
                card_id INTEGER REFERENCES cards(id) ON DELETE SET NULL,
                created_at TEXT NOT NULL))",
            "CREATE INDEX note_lines_note ON note_lines(note_id, ordinal)",
            "CREATE INDEX note_lines_media ON note_lines(media_id)",
            R"(CREATE TABLE sign_in_codes (
                code TEXT PRIMARY KEY,
                user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                expires_at INTEGER NOT NULL))",
        },
        {
            "ALTER TABLE media ADD COLUMN animated INTEGER NOT NULL DEFAULT 0",
        },
        {
            // Failed sign-ins per subject (a digest of address, client IP or both); the time is
            // in milliseconds since the epoch.
            R"(CREATE TABLE login_failures (
                subject TEXT PRIMARY KEY,
                failures INTEGER NOT NULL,
                last_failure BIGINT NOT NULL))",
            "CREATE INDEX login_failures_last ON login_failures(last_failure)",
            "CREATE INDEX tokens_expiry ON tokens(expires_at)",
            "CREATE INDEX sessions_expiry ON sessions(expires_at)",
        },
    };
    return all;
}

void run(Database &db, const QString &sql)
{
    QSqlQuery q(db.connection());
    if (!q.prepare(sql) || !q.exec())
        throw std::runtime_error(("migration failed: " + q.lastError().text()).toStdString());
}

} // namespace

int Schema::latestVersion()
{
    return static_cast<int>(migrations().size());
}

void Schema::migrate(Database &db)
{
    run(db, "CREATE TABLE IF NOT EXISTS schema_version (version INTEGER NOT NULL)");
    int version = 0;
    {
        QSqlQuery q(db.connection());
        if (!q.prepare("SELECT version FROM schema_version") || !q.exec())
            throw std::runtime_error(q.lastError().text().toStdString());
        if (q.next())
            version = q.value(0).toInt();
        else
            run(db, "INSERT INTO schema_version (version) VALUES (0)");
    }
    if (version > latestVersion())
        throw std::runtime_error("the store was written by a newer orvel-server (schema " +
                                 std::to_string(version) + ")");
    for (int v = version; v < latestVersion(); ++v) {
        for (const QString &statement : migrations().at(v))
            run(db, statement);
        QSqlQuery bump(db.connection());
        bump.prepare(QStringLiteral("UPDATE schema_version SET version = ?"));
        bump.addBindValue(v + 1);
        if (!bump.exec())
            throw std::runtime_error(
                ("migration failed: " + bump.lastError().text()).toStdString());
    }
}

} // namespace cardserver
