#include "app/cardserver.h"

#include "accounts/accountstore.h"
#include "accounts/loginthrottle.h"
#include "accounts/outbox.h"
#include "accounts/sessioncookie.h"
#include "app/services.h"
#include "http/call.h"
#include "http/httpserver.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "media/mediastore.h"
#include "net/addresspolicy.h"
#include "notes/notestore.h"
#include "routes/authroutes.h"
#include "routes/cardroutes.h"
#include "routes/lessonroutes.h"
#include "routes/libraryroutes.h"
#include "routes/mediaroutes.h"
#include "routes/noteroutes.h"
#include "routes/settingsroutes.h"
#include "settings/preferencesstore.h"
#include "speech/speechrenderer.h"
#include "store/database.h"
#include "writers/writerfactory.h"

#include <httplib.h>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <stdexcept>

namespace cardserver {

namespace {

void prepareDataDir(const QString &dir)
{
    if (!QDir().mkpath(dir))
        throw std::runtime_error(("cannot make the data folder " + dir).toStdString());
    QFile probe(QDir(dir).filePath(QStringLiteral(".writable")));
    if (!probe.open(QIODevice::WriteOnly))
        throw std::runtime_error(("the data folder " + dir + " is not writable").toStdString());
    probe.close();
    probe.remove();
}

const char *statusWords(int status)
{
    switch (status) {
    case 400:
        return "The request could not be read.";
    case 404:
        return "Not found.";
    case 405:
        return "That method is not allowed here.";
    case 413:
        return "That is too large: the limit is 10 MB.";
    case 415:
        return "That kind of content is not accepted here.";
    default:
        return nullptr;
    }
}

} // namespace

CardServer::CardServer(ServerOptions options) : m_options(std::move(options)) {}

CardServer::~CardServer()
{
    // The HTTP server's threads go first: they use everything else.
    m_http.reset();
}

void CardServer::start()
{
    prepareDataDir(m_options.dataDir);
    m_db = std::make_unique<Database>(StoreAddress::parse(m_options.database, m_options.dataDir));
    m_db->open();

    WriterConfig config;
    config.kind = m_options.writer;
    config.llmUrl = m_options.llmUrl;
    config.llmModel = m_options.llmModel;
    config.llmKey = QProcessEnvironment::systemEnvironment().value(QStringLiteral("ORVEL_LLM_KEY"));
    config.dictionaryDir = m_options.dictionaryDir;
    config.addresses = AddressPolicy::fromOptions(m_options);
    try {
        m_writer = makeWriter(config);
    } catch (const WriterError &e) {
        throw std::runtime_error(e.what());
    }
    m_speech = std::make_unique<SpeechRenderer>(QDir(m_options.dataDir).filePath("clips"));

    m_accounts = std::make_unique<AccountStore>(*m_db);
    m_throttle = std::make_unique<LoginThrottle>();
    m_outbox = std::make_unique<Outbox>(QDir(m_options.dataDir).filePath("outbox"));
    m_decks = std::make_unique<DeckStore>(*m_db);
    m_cards = std::make_unique<CardStore>(*m_db);
    m_notes = std::make_unique<NoteStore>(*m_db);
    m_media = std::make_unique<MediaStore>(*m_db, QDir(m_options.dataDir).filePath("media"));
    m_preferences = std::make_unique<PreferencesStore>(*m_db, m_speech->available());
    m_services.reset(new Services{m_options, *m_db, *m_accounts, *m_throttle, *m_outbox, *m_decks,
                                  *m_cards, *m_notes, *m_media, *m_preferences, *m_writer,
                                  *m_speech, QString()});

    m_http = std::make_unique<HttpServer>();
    m_http->new_task_queue = [] { return new httplib::ThreadPool(RequestThreads); };
    m_http->set_payload_max_length(size_t(MediaRoutes::MaxBytes));
    m_http->set_keep_alive_max_count(10'000);
    m_http->set_tcp_nodelay(true);
    m_http->set_error_handler(
        httplib::Server::HandlerWithResponse([](const httplib::Request &, httplib::Response &res) {
            if (!res.body.empty())
                return httplib::Server::HandlerResponse::Unhandled;
            const char *words = statusWords(res.status);
            Call::sendError(res, res.status,
                            words ? QString::fromUtf8(words)
                                  : QStringLiteral("The server answered %1.").arg(res.status));
            return httplib::Server::HandlerResponse::Handled;
        }));
    m_http->set_exception_handler(
        [](const httplib::Request &req, httplib::Response &res, std::exception_ptr ep) {
            try {
                std::rethrow_exception(ep);
            } catch (const std::exception &e) {
                qWarning().noquote() << req.path.c_str() << "failed:" << e.what();
            } catch (...) {
            }
            Call::sendError(res, 500, QStringLiteral("The server ran into a problem."));
        });
    installRoutes();

    if (m_options.port == 0) {
        m_port = m_http->bind_to_any_port(m_options.host.toStdString());
        if (m_port <= 0)
            throw std::runtime_error(("cannot listen on " + m_options.host).toStdString());
    } else {
        if (!m_http->bind_to_port(m_options.host.toStdString(), m_options.port))
            throw std::runtime_error(QStringLiteral("cannot listen on %1:%2 (in use?)")
                                         .arg(m_options.host)
                                         .arg(m_options.port)
                                         .toStdString());
        m_port = m_options.port;
    }
    m_http->widenBacklog(AcceptBacklog);
    const QString publicUrl =
        QProcessEnvironment::systemEnvironment().value(QStringLiteral("ORVEL_PUBLIC_URL"));
    m_services->publicUrl =
        !publicUrl.isEmpty()
            ? publicUrl
            : QStringLiteral("http://%1:%2")
                  .arg(m_options.host.contains(':') ? "[" + m_options.host + "]" : m_options.host)
                  .arg(m_port);
    while (m_services->publicUrl.endsWith('/'))
        m_services->publicUrl.chop(1);
}

void CardServer::installRoutes()
{
    Router router(*m_http, [this](Call &call) -> qint64 {
        const QString token = SessionCookie::read(call);
        if (token.isEmpty())
            return 0;
        bool refreshed = false;
        const qint64 userId = m_accounts->sessionUser(token, &refreshed);
        if (refreshed)
            call.setHeader("Set-Cookie", SessionCookie::set(token, call));
        return userId;
    });
    AuthRoutes::install(router, *m_services);
    LibraryRoutes::install(router, *m_services);
    CardRoutes::install(router, *m_services);
    NoteRoutes::install(router, *m_services);
    LessonRoutes::install(router, *m_services);
    MediaRoutes::install(router, *m_services);
    SettingsRoutes::install(router, *m_services);
}

void CardServer::serve()
{
    m_http->listen_after_bind();
}

void CardServer::stop()
{
    if (m_http)
        m_http->stop();
}

} // namespace cardserver
