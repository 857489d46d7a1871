#include "apiclient.h"

#include "localsettings.h"
#include "persistentcookiejar.h"
#include "server/settingskeys.h"

#include <QCoreApplication>
#include <qcoro/qcoronetworkreply.h>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QStandardPaths>

namespace orvel {

namespace {

constexpr int requestTimeoutMs = 60'000;
constexpr int streamTimeoutMs = 300'000;
constexpr qint64 diskCacheBytes = 256LL * 1024 * 1024;

const char *const defaultServer = "https://orvel.app";

// A usable server address: it must parse strictly and name a scheme and a host.
std::optional<QUrl> parseHost(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return std::nullopt;
    const QUrl url(trimmed, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty())
        return std::nullopt;
    return url;
}

QString idPath(const char *prefix, int id, const char *suffix = "")
{
    return QLatin1String(prefix) + QString::number(id) + QLatin1String(suffix);
}

} // namespace

APIClient::APIClient(std::optional<QUrl> baseUrl, QObject *parent)
    : APIClient(std::move(baseUrl), PersistentCookieJar::defaultPath(),
                QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                    QStringLiteral("/orvel"),
                parent)
{}

APIClient::APIClient(std::optional<QUrl> baseUrl, const QString &cookiePath,
                     const QString &cachePath, QObject *parent)
    : QObject(parent)
{
    if (baseUrl && baseUrl->isValid())
        m_baseUrl = *baseUrl;
    else if (auto host = hostOverride(QCoreApplication::arguments()))
        m_baseUrl = *host;
    else
        m_baseUrl = defaultBaseUrl();
    setUp(cookiePath, cachePath);
}

APIClient::~APIClient()
{
    // Replies still in flight are deleted with the network manager, and a coroutine awaiting a
    // deleted reply is never resumed: it would stay suspended for good, holding its frame and
    // those of every coroutine awaiting it. Aborted first, they finish as transport errors, so
    // each caller resumes, sees the error (and, having outlived its own object, its QPointer
    // guard) and returns.
    const auto replies = m_network->findChildren<QNetworkReply *>(Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies)
        reply->abort();
}

QUrl APIClient::defaultBaseUrl()
{
    const QUrl url(QString::fromLatin1(defaultServer), QUrl::StrictMode);
    Q_ASSERT_X(url.isValid(), "APIClient", "the default server address must parse");
    if (!url.isValid())
        qFatal("The default server address does not parse");
    return url;
}

std::optional<QUrl> APIClient::hostOverride(const QStringList &arguments)
{
    const QString flag = QLatin1Char('-') + settingskeys::host();
    const QString longFlag = QStringLiteral("--") + settingskeys::host() + QLatin1Char('=');
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if ((argument == flag || argument == QLatin1Char('-') + flag) && i + 1 < arguments.size())
            return parseHost(arguments.at(i + 1));
        if (argument.startsWith(longFlag))
            return parseHost(argument.mid(longFlag.size()));
    }
    const QByteArray environment = qgetenv("ZELON_HOST");
    if (!environment.isEmpty())
        return parseHost(QString::fromUtf8(environment));
    const QVariant stored = LocalSettings::store().value(settingskeys::host());
    if (stored.isValid())
        return parseHost(stored.toString());
    return std::nullopt;
}

void APIClient::setUp(const QString &cookiePath, const QString &cachePath)
{
    m_network = new QNetworkAccessManager(this);
    m_cookies = new PersistentCookieJar(cookiePath, m_network);
    m_network->setCookieJar(m_cookies);
    m_cookies->setParent(m_network);
    if (!cachePath.isEmpty()) {
        auto *cache = new QNetworkDiskCache(m_network);
        cache->setCacheDirectory(cachePath);
        cache->setMaximumCacheSize(diskCacheBytes);
        m_network->setCache(cache);
    }
}

QUrl APIClient::url(const QString &path, const Query &query) const
{
    QUrl url = m_baseUrl;
    QString base = url.path();
    if (!base.endsWith(QLatin1Char('/')))
        base += QLatin1Char('/');
    url.setPath(base + QStringLiteral("api/") + path);
    if (!query.isEmpty()) {
        // Values are fully percent-encoded (a "+" would otherwise read as a space).
        QStringList items;
        items.reserve(query.size());
        for (const auto &[name, value] : query) {
            items.append(QString::fromLatin1(QUrl::toPercentEncoding(name)) + QLatin1Char('=') +
                         QString::fromLatin1(QUrl::toPercentEncoding(value)));
        }
        url.setQuery(items.join(QLatin1Char('&')), QUrl::StrictMode);
    } else {
        url.setQuery(QString());
    }
    return url;
}

QNetworkRequest APIClient::request(const QUrl &url, bool hasBody) const
{
    QNetworkRequest request(url);
    request.setTransferTimeout(requestTimeoutMs);
    request.setRawHeader("Accept", "application/json");
    if (hasBody)
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QByteArrayLiteral("application/json"));
    return request;
}

QNetworkRequest APIClient::streamRequest(const QUrl &url) const
{
    QNetworkRequest request(url);
    request.setRawHeader("Accept", "text/event-stream");
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setTransferTimeout(streamTimeoutMs);
    return request;
}

QCoro::Task<QByteArray> APIClient::send(QNetworkRequest request, QByteArray method, QByteArray body)
{
    std::unique_ptr<QNetworkReply, void (*)(QNetworkReply *)> reply(
        m_network->sendCustomRequest(request, method, body),
        [](QNetworkReply *r) { r->deleteLater(); });
    co_await reply.get();

    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        throw TransportError(int(reply->error()), reply->errorString());
    const QByteArray bytes = reply->readAll();
    const int code = status.toInt();
    if (code < 200 || code > 299)
        throw APIError(code, APIError::messageFrom(bytes, code));
    co_return bytes;
}

QCoro::Task<QByteArray> APIClient::sendJson(const QString &path, QByteArray method,
                                            const RequestBody &body, json::KeyStyle style)
{
    co_return co_await send(request(url(path), true), method, body.encode(style));
}

QCoro::Task<QByteArray> APIClient::voidCall(QString path, QByteArray method)
{
    co_return co_await send(request(url(path)), method);
}

QCoro::Task<QByteArray> APIClient::fetch(QUrl url)
{
    QNetworkRequest clip(url);
    clip.setTransferTimeout(requestTimeoutMs);
    co_return co_await send(clip, "GET");
}

std::unique_ptr<StreamReply> APIClient::openStream(const QString &path, const RequestBody &body)
{
    QNetworkReply *reply =
        m_network->post(streamRequest(url(path)), body.encode(json::KeyStyle::Snake));
    return std::make_unique<StreamReply>(reply);
}

// Account and session.

QCoro::Task<User> APIClient::me()
{
    co_return co_await get<User>(QStringLiteral("auth/me"));
}

QCoro::Task<User> APIClient::signIn(QString email, QString password)
{
    co_return co_await post<User>(QStringLiteral("auth/login"),
                                  RequestBody().set("email", email).set("password", password));
}

QCoro::Task<Done> APIClient::signUp(QString email, QString password, QString displayName)
{
    co_return co_await post<Done>(QStringLiteral("auth/signup"),
                                  RequestBody()
                                      .set("email", email)
                                      .set("password", password)
                                      .set("displayName", displayName));
}

QCoro::Task<Done> APIClient::resendVerification(QString email)
{
    co_return co_await post<Done>(QStringLiteral("auth/resend"), RequestBody().set("email", email));
}

QCoro::Task<AuthOptions> APIClient::authOptions()
{
    co_return co_await get<AuthOptions>(QStringLiteral("auth/options"));
}

QCoro::Task<User> APIClient::exchange(QString code)
{
    co_return co_await post<User>(QStringLiteral("auth/exchange"), RequestBody().set("code", code));
}

QCoro::Task<void> APIClient::signOut()
{
    co_await voidCall(QStringLiteral("auth/logout"), "POST");
}

QCoro::Task<Preferences> APIClient::preferences()
{
    co_return co_await get<Preferences>(QStringLiteral("settings"));
}

QCoro::Task<Preferences> APIClient::saveSettings(SettingsChange change)
{
    RequestBody body;
    body.setIfPresent("rate", change.rate)
        .setIfPresent("gain", change.gain)
        .setIfPresent("hearOnFlip", change.hearOnFlip)
        .setIfPresent("voices", change.voices)
        .setIfPresent("skin", change.skin)
        .setIfPresent("marginAsYouGo", change.marginAsYouGo);
    co_return co_await patchLiteral<Preferences>(QStringLiteral("settings"), body);
}

QCoro::Task<Done> APIClient::changePassword(QString current, QString replacement)
{
    co_return co_await postLiteral<Done>(
        QStringLiteral("settings/password"),
        RequestBody().set("current", current).set("next", replacement));
}

QCoro::Task<VoiceOffer> APIClient::voices()
{
    co_return co_await get<VoiceOffer>(QStringLiteral("settings/voices"));
}

// Library.

QCoro::Task<QList<DeckSummary>> APIClient::decks()
{
    co_return co_await get<QList<DeckSummary>>(QStringLiteral("decks"));
}

QCoro::Task<QList<Folder>> APIClient::folders()
{
    co_return co_await get<QList<Folder>>(QStringLiteral("folders"));
}

QCoro::Task<DeckSummary> APIClient::createDeck(QString name, QString description, QString language,
                                               QString nativeLanguage, std::optional<int> folder)
{
    RequestBody body;
    body.set("name", name)
        .set("description", description)
        .set("language", language)
        .set("nativeLanguage", nativeLanguage)
        .setIfPresent("folderId", folder);
    co_return co_await post<DeckSummary>(QStringLiteral("decks"), body);
}

QCoro::Task<Deck> APIClient::deck(int id)
{
    co_return co_await get<Deck>(idPath("decks/", id));
}

QCoro::Task<DeckSummary> APIClient::renameDeck(int id, QString name, QString description)
{
    co_return co_await patch<DeckSummary>(
        idPath("decks/", id), RequestBody().set("name", name).set("description", description));
}

QCoro::Task<DeckSummary> APIClient::moveDeck(int id, std::optional<int> folder)
{
    // Always sent: null takes the deck out of its folder, while an absent key would leave it.
    co_return co_await patch<DeckSummary>(idPath("decks/", id),
                                          RequestBody().set("folderId", folder));
}

QCoro::Task<void> APIClient::deleteDeck(int id)
{
    co_await voidCall(idPath("decks/", id), "DELETE");
}

QCoro::Task<Folder> APIClient::createFolder(QString name)
{
    co_return co_await post<Folder>(QStringLiteral("folders"), RequestBody().set("name", name));
}

QCoro::Task<Folder> APIClient::renameFolder(int id, QString name)
{
    co_return co_await patch<Folder>(idPath("folders/", id), RequestBody().set("name", name));
}

QCoro::Task<void> APIClient::deleteFolder(int id)
{
    co_await voidCall(idPath("folders/", id), "DELETE");
}

QCoro::Task<QList<Language>> APIClient::languages()
{
    co_return co_await get<QList<Language>>(QStringLiteral("languages"));
}

QCoro::Task<SearchResults> APIClient::search(QString text)
{
    // Built before the co_await: GCC 12 cannot keep a braced list alive across a suspension.
    Query query;
    query.append({QStringLiteral("q"), text});
    co_return co_await get<SearchResults>(QStringLiteral("search"), query);
}

// Cards.

EventStream<CardEvent> APIClient::addCardStreaming(int deck, const QString &input)
{
    return EventStream<CardEvent>(
        openStream(idPath("decks/", deck, "/cards"), RequestBody().set("input", input)));
}

EventStream<ExtractEvent> APIClient::extract(int deck, const QString &text)
{
    return EventStream<ExtractEvent>(
        openStream(idPath("decks/", deck, "/extract"), RequestBody().set("text", text)));
}

EventStream<BatchEvent> APIClient::addCards(int deck, const QList<BatchWord> &words)
{
    return EventStream<BatchEvent>(
        openStream(idPath("decks/", deck, "/cards/batch"), RequestBody().set("words", words)));
}

QCoro::Task<Card> APIClient::regenerate(int card)
{
    co_return co_await post<Card>(idPath("cards/", card, "/regenerate"));
}

QCoro::Task<Card> APIClient::review(int card, bool known)
{
    co_return co_await post<Card>(idPath("cards/", card, "/review"),
                                  RequestBody().set("known", known));
}

QCoro::Task<void> APIClient::deleteCard(int card)
{
    co_await voidCall(idPath("cards/", card), "DELETE");
}

// Short lessons.

QCoro::Task<Byte> APIClient::byte(int deck, QString topic)
{
    const Offered offered =
        co_await post<Offered>(idPath("decks/", deck, "/byte"), RequestBody().set("topic", topic));
    co_return offered.byte;
}

QCoro::Task<Landed> APIClient::keepByte(int deck, Byte byte, QList<Kept> keep, bool context,
                                        std::optional<int> noteId)
{
    RequestBody body;
    body.set("byte", byte).set("keep", keep).set("context", context).setIfPresent("noteId", noteId);
    co_return co_await post<Landed>(idPath("decks/", deck, "/byte/keep"), body);
}

// Notes.

QCoro::Task<QList<NoteSummary>> APIClient::notes(int deck)
{
    co_return co_await get<QList<NoteSummary>>(idPath("decks/", deck, "/notes"));
}

QCoro::Task<Note> APIClient::createNote(int deck, QString title, QString text)
{
    co_return co_await post<Note>(idPath("decks/", deck, "/notes"),
                                  RequestBody().set("title", title).set("text", text));
}

QCoro::Task<Note> APIClient::note(int id)
{
    co_return co_await get<Note>(idPath("notes/", id));
}

QCoro::Task<Note> APIClient::saveNote(int id, QString title, QList<NoteDraftLine> lines)
{
    co_return co_await patch<Note>(idPath("notes/", id),
                                   RequestBody().set("title", title).set("lines", lines));
}

QCoro::Task<void> APIClient::deleteNote(int id)
{
    co_await voidCall(idPath("notes/", id), "DELETE");
}

EventStream<AnnotateEvent> APIClient::annotate(int note, bool all)
{
    return EventStream<AnnotateEvent>(
        openStream(idPath("notes/", note, "/annotate"), RequestBody().set("all", all)));
}

QCoro::Task<Note> APIClient::annotateLine(int note, int line)
{
    const Reply reply = co_await post<Reply>(idPath("notes/", note, "/annotate"),
                                             RequestBody().set("lineId", line));
    co_return reply.note;
}

QCoro::Task<Deeper> APIClient::deepen(int note, int line, int at)
{
    const QString path =
        idPath("notes/", note, "/lines/") + QString::number(line) + QStringLiteral("/deepen");
    const Answer answer = co_await post<Answer>(path, RequestBody().set("at", at));
    co_return answer.deeper;
}

QCoro::Task<Made> APIClient::cardFromLine(int note, int line, std::optional<QString> term)
{
    const QString path =
        idPath("notes/", note, "/lines/") + QString::number(line) + QStringLiteral("/card");
    co_return co_await post<Made>(path, RequestBody().setIfPresent("term", term));
}

QCoro::Task<std::optional<QStringList>> APIClient::compose(int note, QString kind, QString term)
{
    const ComposeReply reply = co_await post<ComposeReply>(
        idPath("notes/", note, "/compose"), RequestBody().set("kind", kind).set("term", term));
    co_return reply.lines;
}

// Pictures.

QCoro::Task<ImageSearch> APIClient::searchImages(QString text, int deck, QString kind)
{
    Query query;
    query.append({QStringLiteral("q"), text});
    query.append({QStringLiteral("deck"), QString::number(deck)});
    // Only moving pictures are asked for by kind; any other kind leaves the key out.
    if (kind == QLatin1String("gif"))
        query.append({QStringLiteral("kind"), kind});
    co_return co_await get<ImageSearchReply>(QStringLiteral("media/search"), query);
}

QCoro::Task<Media> APIClient::importImage(FoundImage image)
{
    // The whole found picture: its address with the credit the server keeps beside it.
    co_return co_await post<Media>(QStringLiteral("media/import"),
                                   RequestBody()
                                       .set("url", image.url)
                                       .set("title", image.title)
                                       .set("author", image.author)
                                       .set("licence", image.licence)
                                       .set("origin", image.origin)
                                       .set("sourceUrl", image.sourceUrl));
}

QCoro::Task<Media> APIClient::uploadImage(QByteArray bytes, QString type)
{
    QNetworkRequest upload = request(url(QStringLiteral("media")));
    upload.setHeader(QNetworkRequest::ContentTypeHeader, type.toUtf8());
    co_return decodeReply<Media>(co_await send(upload, "POST", bytes));
}

// Spoken clips.

QUrl APIClient::clipUrl(const QString &text, const QString &language, const QString &rate,
                        const QString &voice) const
{
    Query query;
    query.append({QStringLiteral("text"), text});
    query.append({QStringLiteral("lang"), language});
    query.append({QStringLiteral("rate"), rate});
    // The voice is named only when one was chosen; the server picks the language's own otherwise.
    if (!voice.isEmpty())
        query.append({QStringLiteral("voice"), voice});
    return url(QStringLiteral("audio"), query);
}

QUrl APIClient::previewUrl(const QString &voice, const QString &language) const
{
    Query query;
    query.append({QStringLiteral("lang"), language});
    query.append({QStringLiteral("voice"), voice});
    return url(QStringLiteral("audio/preview"), query);
}

} // namespace orvel
