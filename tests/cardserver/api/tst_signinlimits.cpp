// Limits on signing in, over HTTP: failed sign-ins make the next try wait longer each time,
// counted per address and per client IP in the store (two servers on one store share them), so
// that failures from elsewhere delay the owner of an address only a little; the address is checked
// before anything is looked up; a wrong current password on a password change counts as a failed
// sign-in; password hashes run a few at a time, and a sign-in that finds no free worker in time
// hears the server is busy; mailed links are rationed per address and per client.
#include "api.h"
#include "processmemory.h"

#include <atomic>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <thread>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define ORVEL_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVEL_UNDER_ASAN 1
#endif
#endif

namespace {

Api::Reply login(Api &api, const char *email, const char *password)
{
    return api.post("/api/auth/login", QJsonObject{{"email", email}, {"password", password}});
}

int retryAfter(const Api::Reply &reply)
{
    return reply.header("Retry-After").toInt();
}

// Tries to sign in until the answer is no longer "wait" (within a bound); returns that answer's
// status. (QTRY_COMPARE would send one more sign-in to report on.)
int onceLetThrough(Api &api, const char *email, const char *password)
{
    QElapsedTimer clock;
    clock.start();
    int status = login(api, email, password).status;
    while (status == 429 && clock.elapsed() < 30'000) {
        QTest::qWait(100);
        status = login(api, email, password).status;
    }
    return status;
}

// A client behind the trusted (loopback) proxy, as the proxy names it.
std::unique_ptr<Api> client(const ServerProcess &server, const char *forwardedFor)
{
    auto api = std::make_unique<Api>(server.baseUrl());
    api->setHeader("X-Forwarded-For", forwardedFor);
    return api;
}

// Runs `count` sign-ins at once, each on a connection of its own; returns their statuses.
QList<int> signInsAtOnce(const ServerProcess &server, int count, QString *busyText)
{
    QList<int> statuses(count);
    std::vector<std::thread> threads;
    std::mutex lock;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            Api api(server.baseUrl());
            const Api::Reply r = login(api, "many@example.org", "the right one");
            statuses[i] = r.status;
            std::lock_guard guard(lock);
            if (r.status == 503)
                *busyText = r.error();
        });
    for (std::thread &t : threads)
        t.join();
    return statuses;
}

} // namespace

class TestSignInLimits : public QObject {
    Q_OBJECT

private slots:
    void failuresMakeEachNextTryWaitLonger()
    {
        ServerProcess server({"--local", "--login-delay-ms", "2000"});
        QVERIFY(startServer(server));
        Api(server.baseUrl()).join("eve@example.org", "the right one");
        const auto guesser = client(server, "203.0.113.7");
        for (int i = 0; i < 5; ++i)
            QCOMPARE(login(*guesser, "eve@example.org", "not it").status, 401);

        const Api::Reply first = login(*guesser, "eve@example.org", "not it");
        QCOMPARE(first.status, 429);
        QVERIFY2(first.error().contains("Wait"), qPrintable(first.error()));
        QVERIFY(retryAfter(first) >= 1 && retryAfter(first) <= 2);
        // While it waits, even the right password from there is not checked.
        QCOMPARE(login(*guesser, "EVE@example.org", "the right one").status, 429);
        // Naming another client before the proxy's own entry changes nothing.
        QCOMPARE(login(*client(server, "198.51.100.1, 203.0.113.7"), "eve@example.org", "x").status,
                 429);

        // Once the wait is over one more try is checked, and the next wait is longer.
        QCOMPARE(onceLetThrough(*guesser, "eve@example.org", "not it"), 401);
        const Api::Reply second = login(*guesser, "eve@example.org", "not it");
        QCOMPARE(second.status, 429);
        QVERIFY(retryAfter(second) > retryAfter(first));

        // The owner, from their own address, is not held up by these failures.
        QCOMPARE(login(*client(server, "198.51.100.2"), "eve@example.org", "the right one").status,
                 200);
    }

    void failuresFromEverywhereDelayTheOwnerALittle()
    {
        ServerProcess server({"--local", "--login-delay-ms", "500"});
        QVERIFY(startServer(server));
        Api(server.baseUrl()).join("ann@example.org", "the right one");
        // Guesses from thirteen places: the address's own wait grows (½ s, 1 s, 2 s) to its
        // cap of four steps, where a client's own wait would go on doubling.
        for (int i = 0; i < 13; ++i) {
            const auto guesser = client(server, ("203.0.113." + QByteArray::number(10 + i)).data());
            QCOMPARE(onceLetThrough(*guesser, "ann@example.org", "guess"), 401);
        }
        const auto owner = client(server, "198.51.100.3");
        const Api::Reply delayed = login(*owner, "ann@example.org", "the right one");
        if (delayed.status == 429)
            QVERIFY2(retryAfter(delayed) >= 1 && retryAfter(delayed) <= 2,
                     qPrintable(delayed.header("Retry-After")));
        else
            QCOMPARE(delayed.status, 200);
        QCOMPARE(onceLetThrough(*owner, "ann@example.org", "the right one"), 200);
        // Other addresses are not slowed at all.
        QCOMPARE(login(*client(server, "203.0.113.10"), "ann2@example.org", "guess").status, 401);
    }

    void aSessionCannotBeUsedToGuessThePassword()
    {
        ServerProcess server({"--local", "--login-delay-ms", "60000"});
        QVERIFY(startServer(server));
        Api holder(server.baseUrl());
        holder.setHeader("X-Forwarded-For", "203.0.113.20");
        holder.join("dee@example.org", "the right one");
        const auto change = [&](const char *current) {
            return holder.post("/api/settings/password",
                               QJsonObject{{"current", current}, {"next", "a new password"}});
        };
        for (int i = 0; i < 5; ++i)
            QCOMPARE(change("guess").status, 403);
        const Api::Reply held = change("the right one");
        QCOMPARE(held.status, 429);
        QVERIFY(retryAfter(held) > 0);
        // The guesses count as sign-in failures from there as well; the password is unchanged
        // and its owner, elsewhere, still signs in with it.
        QCOMPARE(login(*client(server, "203.0.113.20"), "dee@example.org", "the right one").status,
                 429);
        QCOMPARE(login(*client(server, "198.51.100.5"), "dee@example.org", "the right one").status,
                 200);
    }

    void mailedLinksAreRationed()
    {
        // Not --local: links go out by mail, so each request here would write one.
        ServerProcess server({"--login-delay-ms", "60000"});
        QVERIFY(startServer(server));
        const QDir outbox(server.dataDir() + "/outbox");
        const auto mails = [&] { return outbox.entryList(QDir::Files).size(); };
        const auto signUp = [&](Api &api, const QString &email) {
            return api.post("/api/auth/signup",
                            QJsonObject{{"email", email}, {"password", "long enough"}});
        };

        // One address: its sign-up and two more confirmations, then it has to wait, whichever
        // way the link is asked for, and nothing more is written.
        const auto mine = client(server, "198.51.100.20");
        QCOMPARE(signUp(*mine, "flo@example.org").status, 201);
        for (int i = 0; i < 2; ++i)
            QCOMPARE(
                mine->post("/api/auth/resend", QJsonObject{{"email", "flo@example.org"}}).status,
                200);
        QCOMPARE(mails(), 3);
        const Api::Reply refused =
            mine->post("/api/auth/resend", QJsonObject{{"email", "FLO@example.org"}});
        QCOMPARE(refused.status, 429);
        QVERIFY(retryAfter(refused) >= 50);
        const Api::Reply page = mine->postRaw("/app/forgot", "email=flo%40example.org",
                                              "application/x-www-form-urlencoded");
        QCOMPARE(page.status, 429);
        QVERIFY(page.body.contains("Wait"));
        QCOMPARE(mails(), 3);

        // One client: ten requests for addresses with or without accounts, then it waits too,
        // while another client is not held up.
        const auto spammer = client(server, "203.0.113.40");
        for (int i = 0; i < 10; ++i)
            QVERIFY(spammer
                        ->post("/api/auth/resend",
                               QJsonObject{{"email", QString("nobody%1@example.org").arg(i)}})
                        .status == 200);
        QCOMPARE(signUp(*spammer, "new@example.org").status, 429);
        QCOMPARE(mails(), 3);
        QCOMPARE(signUp(*client(server, "198.51.100.21"), "gus@example.org").status, 201);
        QCOMPARE(mails(), 4);
    }

    void aSecondServerOnTheStoreSeesTheFailures()
    {
        QTemporaryDir shared;
        const QString store = shared.filePath("orvel.sqlite");
        ServerProcess first({"--local", "--database", store, "--login-delay-ms", "60000"});
        QVERIFY(startServer(first));
        Api(first.baseUrl()).join("cy@example.org", "the right one");
        ServerProcess second({"--local", "--database", store, "--login-delay-ms", "60000"});
        QVERIFY(startServer(second));

        for (int i = 0; i < 5; ++i)
            QCOMPARE(login(*client(first, "203.0.113.9"), "cy@example.org", "guess").status, 401);
        QCOMPARE(login(*client(second, "203.0.113.9"), "cy@example.org", "the right one").status,
                 429);
        QCOMPARE(login(*client(second, "198.51.100.4"), "cy@example.org", "the right one").status,
                 200);
    }

    void theClientIsFoundBehindAChainOfTrustedProxies()
    {
        ServerProcess server(
            {"--local", "--login-delay-ms", "60000", "--trusted-proxy", "10.0.0.5"});
        QVERIFY(startServer(server));
        Api(server.baseUrl()).join("dan@example.org", "the right one");
        for (int i = 0; i < 5; ++i)
            QCOMPARE(
                login(*client(server, "203.0.113.50, 10.0.0.5"), "dan@example.org", "guess").status,
                401);
        // The same client reaching the first proxy directly is the same client.
        QCOMPARE(login(*client(server, "203.0.113.50"), "dan@example.org", "guess").status, 429);
        // An untrusted hop in between is where belief stops.
        QCOMPARE(
            login(*client(server, "203.0.113.50, 10.0.0.6"), "dan@example.org", "the right one")
                .status,
            200);
    }

    void theAddressIsCheckedFirst()
    {
        ServerProcess server({"--local", "--login-delay-ms", "60000"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("bea@example.org", "the right one");
        const QByteArray longAddress = QByteArray(250, 'a') + "@example.org";
        for (int i = 0; i < 8; ++i) {
            const Api::Reply odd = login(api, "not an address", "whatever");
            QCOMPARE(odd.status, 422);
            QCOMPARE(odd.error(), QStringLiteral("Enter a valid email address."));
            QCOMPARE(login(api, longAddress.constData(), "whatever").status, 422);
        }
        // Malformed tries are not failures: nothing waits.
        QCOMPARE(login(api, "bea@example.org", "the right one").status, 200);
    }

    void hashesRunAFewAtATime()
    {
        ServerProcess server({"--local", "--hash-workers", "2", "--queue-wait", "600"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("many@example.org", "the right one");
        QCOMPARE(login(api, "many@example.org", "the right one").status, 200);
        const qint64 before = peakResidentBytes(server.pid());
        QVERIFY(before > 0);

        QString busy;
        const QList<int> statuses = signInsAtOnce(server, 40, &busy);
        QCOMPARE(statuses, QList<int>(40, 200));
#ifndef ORVEL_UNDER_ASAN
        // Two hashes of 64 MiB at most at once (one of them already in the peak before), with
        // room for the connections' own memory. AddressSanitizer keeps freed memory in
        // quarantine, so the figure means nothing there.
        const qint64 after = peakResidentBytes(server.pid());
        QVERIFY2(after - before < 2 * 64LL * 1024 * 1024 + 48LL * 1024 * 1024,
                 qPrintable(QStringLiteral("peak rose by %1 MiB").arg((after - before) >> 20)));
#endif
    }

    void busyWhenNoWorkerComesFree()
    {
        ServerProcess server({"--local", "--hash-workers", "1", "--queue-wait", "0"});
        QVERIFY(startServer(server));
        Api(server.baseUrl()).join("many@example.org", "the right one");
        QString busy;
        const QList<int> statuses = signInsAtOnce(server, 20, &busy);
        QVERIFY(statuses.contains(503));
        QVERIFY(statuses.contains(200));
        QCOMPARE(statuses.count(200) + statuses.count(503), 20);
        QCOMPARE(busy, QStringLiteral("The server is busy; try again in a moment."));
    }
};

QTEST_GUILESS_MAIN(TestSignInLimits)
#include "tst_signinlimits.moc"
