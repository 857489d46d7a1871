#pragma once
#include <QString>

namespace cardserver {

// Where the store lives, read from --database: a SQLite file, or a PostgreSQL database given
// as postgresql://USER@HOST:PORT/DB. HOST may be left out (libpq's default Unix socket), and
// `?host=/a/folder` names the folder of a Unix socket instead of a network host. A password
// never comes from the address: it is read from ORVEL_DATABASE_PASSWORD, or libpq finds it in
// ~/.pgpass (or PGPASSFILE) by itself.
class StoreAddress {
public:
    enum class Engine { Sqlite, Postgres };

    // `database` is the flag's value (empty: the default SQLite file under `dataDir`).
    // Throws std::runtime_error with a one-line reason when the value cannot be used.
    static StoreAddress parse(const QString &database, const QString &dataDir);

    Engine engine = Engine::Sqlite;
    QString sqlitePath;
    QString host; // a name, an address, or a socket folder (starts with '/')
    int port = 5432;
    QString user;
    QString name;
    QString sslMode; // empty: libpq's default

    // For messages and the log: never holds a password.
    QString describe() const;
};

} // namespace cardserver
