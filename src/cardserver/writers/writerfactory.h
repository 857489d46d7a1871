#pragma once
#include "net/addresspolicy.h"
#include "writer.h"

#include <memory>
#include <QString>

namespace cardserver {

class WorkGate;

struct WriterConfig {
    QString kind = "dictionary";
    QString llmUrl;
    QString llmModel;
    QString llmKey;
    QString dictionaryDir = "/usr/share/dictd";
    AddressPolicy addresses;   // what the llm writer may connect to
    WorkGate *tools = nullptr; // the gate of espeak-ng processes (the dictionary's readings)
};

// The writer a configuration names: "dictionary" (offline, the default) or "llm" (an
// OpenAI-compatible chat-completions endpoint, which needs llmUrl and llmModel). Throws
// WriterError with a one-line reason for an unknown kind or an incomplete configuration.
std::unique_ptr<Writer> makeWriter(const WriterConfig &config);

} // namespace cardserver
