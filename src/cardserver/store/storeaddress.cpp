#include "store/storeaddress.h"

#include <QDir>
#include <QUrl>
#include <QUrlQuery>
#include <stdexcept>

namespace cardserver {

namespace {

[[noreturn]] void refuse(const QString &why)
{
    throw std::runtime_error(("--database: " + why).toStdString());
}

StoreAddress postgres(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid())
        refuse(QStringLiteral("cannot read \"%1\" as postgresql://USER@HOST:PORT/DB")
                   .arg(url.toString(QUrl::RemovePassword)));
    if (!url.password().isEmpty())
        refuse(QStringLiteral("a password does not belong on the command line; set "
                              "ORVEL_DATABASE_PASSWORD or use ~/.pgpass"));
    StoreAddress a;
    a.engine = StoreAddress::Engine::Postgres;
    a.user = url.userName();
    a.host = url.host();
    a.port = url.port(5432);
    a.name = url.path().mid(1);
    if (a.user.isEmpty())
        refuse(QStringLiteral("name the database user: postgresql://USER@HOST:PORT/DB"));
    if (a.name.isEmpty() || a.name.contains('/'))
        refuse(QStringLiteral("name one database: postgresql://USER@HOST:PORT/DB"));
    const QUrlQuery query(url);
    for (const auto &[key, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (key == QLatin1String("host")) {
            if (!value.startsWith('/'))
                refuse(QStringLiteral("?host= wants the folder of a Unix socket, got \"%1\"")
                           .arg(value));
            a.host = value;
        } else if (key == QLatin1String("sslmode")) {
            static const QStringList modes = {"disable", "allow",     "prefer",
                                              "require", "verify-ca", "verify-full"};
            if (!modes.contains(value))
                refuse(QStringLiteral("unknown sslmode \"%1\"").arg(value));
            a.sslMode = value;
        } else {
            refuse(
                QStringLiteral("unknown parameter \"%1\" (host and sslmode are known)").arg(key));
        }
    }
    return a;
}

} // namespace

StoreAddress StoreAddress::parse(const QString &database, const QString &dataDir)
{
    StoreAddress a;
    if (database.isEmpty()) {
        a.sqlitePath = QDir(dataDir).filePath(QStringLiteral("orvel.sqlite"));
        return a;
    }
    if (database.startsWith(QLatin1String("postgresql://")) ||
        database.startsWith(QLatin1String("postgres://")))
        return postgres(database);
    if (database.startsWith(QLatin1String("sqlite://"))) {
        a.sqlitePath = database.mid(9);
        if (a.sqlitePath.isEmpty())
            refuse(QStringLiteral("sqlite:// needs a file path"));
        return a;
    }
    if (database.contains(QLatin1String("://")))
        refuse(QStringLiteral("unknown kind of store \"%1\"").arg(database.section("://", 0, 0)));
    a.sqlitePath = database;
    return a;
}

QString StoreAddress::describe() const
{
    if (engine == Engine::Sqlite)
        return sqlitePath;
    return QStringLiteral("PostgreSQL database %1 as %2 on %3:%4")
        .arg(name, user, host.isEmpty() ? QStringLiteral("the local socket") : host)
        .arg(port);
}

} // namespace cardserver
