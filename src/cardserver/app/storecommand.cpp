#include "app/storecommand.h"

#include "app/serveroptions.h"
#include "store/database.h"
#include "store/schema.h"

#include <cstdio>
#include <QDir>
#include <QFileInfo>
#include <stdexcept>

namespace cardserver {

namespace {

int failed(const QString &why)
{
    std::fprintf(stderr, "orvel-server: %s\n", qPrintable(why));
    return 1;
}

} // namespace

int StoreCommand::migrateOnly(const ServerOptions &options)
{
    try {
        const StoreAddress address = StoreAddress::parse(options.database, options.dataDir);
        if (address.engine == StoreAddress::Engine::Sqlite &&
            !QDir().mkpath(QFileInfo(address.sqlitePath).absolutePath()))
            return failed(QStringLiteral("cannot make the folder of %1").arg(address.sqlitePath));
        Database db(address);
        db.connect();
        db.write([&] { Schema::migrate(db, options.testSchema); });
        std::printf("schema version %d\n", Schema::version(db));
        return 0;
    } catch (const std::exception &e) {
        return failed(QString::fromUtf8(e.what()));
    }
}

int StoreCommand::check(const ServerOptions &options)
{
    try {
        const StoreAddress address = StoreAddress::parse(options.database, options.dataDir);
        // Checking must not leave an empty store behind where there was none.
        if (address.engine == StoreAddress::Engine::Sqlite &&
            !QFileInfo::exists(address.sqlitePath))
            return failed(QStringLiteral("there is no store at %1").arg(address.sqlitePath));
        Database db(address);
        const int version = Schema::version(db);
        const int latest = Schema::latestVersion();
        if (version < latest)
            return failed(QStringLiteral("the store has schema version %1 and this build needs "
                                         "%2: run orvel-server --migrate-only")
                              .arg(version)
                              .arg(latest));
        if (version > latest)
            return failed(QStringLiteral("the store has schema version %1, newer than this "
                                         "build's %2")
                              .arg(version)
                              .arg(latest));
        std::printf("store reachable, schema version %d is current\n", version);
        return 0;
    } catch (const std::exception &e) {
        return failed(QString::fromUtf8(e.what()));
    }
}

} // namespace cardserver
