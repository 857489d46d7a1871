#include "chatanswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

QList<ScriptedServer::Chunk> streamedChatAnswer(const QString &answer, qsizetype holdAt)
{
    QList<ScriptedServer::Chunk> chunks;
    for (qsizetype at = 0; at < answer.size(); at += 7) {
        const QJsonObject delta{{"content", answer.mid(at, 7)}};
        const QJsonObject chunk{{"choices", QJsonArray{QJsonObject{{"delta", delta}}}}};
        chunks.append({"data: " + QJsonDocument(chunk).toJson(QJsonDocument::Compact) + "\n\n",
                       holdAt >= at && holdAt < at + 7 ? "rest" : ""});
    }
    chunks.append({"data: [DONE]\n\n"});
    return chunks;
}
