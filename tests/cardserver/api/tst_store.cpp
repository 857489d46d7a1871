// The store under the server, on the engine under test (SQLite, or PostgreSQL for
// tst_server_store_pg): migrations from every earlier schema version and from a store that the
// previous release wrote, --migrate-only and --check, and concurrent writes that must all land.
#include "api.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <thread>
#include <vector>

namespace {

const QString Fixtures = QStringLiteral(ORVEL_API_FIXTURES);

// A password hash as the release wrote it ("secret-pass"), for rows made behind the server's
// back.
QString releaseHash()
{
    QString hash;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "release-fixture");
        db.setDatabaseName(Fixtures + "/release-store/orvel.sqlite");
        db.setConnectOptions("QSQLITE_OPEN_READONLY");
        QSqlQuery q(db);
        if (db.open() && q.exec("SELECT password_hash FROM users WHERE id = 1") && q.next())
            hash = q.value(0).toString();
    }
    QSqlDatabase::removeDatabase("release-fixture");
    return hash;
}

bool copyTree(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    const QDir source(from);
    for (const QFileInfo &entry : source.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        const QString target = to + "/" + entry.fileName();
        if (entry.isDir() ? !copyTree(entry.filePath(), target)
                          : !QFile::copy(entry.filePath(), target))
            return false;
    }
    return true;
}

} // namespace

class TestStore : public QObject {
    Q_OBJECT

    // A store of this test's own on the engine under test, and the --database value for it.
    struct Store {
        QTemporaryDir dir;
        TestDatabase db;
        QString url;
        QStringList args(const QStringList &more) const
        {
            return QStringList{"--data", dir.path(), "--database", url} + more;
        }
    };
    static bool makeStore(Store &s)
    {
        QString error;
        if (!s.db.create(&error)) {
            qWarning().noquote() << error;
            return false;
        }
        s.url = s.db.url().isEmpty() ? s.dir.filePath("orvel.sqlite") : s.db.url();
        return true;
    }

private slots:
    void migratesFromEveryEarlierVersion()
    {
        const QString hash = releaseHash();
        QVERIFY(!hash.isEmpty());
        int latest = 0;
        {
            Store fresh;
            QVERIFY(makeStore(fresh));
            const auto r = ServerProcess::run(fresh.args({"--migrate-only"}));
            QCOMPARE(r.code, 0);
            QVERIFY(r.out.startsWith("schema version "));
            latest = r.out.mid(15).trimmed().toInt();
            QVERIFY(latest >= 3);
        }
        for (int from = 0; from < latest; ++from) {
            Store s;
            QVERIFY(makeStore(s));
            const auto old = ServerProcess::run(
                s.args({"--migrate-only", "--test-schema", QString::number(from)}));
            QCOMPARE(old.code, 0);
            QCOMPARE(old.out.trimmed(), QStringLiteral("schema version %1").arg(from));
            const auto stale = ServerProcess::run(s.args({"--check"}));
            QCOMPARE(stale.code, 1);
            QVERIFY2(stale.err.contains("--migrate-only"), qPrintable(stale.err));

            // A learner and a deck as a store of that version holds them.
            if (from >= 1) {
                QSqlDatabase db = s.db.connect(s.dir.filePath("orvel.sqlite"));
                QSqlQuery q(db);
                QVERIFY2(q.exec("INSERT INTO users (email, password_hash, display_name, confirmed, "
                                "created_at) VALUES ('Old@Example.org', '" +
                                hash + "', 'Old', 1, '2026-01-02T03:04:05Z')"),
                         qPrintable(q.lastError().text()));
                QVERIFY2(q.exec("INSERT INTO decks (user_id, name, description, language, "
                                "native_language, created_at) SELECT id, 'Kept', '', 'de', 'en', "
                                "'2026-01-02T03:04:05Z' FROM users"),
                         qPrintable(q.lastError().text()));
                db.close();
            }

            const auto migrated = ServerProcess::run(s.args({"--migrate-only"}));
            QCOMPARE(migrated.code, 0);
            QCOMPARE(migrated.out.trimmed(), QStringLiteral("schema version %1").arg(latest));
            const auto checked = ServerProcess::run(s.args({"--check"}));
            QCOMPARE(checked.code, 0);
            QCOMPARE(checked.out.trimmed().count('\n'), 0);

            ServerProcess server({"--local", "--database", s.url});
            QVERIFY(startServer(server));
            Api api(server.baseUrl());
            if (from >= 1) {
                QCOMPARE(api.post("/api/auth/login", QJsonObject{{"email", "old@example.ORG"},
                                                                 {"password", "secret-pass"}})
                             .status,
                         200);
                const QJsonArray decks = api.get("/api/decks").array();
                QCOMPARE(decks.size(), 1);
                QCOMPARE(decks[0]["name"].toString(), QStringLiteral("Kept"));
            } else {
                api.join("new@example.org");
                QCOMPARE(api.deck("Neu")["name"].toString(), QStringLiteral("Neu"));
            }
        }
    }

    void releaseStoreMigratesAndReadsBack()
    {
        if (TestDatabase::postgresWanted())
            QSKIP("the release's store is a SQLite file");
        ServerProcess server({"--local"});
        QVERIFY(copyTree(Fixtures + "/release-store", server.dataDir()));
        const QStringList data{"--data", server.dataDir()};
        QCOMPARE(ServerProcess::run(data + QStringList{"--check"}).code, 1);
        QCOMPARE(ServerProcess::run(data + QStringList{"--migrate-only"}).code, 0);
        QCOMPARE(ServerProcess::run(data + QStringList{"--check"}).code, 0);
        QVERIFY(startServer(server));

        Api ada(server.baseUrl());
        // The address was written as "Ada@Example.org": it still matches in any ASCII case.
        QCOMPARE(ada.post("/api/auth/login",
                          QJsonObject{{"email", "ADA@example.org"}, {"password", "secret-pass"}})
                     .status,
                 200);
        const QJsonArray decks = ada.get("/api/decks").array();
        QCOMPARE(decks.size(), 2);
        QCOMPARE(decks[0]["name"].toString(), QStringLiteral("German"));
        QCOMPARE(decks[0]["card_count"].toInt(), 3);
        QCOMPARE(decks[0]["known_count"].toInt(), 1);
        QCOMPARE(decks[0]["note_count"].toInt(), 1);
        const QJsonArray folders = ada.get("/api/folders").array();
        QCOMPARE(decks[0]["folder_id"].toInt(), folders[0]["id"].toInt());
        QCOMPARE(decks[1]["name"].toString(), QStringLiteral("Französisch"));
        const QJsonArray cards =
            ada.get(path("/api/decks/%1", decks[0]["id"].toInteger()))["cards"].toArray();
        QStringList terms;
        for (const QJsonValue &c : cards)
            terms.append(c["term"].toString());
        QCOMPARE(terms, QStringList({"schlafen", "Katze", "Hund"}));
        QCOMPARE(ada.get("/api/search?q=HUND")["cards"].toArray().size(), 1);
        QCOMPARE(ada.get("/api/settings")["rate"].toDouble(), 1.5);

        const QJsonArray notes =
            ada.get(path("/api/decks/%1/notes", decks[0]["id"].toInteger())).array();
        QCOMPARE(notes.size(), 1);
        const Api::Reply note = ada.get(path("/api/notes/%1", notes[0]["id"].toInteger()));
        const QJsonArray lines = note["lines"].toArray();
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0]["text"].toString(), QStringLiteral("Der Hund schläft."));
        const QString picture = lines[2]["media"]["url"].toString();
        QVERIFY(picture.startsWith("/media/"));
        QFile original(Fixtures + "/release-store" + picture);
        QVERIFY(original.open(QIODevice::ReadOnly));
        QCOMPARE(ada.get(picture).body, original.readAll());

        // The other learner sees only their own, and the folded address stays unique.
        Api bo(server.baseUrl());
        QCOMPARE(bo.post("/api/auth/login",
                         QJsonObject{{"email", "bo@example.org"}, {"password", "other-pass"}})
                     .status,
                 200);
        QCOMPARE(bo.get("/api/decks").array().size(), 1);
        QCOMPARE(Api(server.baseUrl())
                     .post("/api/auth/signup", QJsonObject{{"email", "BO@example.org"},
                                                           {"password", "another-pass"},
                                                           {"display_name", "Twin"}})
                     .status,
                 409);
    }

    void checkSaysWhatIsWrong()
    {
        QTemporaryDir dir;
        const auto missing = ServerProcess::run(
            {"--data", dir.path(), "--database", dir.filePath("none.sqlite"), "--check"});
        QCOMPARE(missing.code, 1);
        QVERIFY(missing.err.contains("no store"));
        QVERIFY(!QFile::exists(dir.filePath("none.sqlite")));

        const auto unreachable =
            ServerProcess::run({"--data", dir.path(), "--database",
                                "postgresql://orvel@:1/orvel?host=/nonexistent", "--check"});
        QCOMPARE(unreachable.code, 1);
        QCOMPARE(unreachable.err.trimmed().count('\n'), 0);
        QVERIFY(unreachable.err.contains("cannot reach"));

        // A store written by a newer server is neither served nor touched.
        Store s;
        QVERIFY(makeStore(s));
        QCOMPARE(ServerProcess::run(s.args({"--migrate-only"})).code, 0);
        {
            QSqlDatabase db = s.db.connect(s.dir.filePath("orvel.sqlite"));
            QSqlQuery q(db);
            QVERIFY(q.exec("UPDATE schema_version SET version = 99"));
            db.close();
        }
        const auto newer = ServerProcess::run(s.args({"--check"}));
        QCOMPARE(newer.code, 1);
        QVERIFY(newer.err.contains("newer"));
        const auto refused = ServerProcess::run(s.args({"--listen", "127.0.0.1:0"}));
        QCOMPARE(refused.code, 1);
        QVERIFY(refused.err.contains("newer orvel-server"));
        QCOMPARE(ServerProcess::run(s.args({"--migrate-only"})).code, 1);
    }

    void searchTakesWildcardsLiterally()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("finder@example.org");
        const qint64 deck = api.deck()["id"].toInteger();
        api.note(deck, "Fully 100% sure", "snake_case here\nsnakeXcase there\nback\\slash");
        api.note(deck, "Fully 1000 sure", "nothing");
        auto found = [&](const QString &q, const char *what) {
            return api.get("/api/search?q=" + QUrl::toPercentEncoding(q))[what].toArray().size();
        };
        QCOMPARE(found("100%", "notes"), 1);
        QCOMPARE(found("10", "notes"), 2);
        QCOMPARE(found("e_c", "lines"), 1);
        QCOMPARE(found("\\s", "lines"), 1);
        QCOMPARE(found("%", "lines"), 0);
        QCOMPARE(found("SNAKE", "lines"), 2);
    }

    void lostConnectionsAreReplaced()
    {
        if (!TestDatabase::postgresWanted())
            QSKIP("only a database server drops connections");
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("steady@example.org");
        api.deck("Before");
        // What a restart of the database server does to every connection the server holds.
        auto dropConnections = [&] {
            QSqlQuery q(server.database().connect(QString()));
            QVERIFY2(q.exec("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE "
                            "application_name = 'orvel-server' AND datname = current_database()"),
                     qPrintable(q.lastError().text()));
            int dropped = 0;
            while (q.next())
                dropped += q.value(0).toBool() ? 1 : 0;
            QVERIFY(dropped > 0);
        };
        dropConnections();
        QCOMPARE(api.get("/api/decks").array().size(), 1);
        dropConnections();
        QCOMPARE(api.post("/api/decks", QJsonObject{{"name", "After"},
                                                    {"description", ""},
                                                    {"language", "de"},
                                                    {"native_language", "en"}})
                     .status,
                 201);
        QCOMPARE(api.get("/api/decks").array().size(), 2);
    }

    void concurrentWritesAllLand()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("busy@example.org");
        const qint64 deck = api.deck()["id"].toInteger();
        const qint64 note = api.note(deck, "Shared", "first")["id"].toInteger();

        // Each writer changes its own voice in the one settings record and saves the one note
        // whole, over and over: a lost update drops a voice, a torn save mixes two saves.
        constexpr int Writers = 6;
        constexpr int Rounds = 8;
        std::vector<int> failures(Writers, 0);
        std::vector<std::thread> writers;
        for (int w = 0; w < Writers; ++w)
            writers.emplace_back([&, w] {
                Api mine(server.baseUrl());
                mine.setCookie(api.cookie());
                for (int round = 0; round < Rounds; ++round) {
                    const QString voice = QStringLiteral("voice-%1-%2").arg(w).arg(round);
                    if (mine.patch("/api/settings",
                                   QJsonObject{{"voices", QJsonObject{{QStringLiteral("l%1").arg(w),
                                                                       voice}}}})
                            .status != 200)
                        ++failures[w];
                    QJsonArray lines;
                    for (int i = 0; i < 3; ++i)
                        lines.append(
                            QJsonObject{{"text", QStringLiteral("%1 line %2").arg(voice).arg(i)}});
                    if (mine.patch(path("/api/notes/%1", note), QJsonObject{{"lines", lines}})
                            .status != 200)
                        ++failures[w];
                }
            });
        for (std::thread &t : writers)
            t.join();
        for (int w = 0; w < Writers; ++w)
            QCOMPARE(failures[w], 0);

        const QJsonObject voices = api.get("/api/settings")["voices"].toObject();
        QCOMPARE(voices.size(), Writers);
        for (int w = 0; w < Writers; ++w)
            QCOMPARE(voices.value(QStringLiteral("l%1").arg(w)).toString(),
                     QStringLiteral("voice-%1-%2").arg(w).arg(Rounds - 1));
        const QJsonArray lines = api.get(path("/api/notes/%1", note))["lines"].toArray();
        QCOMPARE(lines.size(), 3);
        const QString saved = lines[0]["text"].toString().section(' ', 0, 0);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(lines[i]["text"].toString(), QStringLiteral("%1 line %2").arg(saved).arg(i));
    }
};

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
