#include "chatstream.h"

#include "writer.h"

#include "net/outgoingfetch.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

namespace cardserver {

namespace {

// An answer is a card, a lesson or a list of words: far below these.
constexpr qint64 MaxAnswerBytes = 8LL * 1024 * 1024;
constexpr int MaxAnswerSeconds = 600;

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

ChatStream::ChatStream(QString url, QString model, QString key, AddressPolicy policy)
    : m_url(std::move(url)), m_model(std::move(model)), m_key(std::move(key)),
      m_policy(std::move(policy))
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
        url.host().isEmpty()) {
        qWarning().noquote() << "language model address is not http or https:" << m_url;
        throw WriterError(kUnavailable.arg(QStringLiteral("its address is not an http or https "
                                                          "address.")),
                          503);
    }
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

    OutgoingFetch::Request request;
    request.method = "POST";
    request.followRedirects = false;
    request.headers = {"Accept: text/event-stream", "Content-Type: application/json", "Expect:"};
    if (!m_key.isEmpty())
        request.headers.append("Authorization: Bearer " + m_key.toUtf8());
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);

    QByteArray raw;     // everything received, for error bodies and non-streamed answers
    QByteArray pending; // bytes of an event line not yet complete
    QString text;
    QString streamError;
    bool sawEvents = false;
    request.onData = [&](int status, const QByteArray &data) {
        raw.append(data);
        if (status < 200 || status > 299)
            return raw.size() < 64 * 1024;
        pending.append(data);
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

    OutgoingFetch fetcher(m_policy, MaxAnswerBytes, MaxAnswerSeconds * 1000);
    fetcher.setIdleTimeout(timeoutSeconds);
    const OutgoingFetch::Result result = fetcher.send(url.toString(), request);
    // What the model's server said goes to the log only: it may name hosts, files or keys.
    if (!streamError.isEmpty()) {
        qWarning().noquote() << "language model reported an error:" << streamError;
        throw WriterError(kUnavailable.arg(QStringLiteral("it reported an error.")), 503);
    }
    const int status = result.status;
    if (status != 0 && (status < 200 || status > 299)) {
        QString why = errorOf(QJsonDocument::fromJson(raw).object());
        if (why.isEmpty())
            why = QString::fromUtf8(raw).simplified().left(200);
        qWarning().noquote() << "language model answered" << status << why;
        throw WriterError(kUnavailable.arg(QStringLiteral("it answered %1.").arg(status)), 503);
    }
    if (result.outcome != OutgoingFetch::Outcome::Fetched) {
        // The model's address and curl's words are for the operator, in the log.
        qWarning().noquote() << "language model request failed:" << result.detail;
        const QString why =
            result.outcome == OutgoingFetch::Outcome::NotAllowed
                ? QStringLiteral("its address is not allowed (a model on this machine or network "
                                 "needs --allow-private-fetch).")
            : result.outcome == OutgoingFetch::Outcome::TooLarge
                ? QStringLiteral("its answer was too long.")
            : status != 0 || result.outcome == OutgoingFetch::Outcome::TimedOut
                ? QStringLiteral("it stopped answering.")
                : QStringLiteral("cannot connect to it.");
        throw WriterError(kUnavailable.arg(why), 503);
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
