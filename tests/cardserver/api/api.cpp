#include "api.h"

#include <QJsonDocument>
#include <QTest>

QJsonValue Api::Reply::json() const
{
    const QJsonDocument doc = QJsonDocument::fromJson(body);
    if (doc.isArray())
        return doc.array();
    if (doc.isObject())
        return doc.object();
    return QJsonValue();
}

QString Api::Reply::header(const char *name) const
{
    const auto it = headers.find(name);
    return it == headers.end() ? QString() : QString::fromStdString(it->second);
}

QStringList Api::Stream::types() const
{
    QStringList out;
    for (const QJsonObject &e : events)
        out.append(e.value("type").toString());
    return out;
}

Api::Api(const QUrl &base)
    : m_client(std::make_unique<httplib::Client>(base.host().toStdString(), base.port()))
{
    m_client->set_read_timeout(120);
    m_client->set_keep_alive(true);
}

httplib::Headers Api::headers() const
{
    httplib::Headers h = m_extra;
    h.emplace("Accept", "application/json");
    if (!m_cookie.isEmpty())
        h.emplace("Cookie", ("orvel_session=" + m_cookie).toStdString());
    return h;
}

void Api::keepCookie(const httplib::Headers &headers)
{
    for (auto [it, end] = headers.equal_range("Set-Cookie"); it != end; ++it) {
        const QString c = QString::fromStdString(it->second);
        if (c.startsWith("orvel_session="))
            m_cookie = c.section(';', 0, 0).mid(14);
    }
}

Api::Reply Api::send(const char *method, const QString &path, const QByteArray &body,
                     const char *contentType)
{
    httplib::Request req;
    req.method = method;
    req.path = path.toStdString();
    req.headers = headers();
    if (contentType) {
        req.body = body.toStdString();
        req.set_header("Content-Type", contentType);
    }
    Reply reply;
    const auto result = m_client->send(req);
    if (!result)
        return reply;
    reply.status = result->status;
    reply.body = QByteArray::fromStdString(result->body);
    reply.headers = result->headers;
    keepCookie(result->headers);
    return reply;
}

static QByteArray jsonBytes(const QJsonValue &v)
{
    return v.isArray() ? QJsonDocument(v.toArray()).toJson(QJsonDocument::Compact)
                       : QJsonDocument(v.toObject()).toJson(QJsonDocument::Compact);
}

Api::Reply Api::get(const QString &path)
{
    return send("GET", path, {}, nullptr);
}

Api::Reply Api::post(const QString &path, const QJsonValue &body)
{
    return send("POST", path, jsonBytes(body), "application/json");
}

Api::Reply Api::postRaw(const QString &path, const QByteArray &body, const char *contentType)
{
    return send("POST", path, body, contentType);
}

Api::Reply Api::patch(const QString &path, const QJsonValue &body)
{
    return send("PATCH", path, jsonBytes(body), "application/json");
}

Api::Reply Api::del(const QString &path)
{
    return send("DELETE", path, {}, nullptr);
}

Api::Stream Api::stream(const QString &path, const QJsonValue &body)
{
    Stream s;
    httplib::Request req;
    req.method = "POST";
    req.path = path.toStdString();
    req.headers = headers();
    req.set_header("Accept", "text/event-stream");
    req.set_header("Content-Type", "application/json");
    req.body = jsonBytes(body).toStdString();
    QByteArray buffer;
    req.content_receiver = [&](const char *data, size_t length, uint64_t, uint64_t) {
        buffer.append(data, qsizetype(length));
        s.raw.append(data, qsizetype(length));
        qsizetype end;
        while ((end = buffer.indexOf('\n')) >= 0) {
            const QByteArray line = buffer.left(end);
            buffer.remove(0, end + 1);
            if (!line.startsWith("data: "))
                continue;
            s.events.append(QJsonDocument::fromJson(line.mid(6)).object());
            if (m_watcher)
                m_watcher(s.events.last());
        }
        return true;
    };
    const auto result = m_client->send(req);
    if (!result)
        return s;
    s.status = result->status;
    s.contentType = QString::fromStdString(result->get_header_value("Content-Type"));
    if (s.raw.isEmpty())
        s.raw = QByteArray::fromStdString(result->body);
    return s;
}

QJsonObject Api::join(const QString &email, const QString &password, const QString &name)
{
    const Reply up =
        post("/api/auth/signup",
             QJsonObject{{"email", email}, {"password", password}, {"display_name", name}});
    if (up.status != 201)
        qWarning() << "sign-up failed" << up.status << up.body;
    const Reply in = post("/api/auth/login", QJsonObject{{"email", email}, {"password", password}});
    if (in.status != 200)
        qWarning() << "sign-in failed" << in.status << in.body;
    return in.object();
}

QJsonObject Api::deck(const QString &name, const QString &language)
{
    const Reply r = post("/api/decks", QJsonObject{{"name", name},
                                                   {"description", ""},
                                                   {"language", language},
                                                   {"native_language", "en"}});
    if (r.status != 201)
        qWarning() << "deck failed" << r.status << r.body;
    return r.object();
}

QJsonObject Api::card(qint64 deck, const QString &word)
{
    const Stream s = stream(path("/api/decks/%1/cards", deck), QJsonObject{{"input", word}});
    return s.events.isEmpty() ? QJsonObject() : s.events.last().value("card").toObject();
}

QJsonObject Api::note(qint64 deck, const QString &title, const QString &text)
{
    return post(path("/api/decks/%1/notes", deck), QJsonObject{{"title", title}, {"text", text}})
        .object();
}

bool startServer(ServerProcess &server)
{
    if (server.start())
        return true;
    qWarning().noquote() << server.errorText();
    return false;
}
