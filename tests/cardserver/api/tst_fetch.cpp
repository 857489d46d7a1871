// Picture import's outgoing requests: addresses of the machine itself and its networks refused
// before any connection (also after a redirect), other schemes refused, redirects limited, the
// size cap counted while reading and the deadline kept. A second web server plays the
// "internal" service: it must never see a request.
#include "api.h"
#include "webserver.h"

#include <atomic>
#include <chrono>
#include <QtEndian>
#include <QTest>
#include <thread>

namespace {

QByteArray png(quint32 w, quint32 h)
{
    QByteArray b("\x89PNG\r\n\x1a\n\x00\x00\x00\x0dIHDR", 16);
    b.resize(24);
    qToBigEndian(w, b.data() + 16);
    qToBigEndian(h, b.data() + 20);
    return b + QByteArray("\x08\x06\x00\x00\x00", 5) + QByteArray(8, '\0') + "IEND" +
           QByteArray(4, '\0');
}

} // namespace

class TestFetch : public QObject {
    Q_OBJECT

    const QByteArray picture = png(40, 30);
    WebServer web;      // counts as public for the server under test
    WebServer internal; // an ordinary loopback service
    std::unique_ptr<ServerProcess> server;
    std::unique_ptr<Api> api;

    Api::Reply import(const QString &url)
    {
        return api->post("/api/media/import", QJsonObject{{"url", url}});
    }

private slots:
    void initTestCase()
    {
        for (WebServer *w : {&web, &internal})
            w->routes().Get("/cat.png", [this](const httplib::Request &, httplib::Response &res) {
                res.set_content(picture.toStdString(), "image/png");
            });
        web.routes().Get("/to-internal", [this](const httplib::Request &, httplib::Response &res) {
            res.set_redirect(internal.url("/cat.png").toStdString());
        });
        web.routes().Get("/to-file", [](const httplib::Request &, httplib::Response &res) {
            res.set_redirect("file:///etc/passwd");
        });
        // /hop/N redirects N more times before the picture.
        web.routes().Get(R"(/hop/(\d+))", [](const httplib::Request &req, httplib::Response &res) {
            const int left = std::stoi(req.matches[1]);
            res.set_redirect(left > 1 ? "/hop/" + std::to_string(left - 1) : "/cat.png");
        });
        web.routes().Get("/endless.png", [this](const httplib::Request &, httplib::Response &res) {
            res.set_chunked_content_provider("image/png", [this](size_t, httplib::DataSink &sink) {
                const std::string block(64 * 1024, 'x');
                return !web.stopping() && sink.write(block.data(), block.size());
            });
        });
        web.routes().Get("/slow.png", [this](const httplib::Request &, httplib::Response &res) {
            res.set_chunked_content_provider("image/png", [this](size_t, httplib::DataSink &sink) {
                for (int i = 0; i < 100 && !web.stopping(); ++i)
                    std::this_thread::sleep_for(std::chrono::milliseconds(50));
                sink.done();
                return true;
            });
        });

        server = std::make_unique<ServerProcess>(
            QStringList{"--local", "--fetch-timeout", "1", "--test-public-host", web.hostPort()});
        QVERIFY(startServer(*server));
        api = std::make_unique<Api>(server->baseUrl());
        api->join("fetch@example.org");
    }

    void refusedAddresses_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("internal service") << internal.url("/cat.png");
        QTest::newRow("loopback by name")
            << internal.url("/cat.png").replace("127.0.0.1", "localhost");
        QTest::newRow("other loopback") << "http://127.1.2.3:9/cat.png";
        QTest::newRow("ipv6 loopback") << "http://[::1]:9/cat.png";
        QTest::newRow("ipv4-mapped loopback") << "http://[::ffff:127.0.0.1]:9/cat.png";
        QTest::newRow("private 10/8") << "http://10.0.0.1/cat.png";
        QTest::newRow("private 172.16/12") << "http://172.31.255.1/cat.png";
        QTest::newRow("private 192.168/16") << "https://192.168.1.1/cat.png";
        QTest::newRow("cloud metadata") << "http://169.254.169.254/latest/meta-data/";
        QTest::newRow("unique-local") << "http://[fd00::1]/cat.png";
        QTest::newRow("ipv6 link-local") << "http://[fe80::1]/cat.png";
        QTest::newRow("unspecified") << "http://0.0.0.0:9/cat.png";
        QTest::newRow("multicast") << "http://224.0.0.1/cat.png";
        QTest::newRow("file") << "file:///etc/passwd";
        QTest::newRow("gopher") << "gopher://example.org/1";
        QTest::newRow("redirect to internal") << web.url("/to-internal");
        QTest::newRow("redirect to file") << web.url("/to-file");
    }

    void refusedAddresses()
    {
        QFETCH(QString, url);
        const int before = internal.requests();
        const Api::Reply r = import(url);
        QCOMPARE(r.status, 422);
        QCOMPARE(r.error(), QStringLiteral("That address is not allowed."));
        QCOMPARE(internal.requests(), before);
    }

    void publicAddressAndRedirects()
    {
        const Api::Reply direct = import(web.url("/cat.png"));
        QCOMPARE(direct.status, 201);
        QCOMPARE(direct["width"].toInt(), 40);
        QCOMPARE(api->get(direct["url"].toString()).body, picture);

        QCOMPARE(import(web.url("/hop/3")).status, 201); // three redirects are followed
        const Api::Reply tooMany = import(web.url("/hop/4"));
        QCOMPARE(tooMany.status, 422);
        QCOMPARE(tooMany.error(), QStringLiteral("The picture could not be fetched."));
    }

    void oversizedBodyIsCutOff()
    {
        // The body never ends: only a cap counted while reading answers before the deadline.
        const Api::Reply r = import(web.url("/endless.png"));
        QCOMPARE(r.status, 413);
        QCOMPARE(r.error(), QStringLiteral("That picture is larger than 10 MB."));
    }

    void slowServerHitsTheDeadline()
    {
        const Api::Reply r = import(web.url("/slow.png"));
        QCOMPARE(r.status, 422);
        QCOMPARE(r.error(), QStringLiteral("The picture could not be fetched."));
        // The log says what happened, with the address.
        QTRY_VERIFY(server->log().contains("/slow.png: Operation timed out"));
    }

    void learnersSeeNoDetail()
    {
        for (const QString &url :
             {internal.url("/cat.png"), QStringLiteral("http://nowhere.invalid/x.png")}) {
            const QString error = import(url).error();
            QVERIFY2(!error.contains("127.0.0.1") && !error.contains("curl", Qt::CaseInsensitive) &&
                         !error.contains("nowhere"),
                     qPrintable(error));
        }
        QTRY_VERIFY(server->log().contains("is a loopback address"));
    }

    void privateAddressesWhenAllowed()
    {
        ServerProcess open({"--local", "--allow-private-fetch"});
        QVERIFY(startServer(open));
        Api learner(open.baseUrl());
        learner.join("lan@example.org");
        const Api::Reply r =
            learner.post("/api/media/import", QJsonObject{{"url", internal.url("/cat.png")}});
        QCOMPARE(r.status, 201);
        // Other schemes stay refused.
        QCOMPARE(
            learner.post("/api/media/import", QJsonObject{{"url", "file:///etc/passwd"}}).error(),
            QStringLiteral("That address is not allowed."));
    }

    void pictureSearchProvidersAreCheckedToo()
    {
        internal.routes().Get("/v1/gifs/search",
                              [](const httplib::Request &, httplib::Response &res) {
                                  res.set_content("{\"data\":[{\"images\":{\"original\":{\"url\":"
                                                  "\"https://media.example/cat.gif\"}}}]}",
                                                  "application/json");
                              });
        qputenv("GIPHY_API_KEY", "giphy-key");
        qputenv("ORVEL_GIPHY_URL", internal.url("").toUtf8());
        ServerProcess keyed({"--local"});
        const bool started = startServer(keyed);
        qunsetenv("GIPHY_API_KEY");
        qunsetenv("ORVEL_GIPHY_URL");
        QVERIFY(started);
        Api learner(keyed.baseUrl());
        learner.join("gifs@example.org");
        const int before = internal.requests();
        const Api::Reply r = learner.get("/api/media/search?q=cat&kind=gif");
        QCOMPARE(r.status, 200);
        QCOMPARE(r["results"].toArray().size(), 0);
        QCOMPARE(internal.requests(), before);
        QTRY_VERIFY(keyed.log().contains("(address not allowed)"));
        QVERIFY(!keyed.log().contains("giphy-key"));
    }

    void cleanupTestCase()
    {
        api.reset();
        server.reset();
    }
};

QTEST_GUILESS_MAIN(TestFetch)
#include "tst_fetch.moc"
