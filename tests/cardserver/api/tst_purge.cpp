// Expired sessions and mailed links leave the store: at start, and on the --purge-interval
// timer while the server runs. The test ages rows in the SQLite store itself, as time would.
#include "api.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Runs one statement on the store and returns the first column of its first row, if any.
qint64 onStore(const QString &store, const QString &sql)
{
    qint64 value = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "test-store");
        db.setDatabaseName(store);
        db.setConnectOptions("QSQLITE_BUSY_TIMEOUT=10000");
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(sql) && q.next())
                value = q.value(0).toLongLong();
        }
    }
    QSqlDatabase::removeDatabase("test-store");
    return value;
}

} // namespace

class TestPurge : public QObject {
    Q_OBJECT

private slots:
    void expiredRowsAreDropped()
    {
        QTemporaryDir shared;
        const QString store = shared.filePath("orvel.sqlite");
        {
            ServerProcess server({"--local", "--database", store});
            QVERIFY(startServer(server));
            Api api(server.baseUrl());
            api.join("nia@example.org");
            api.postRaw("/app/forgot", "email=nia%40example.org",
                        "application/x-www-form-urlencoded");
        }
        QCOMPARE(onStore(store, "SELECT COUNT(*) FROM sessions"), 1);
        QCOMPARE(onStore(store, "SELECT COUNT(*) FROM tokens"), 2); // confirmation and reset
        onStore(store, "UPDATE sessions SET expires_at = 1");
        onStore(store, "UPDATE tokens SET expires_at = 1 WHERE kind = 'reset'");

        ServerProcess server({"--local", "--database", store, "--purge-interval", "1"});
        QVERIFY(startServer(server));
        QCOMPARE(onStore(store, "SELECT COUNT(*) FROM sessions"), 0);
        QCOMPARE(onStore(store, "SELECT COUNT(*) FROM tokens WHERE kind = 'reset'"), 0);

        // While it runs, the timer drops what expires; what is live stays.
        Api api(server.baseUrl());
        QCOMPARE(api.post("/api/auth/login",
                          QJsonObject{{"email", "nia@example.org"}, {"password", "secret-pass"}})
                     .status,
                 200);
        Api second(server.baseUrl());
        second.post("/api/auth/login",
                    QJsonObject{{"email", "nia@example.org"}, {"password", "secret-pass"}});
        QCOMPARE(onStore(store, "SELECT COUNT(*) FROM sessions"), 2);
        onStore(store, "UPDATE sessions SET expires_at = 1 WHERE id = (SELECT MIN(id) FROM "
                       "sessions)");
        QTRY_COMPARE_WITH_TIMEOUT(onStore(store, "SELECT COUNT(*) FROM sessions"), 1, 10000);
    }
};

QTEST_GUILESS_MAIN(TestPurge)
#include "tst_purge.moc"
