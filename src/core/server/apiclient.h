#pragma once

#include "eventstream.h"
#include "records/answer.h"
#include "records/authoptions.h"
#include "records/batchword.h"
#include "records/byte.h"
#include "records/card.h"
#include "records/composereply.h"
#include "records/deck.h"
#include "records/decksummary.h"
#include "records/deeper.h"
#include "records/done.h"
#include "records/folder.h"
#include "records/foundimage.h"
#include "records/imagesearchreply.h"
#include "records/json.h"
#include "records/kept.h"
#include "records/landed.h"
#include "records/language.h"
#include "records/made.h"
#include "records/media.h"
#include "records/note.h"
#include "records/notedraftline.h"
#include "records/notesummary.h"
#include "records/offered.h"
#include "records/preferences.h"
#include "records/reply.h"
#include "records/searchresults.h"
#include "records/user.h"
#include "records/voiceoffer.h"
#include "requestbody.h"
#include "server/events/annotateevent.h"
#include "server/events/batchevent.h"
#include "server/events/cardevent.h"
#include "server/events/extractevent.h"
#include "servererror.h"

#include <optional>
#include <QByteArray>
#include <qcoro/qcorotask.h>
#include <QMap>
#include <QNetworkRequest>
#include <QObject>
#include <QUrl>
#include <utility>

class QNetworkAccessManager;

namespace orvel {

class PersistentCookieJar;

// Query items in the order they are written into the URL.
using Query = QList<std::pair<QString, QString>>;

// The settings a saveSettings call changes; fields left empty are not sent.
struct SettingsChange {
    std::optional<double> rate;
    std::optional<double> gain;
    std::optional<bool> hearOnFlip;
    std::optional<QMap<QString, QString>> voices;
    std::optional<QString> skin;
    std::optional<bool> marginAsYouGo;
};

// What an image search answered: the text it answered, the pictures, and which animated-picture
// providers the server can search (absent when the server did not say).
using ImageSearch = ImageSearchReply;

// The one client of the Orvel server. Every call is a coroutine on the caller's (the UI) thread
// that returns a record or throws ServerError: APIError for a refused or unreadable reply,
// TransportError when no HTTP answer came. The session is the cookie the server sets at sign-in,
// kept in a jar on disk so it survives restarts.
class APIClient : public QObject {
    Q_OBJECT
public:
    // The base URL: the given one, else ZELON_HOST (command line, environment, settings file) when
    // it parses, else the built-in default server.
    explicit APIClient(std::optional<QUrl> baseUrl = std::nullopt, QObject *parent = nullptr);
    // The same with an explicit cookie jar file and cache folder (tests use private ones).
    APIClient(std::optional<QUrl> baseUrl, const QString &cookiePath, const QString &cachePath,
              QObject *parent = nullptr);
    ~APIClient() override;

    static QUrl defaultBaseUrl();
    // ZELON_HOST as given on the command line (-ZELON_HOST URL or --ZELON_HOST=URL), in the
    // environment, or in the settings file, in that order; nothing when absent or unparsable.
    static std::optional<QUrl> hostOverride(const QStringList &arguments);

    QUrl baseUrl() const { return m_baseUrl; }
    QNetworkAccessManager *network() const { return m_network; }
    PersistentCookieJar *cookieJar() const { return m_cookies; }

    // <base>/api/<path>?<query>; an empty query adds no "?".
    QUrl url(const QString &path, const Query &query = {}) const;

    // Generic calls: the reply is decoded into T (a record or a list of records).
    template <class T> QCoro::Task<T> get(QString path, Query query = {})
    {
        co_return decodeReply<T>(co_await send(request(url(path, query)), "GET"));
    }
    template <class T> QCoro::Task<T> post(QString path)
    {
        co_return decodeReply<T>(co_await send(request(url(path)), "POST"));
    }
    template <class T> QCoro::Task<T> post(QString path, RequestBody body)
    {
        co_return decodeReply<T>(co_await sendJson(path, "POST", body, json::KeyStyle::Snake));
    }
    template <class T> QCoro::Task<T> patch(QString path, RequestBody body)
    {
        co_return decodeReply<T>(co_await sendJson(path, "PATCH", body, json::KeyStyle::Snake));
    }
    template <class T> QCoro::Task<T> postLiteral(QString path, RequestBody body)
    {
        co_return decodeReply<T>(co_await sendJson(path, "POST", body, json::KeyStyle::Literal));
    }
    template <class T> QCoro::Task<T> patchLiteral(QString path, RequestBody body)
    {
        co_return decodeReply<T>(co_await sendJson(path, "PATCH", body, json::KeyStyle::Literal));
    }
    // No body; returns the raw reply bytes (deletions, and calls whose reply is not used).
    QCoro::Task<QByteArray> voidCall(QString path, QByteArray method);

    // Account and session.
    QCoro::Task<User> me();
    QCoro::Task<User> signIn(QString email, QString password);
    QCoro::Task<Done> signUp(QString email, QString password, QString displayName);
    QCoro::Task<Done> resendVerification(QString email);
    QCoro::Task<AuthOptions> authOptions();
    QCoro::Task<User> exchange(QString code);
    QCoro::Task<void> signOut();
    QCoro::Task<Preferences> preferences();
    QCoro::Task<Preferences> saveSettings(SettingsChange change);
    QCoro::Task<Done> changePassword(QString current, QString replacement);
    QCoro::Task<VoiceOffer> voices();

    // Library.
    QCoro::Task<QList<DeckSummary>> decks();
    QCoro::Task<QList<Folder>> folders();
    QCoro::Task<DeckSummary> createDeck(QString name, QString description, QString language,
                                        QString nativeLanguage, std::optional<int> folder);
    QCoro::Task<Deck> deck(int id);
    QCoro::Task<DeckSummary> renameDeck(int id, QString name, QString description);
    QCoro::Task<DeckSummary> moveDeck(int id, std::optional<int> folder);
    QCoro::Task<void> deleteDeck(int id);
    QCoro::Task<Folder> createFolder(QString name);
    QCoro::Task<Folder> renameFolder(int id, QString name);
    QCoro::Task<void> deleteFolder(int id);
    QCoro::Task<QList<Language>> languages();
    QCoro::Task<SearchResults> search(QString text);

    // Cards.
    EventStream<CardEvent> addCardStreaming(int deck, const QString &input);
    EventStream<ExtractEvent> extract(int deck, const QString &text);
    EventStream<BatchEvent> addCards(int deck, const QList<BatchWord> &words);
    QCoro::Task<Card> regenerate(int card);
    QCoro::Task<Card> review(int card, bool known);
    QCoro::Task<void> deleteCard(int card);

    // Short lessons.
    QCoro::Task<Byte> byte(int deck, QString topic);
    QCoro::Task<Landed> keepByte(int deck, Byte byte, QList<Kept> keep, bool context,
                                 std::optional<int> noteId);

    // Notes and their margin.
    QCoro::Task<QList<NoteSummary>> notes(int deck);
    QCoro::Task<Note> createNote(int deck, QString title, QString text);
    QCoro::Task<Note> note(int id);
    QCoro::Task<Note> saveNote(int id, QString title, QList<NoteDraftLine> lines);
    QCoro::Task<void> deleteNote(int id);
    EventStream<AnnotateEvent> annotate(int note, bool all);
    // The margin of one line (the body names the line: {"line_id": id}).
    QCoro::Task<Note> annotateLine(int note, int line);
    QCoro::Task<Deeper> deepen(int note, int line, int at);
    QCoro::Task<Made> cardFromLine(int note, int line, std::optional<QString> term);
    // The composed lines, or nothing when the server sent none.
    QCoro::Task<std::optional<QStringList>> compose(int note, QString kind, QString term);

    // Pictures.
    QCoro::Task<ImageSearch> searchImages(QString text, int deck, QString kind);
    QCoro::Task<Media> importImage(FoundImage image);
    QCoro::Task<Media> uploadImage(QByteArray bytes, QString type);

    // Spoken clips: the addresses, built like every other call's, and the bytes.
    QUrl clipUrl(const QString &text, const QString &language, const QString &rate,
                 const QString &voice) const;
    QUrl previewUrl(const QString &voice, const QString &language) const;
    QCoro::Task<QByteArray> fetch(QUrl url);

private:
    void setUp(const QString &cookiePath, const QString &cachePath);
    QNetworkRequest request(const QUrl &url, bool hasBody = false) const;
    QNetworkRequest streamRequest(const QUrl &url) const;
    QCoro::Task<QByteArray> send(QNetworkRequest request, QByteArray method, QByteArray body = {});
    QCoro::Task<QByteArray> sendJson(const QString &path, QByteArray method,
                                     const RequestBody &body, json::KeyStyle style);
    std::unique_ptr<StreamReply> openStream(const QString &path, const RequestBody &body);

    template <class T> static T decodeReply(const QByteArray &bytes)
    {
        try {
            return json::decode<T>(bytes);
        } catch (const json::DecodeError &) {
            throw APIError(0, APIError::couldNotRead());
        }
    }

    QUrl m_baseUrl;
    QNetworkAccessManager *m_network = nullptr;
    PersistentCookieJar *m_cookies = nullptr;
};

} // namespace orvel
