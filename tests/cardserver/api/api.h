#pragma once
#include "serverprocess.h"

#include <functional>
#include <httplib.h>
#include <memory>
#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

// One learner's connection to a running orvel-server: JSON calls and event streams with the
// session cookie kept between calls, as a browser-like client would.
class Api {
public:
    struct Reply {
        int status = 0;
        QByteArray body;
        httplib::Headers headers;
        QJsonValue json() const;
        QJsonObject object() const { return json().toObject(); }
        QJsonArray array() const { return json().toArray(); }
        QString error() const { return object().value("error").toString(); }
        QJsonValue operator[](const char *key) const { return object().value(QLatin1String(key)); }
        qint64 id() const { return object().value("id").toInteger(); }
        QString header(const char *name) const;
    };

    explicit Api(const QUrl &base);

    Reply get(const QString &path);
    Reply post(const QString &path, const QJsonValue &body = QJsonObject());
    Reply postRaw(const QString &path, const QByteArray &body, const char *contentType);
    Reply patch(const QString &path, const QJsonValue &body);
    Reply del(const QString &path);

    // A streaming POST: the status, then each "data:" line's JSON object in arrival order.
    struct Stream {
        int status = 0;
        QString contentType;
        QList<QJsonObject> events;
        QByteArray raw;
        QStringList types() const;
    };
    Stream stream(const QString &path, const QJsonValue &body);
    // Called with each event of a later stream as soon as it has arrived, before the rest.
    void watchStreams(std::function<void(const QJsonObject &)> watcher)
    {
        m_watcher = std::move(watcher);
    }

    QString cookie() const { return m_cookie; }
    void setCookie(const QString &c) { m_cookie = c; }
    // A header sent with every later request (e.g. what a reverse proxy adds).
    void setHeader(const std::string &name, const std::string &value)
    {
        m_extra.emplace(name, value);
    }

    // Signs up and signs in (the server must run with --local); returns the User.
    QJsonObject join(const QString &email, const QString &password = "secret-pass",
                     const QString &name = "Learner");
    // Makes a deck and returns its DeckSummary.
    QJsonObject deck(const QString &name = "German", const QString &language = "de");
    // Writes the card of `word` into the deck and returns it (null when none was written).
    QJsonObject card(qint64 deck, const QString &word);
    // Makes a note in the deck, one line per line of `text`, and returns it.
    QJsonObject note(qint64 deck, const QString &title, const QString &text);

private:
    Reply send(const char *method, const QString &path, const QByteArray &body,
               const char *contentType);
    void keepCookie(const httplib::Headers &headers);
    httplib::Headers headers() const;

    std::unique_ptr<httplib::Client> m_client;
    QString m_cookie;
    httplib::Headers m_extra;
    std::function<void(const QJsonObject &)> m_watcher;
};

// Starts a server for a test case; QFAIL-style helpers go in the tests themselves.
bool startServer(ServerProcess &server);

// A path with ids filled in: path("/api/decks/%1/notes", deck).
template <class... Ids> QString path(const char *pattern, Ids... ids)
{
    QString out = QString::fromUtf8(pattern);
    ((out = out.arg(ids)), ...);
    return out;
}
