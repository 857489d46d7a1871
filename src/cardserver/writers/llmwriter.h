#pragma once
#include "chatstream.h"
#include "writer.h"

namespace cardserver {

// The writer that asks a language model (any OpenAI-compatible chat-completions endpoint) for
// JSON and streams a card's fields to the caller as each one is complete in the answer. Answers
// are checked and brought into wire form: missing text becomes "", missing lists [], and an
// answer that is not a JSON object fails with WriterError(503).
class LlmWriter : public Writer {
public:
    LlmWriter(const QString &url, const QString &model, const QString &key,
              const AddressPolicy &addresses);

    QString name() const override { return QStringLiteral("llm"); }
    WrittenCard writeCard(const Languages &langs, const QString &input,
                          const CardProgress &progress) override;
    QJsonArray extract(const Languages &langs, const QString &text,
                       const std::function<void(const QJsonObject &candidate)> &onWord) override;
    QJsonObject byte(const Languages &langs, const QString &topic) override;
    QJsonArray annotateLine(const Languages &langs, const QString &line,
                            const QStringList &context) override;
    QJsonObject deepen(const Languages &langs, const QString &line, const QJsonObject &annotation,
                       int level) override;
    QStringList compose(const Languages &langs, const QString &kind, const QString &term) override;

    void setTimeout(int seconds) { m_chat.timeoutSeconds = seconds; }

private:
    QJsonObject ask(const Languages &langs, const QString &user,
                    const std::function<void(const QString &, const QJsonValue &)> &onMember = {},
                    const std::function<void(const QString &, const QJsonValue &)> &onElement = {});

    ChatStream m_chat;
};

} // namespace cardserver
