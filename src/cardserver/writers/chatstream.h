#pragma once
#include "net/addresspolicy.h"

#include <functional>
#include <QJsonObject>
#include <QString>

namespace cardserver {

// One streamed request to an OpenAI-compatible chat-completions endpoint. url may be a base
// ("http://host:8080/v1") or the full ".../chat/completions" address; http and https are both
// understood. Each piece of the answer's text is passed to onText as its server-sent event
// arrives. Failures throw WriterError(503) worded for the learner. The request goes through
// OutgoingFetch under `policy`: a model on loopback or a private network needs it to allow them.
class ChatStream {
public:
    ChatStream(QString url, QString model, QString key, AddressPolicy policy);

    // Sends {model, stream: true, response_format: json_object, messages: [system, user]} and
    // returns the whole text of the answer.
    QString run(const QString &system, const QString &user,
                const std::function<void(const QString &piece)> &onText) const;

    // The full chat-completions address for a configured URL.
    static QString endpoint(const QString &url);

    int timeoutSeconds = 120;

private:
    QString m_url;
    QString m_model;
    QString m_key;
    AddressPolicy m_policy;
};

} // namespace cardserver
