#pragma once
#include "serverprocess.h"

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

private:
    Reply send(const char *method, const QString &path, const QByteArray &body,
               const char *contentType);
    void keepCookie(const httplib::Headers &headers);
    httplib::Headers headers() const;

    std::unique_ptr<httplib::Client> m_client;
    QString m_cookie;
    httplib::Headers m_extra;
};

// Starts a server for a test case; QFAIL-style helpers go in the tests themselves.
bool startServer(ServerProcess &server);
