#include "app/cardserver.h"

#include "accounts/accountstore.h"
#include "accounts/expirypurge.h"
#include "accounts/loginthrottle.h"
#include "accounts/outbox.h"
#include "accounts/passwordhasher.h"
#include "accounts/sessioncookie.h"
#include "app/services.h"
#include "http/call.h"
#include "http/httpserver.h"
#include "http/router.h"
#include "library/cardstore.h"
#include "library/deckstore.h"
#include "limits/callrate.h"
#include "limits/streamslots.h"
#include "media/mediastore.h"
#include "net/addresspolicy.h"
#include "net/clientaddress.h"
#include "notes/notestore.h"
#include "routes/authroutes.h"
#include "routes/cardroutes.h"
#include "routes/healthroutes.h"
#include "routes/lessonroutes.h"
#include "routes/libraryroutes.h"
#include "routes/mediaroutes.h"
#include "routes/noteroutes.h"
#include "routes/settingsroutes.h"
#include "settings/preferencesstore.h"
#include "speech/speechrenderer.h"
#include "store/database.h"
#include "writers/writerfactory.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QUrl>
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
    case 431:
        return "The request's headers are too large.";
    case 503:
        return "The server is busy; try again in a moment.";
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
    m_purge.reset();
}

void CardServer::start()
{
    prepareDataDir(m_options.dataDir);
    m_db = std::make_unique<Database>(StoreAddress::parse(m_options.database, m_options.dataDir));
    m_db->open();

    const std::chrono::seconds queueWait(m_options.queueWaitSeconds);
    m_speech = std::make_unique<SpeechRenderer>(QDir(m_options.dataDir).filePath("clips"),
                                                qint64(m_options.clipCacheMb) * 1024 * 1024,
                                                m_options.speechWorkers, queueWait);
    WriterConfig config;
    config.tools = &m_speech->tools();
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

    m_hasher = std::make_unique<PasswordHasher>(m_options.hashWorkers, queueWait);
    m_accounts = std::make_unique<AccountStore>(*m_db, *m_hasher);
    m_throttle =
        std::make_unique<LoginThrottle>(*m_db, std::chrono::milliseconds(m_options.loginDelayMs));
    m_purge = std::make_unique<ExpiryPurge>(*m_accounts, *m_throttle,
                                            std::chrono::seconds(m_options.purgeIntervalSeconds));
    m_outbox =
        std::make_unique<Outbox>(QDir(m_options.dataDir).filePath("outbox"), m_options.local);
    m_clientAddress = std::make_unique<ClientAddress>(m_options.trustedProxies);
    m_streams = std::make_unique<StreamSlots>(m_options.streamsPerAccount);
    // Only a language model's calls are counted: the dictionary costs nothing to ask.
    m_modelCalls = std::make_unique<CallRate>(
        m_writer->name() == QLatin1String("llm") ? m_options.llmCallsPerMinute : 0,
        std::chrono::minutes(1));
    m_decks = std::make_unique<DeckStore>(*m_db);
    m_cards = std::make_unique<CardStore>(*m_db);
    m_notes = std::make_unique<NoteStore>(*m_db);
    m_media = std::make_unique<MediaStore>(*m_db, QDir(m_options.dataDir).filePath("media"));
    m_preferences = std::make_unique<PreferencesStore>(*m_db, m_speech->available());
    m_services.reset(new Services{m_options, *m_db, *m_accounts, *m_throttle, *m_outbox, *m_decks,
                                  *m_cards, *m_notes, *m_media, *m_preferences, *m_writer,
                                  *m_speech, *m_hasher, *m_clientAddress, *m_streams, *m_modelCalls,
                                  QString()});

    HttpLimits limits;
    limits.maxBodyBytes = size_t(MediaRoutes::MaxBytes);
    limits.maxConnections = m_options.maxConnections;
    limits.idleTimeoutSeconds = m_options.idleTimeoutSeconds;
    limits.readTimeoutSeconds = m_options.readTimeoutSeconds;
    limits.workerThreads = m_options.requestThreads;
    limits.streamThreads = m_options.streamThreads;
    limits.backlog = AcceptBacklog;
    m_http = std::make_unique<HttpServer>(limits);
    m_http->setErrorBody([](HttpResponse &res) {
        const char *words = statusWords(res.status);
        Call::sendError(res, res.status,
                        words ? QString::fromUtf8(words)
                              : QStringLiteral("The server answered %1.").arg(res.status));
    });
    installRoutes();

    try {
        m_port = m_http->bind(m_options.host.toStdString(), m_options.port);
    } catch (const std::exception &) {
        if (m_options.port == 0)
            throw std::runtime_error(("cannot listen on " + m_options.host).toStdString());
        throw std::runtime_error(QStringLiteral("cannot listen on %1:%2 (in use?)")
                                     .arg(m_options.host)
                                     .arg(m_options.port)
                                     .toStdString());
    }
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
    // Browsers send this as Origin from the server's own pages (the reset form).
    const QUrl own(m_services->publicUrl);
    m_http->setOwnOrigin(own.isValid() ? own.adjusted(QUrl::RemovePath | QUrl::RemoveQuery |
                                                      QUrl::RemoveFragment | QUrl::RemoveUserInfo)
                                             .toString()
                                             .toStdString()
                                       : std::string());
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
            call.setHeader("Set-Cookie", SessionCookie::set(token, call, m_services->publicUrl));
        return userId;
    });
    AuthRoutes::install(router, *m_services);
    LibraryRoutes::install(router, *m_services);
    CardRoutes::install(router, *m_services);
    NoteRoutes::install(router, *m_services);
    LessonRoutes::install(router, *m_services);
    MediaRoutes::install(router, *m_services);
    SettingsRoutes::install(router, *m_services);
    HealthRoutes::install(router, *m_db);
}

void CardServer::serve()
{
    m_http->run();
}

void CardServer::stop()
{
    if (m_http)
        m_http->stop();
}

} // namespace cardserver
