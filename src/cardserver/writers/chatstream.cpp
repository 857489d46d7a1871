#include "chatstream.h"

#include "writer.h"

#include <httplib.h>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

namespace cardserver {

namespace {

const QString kUnavailable = QStringLiteral("The language model is unavailable: %1");

// The text of a chunk's delta (streamed) or of the message (a server that ignored "stream").
QString contentOf(const QJsonObject &chunk)
{
    const QJsonObject choice = chunk.value(QStringLiteral("choices")).toArray().first().toObject();
    const QJsonValue delta = choice.value(QStringLiteral("delta"))[QStringLiteral("content")];
    if (delta.isString())
        return delta.toString();
    return choice.value(QStringLiteral("message"))[QStringLiteral("content")].toString();
}

QString errorOf(const QJsonObject &body)
{
    const QJsonValue error = body.value(QStringLiteral("error"));
    if (error.isString())
        return error.toString();
    return error[QStringLiteral("message")].toString();
}

} // namespace

ChatStream::ChatStream(QString url, QString model, QString key)
    : m_url(std::move(url)), m_model(std::move(model)), m_key(std::move(key))
{}

QString ChatStream::endpoint(const QString &url)
{
    QString out = url.trimmed();
    while (out.endsWith(u'/'))
        out.chop(1);
    if (!out.endsWith(QLatin1String("/chat/completions")))
        out += QStringLiteral("/chat/completions");
    return out;
}

QString ChatStream::run(const QString &system, const QString &user,
                        const std::function<void(const QString &)> &onText) const
{
    const QUrl url(endpoint(m_url));
    if (!url.isValid() ||
        (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")) ||
        url.host().isEmpty())
        throw WriterError(
            kUnavailable.arg(QStringLiteral("“%1” is not an http or https address.").arg(m_url)),
            503);
    const QString origin = url.scheme() + QStringLiteral("://") + url.authority();
    httplib::Client client(origin.toStdString());
    client.set_connection_timeout(10);
    client.set_read_timeout(timeoutSeconds);
    client.set_write_timeout(30);

    const QJsonObject body{
        {QStringLiteral("model"), m_model},
        {QStringLiteral("stream"), true},
        {QStringLiteral("response_format"),
         QJsonObject{{QStringLiteral("type"), QStringLiteral("json_object")}}},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("system")},
                                {QStringLiteral("content"), system}},
                    QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), user}}}}};

    httplib::Request request;
    request.method = "POST";
    request.path = url.path(QUrl::FullyEncoded).toStdString();
    if (url.hasQuery())
        request.path += "?" + url.query(QUrl::FullyEncoded).toStdString();
    request.headers = {{"Accept", "text/event-stream"}, {"Content-Type", "application/json"}};
    if (!m_key.isEmpty())
        request.headers.emplace("Authorization", "Bearer " + m_key.toStdString());
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString();

    int status = 0;
    QByteArray raw;     // everything received, for error bodies and non-streamed answers
    QByteArray pending; // bytes of an event line not yet complete
    QString text;
    QString streamError;
    bool sawEvents = false;
    request.response_handler = [&](const httplib::Response &response) {
        status = response.status;
        return true;
    };
    request.content_receiver = [&](const char *data, size_t length, uint64_t, uint64_t) {
        raw.append(data, qsizetype(length));
        if (status < 200 || status > 299)
            return raw.size() < 64 * 1024;
        pending.append(data, qsizetype(length));
        qsizetype newline;
        while ((newline = pending.indexOf('\n')) >= 0) {
            QByteArray line = pending.left(newline).trimmed();
            pending.remove(0, newline + 1);
            if (!line.startsWith("data:"))
                continue;
            sawEvents = true;
            line = line.mid(5).trimmed();
            if (line == "[DONE]")
                continue;
            const QJsonObject chunk = QJsonDocument::fromJson(line).object();
            if (const QString e = errorOf(chunk); !e.isEmpty()) {
                streamError = e;
                return false;
            }
            const QString piece = contentOf(chunk);
            if (!piece.isEmpty()) {
                text += piece;
                if (onText)
                    onText(piece);
            }
        }
        return true;
    };

    const httplib::Result result = client.send(request);
    if (!streamError.isEmpty())
        throw WriterError(kUnavailable.arg(streamError), 503);
    if (!result) {
        const httplib::Error error = result.error();
        const QString why = error == httplib::Error::Read && status != 0
                                ? QStringLiteral("it stopped answering.")
                            : error == httplib::Error::Connection
                                ? QStringLiteral("cannot connect to %1.").arg(origin)
                                : QStringLiteral("%1.").arg(
                                      QString::fromStdString(httplib::to_string(error)).toLower());
        throw WriterError(kUnavailable.arg(why), 503);
    }
    if (status < 200 || status > 299) {
        QString why = errorOf(QJsonDocument::fromJson(raw).object());
        if (why.isEmpty())
            why = QString::fromUtf8(raw).simplified().left(200);
        throw WriterError(kUnavailable.arg(QStringLiteral("it answered %1%2")
                                               .arg(status)
                                               .arg(why.isEmpty() ? QStringLiteral(".")
                                                                  : QStringLiteral(" (") + why +
                                                                        QStringLiteral(")."))),
                          503);
    }
    if (!sawEvents) {
        // A server that ignores "stream" answers with one JSON body.
        text = contentOf(QJsonDocument::fromJson(raw).object());
        if (onText && !text.isEmpty())
            onText(text);
    }
    if (text.trimmed().isEmpty())
        throw WriterError(kUnavailable.arg(QStringLiteral("it sent an empty answer.")), 503);
    return text;
}

} // namespace cardserver
