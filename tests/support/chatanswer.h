#pragma once
#include "scriptedserver.h"

#include <QList>
#include <QString>

// A chat-completions answer as a language model streams it, for a ScriptedServer standing in
// for the model: a few characters of `answer` per event, then [DONE]. The piece that holds the
// character at `holdAt` waits for the gate "rest", so a test decides what the model has sent
// before the rest comes.
QList<ScriptedServer::Chunk> streamedChatAnswer(const QString &answer, qsizetype holdAt = -1);
