#pragma once

#include "sound/audiooutput.h"

namespace orvel {

// The output of a process that has no audio device of its own (command-line tools, core-only
// runs): every clip ends at once, unheard, so the speech state still returns to silent.
class SilentOutput : public AudioOutput {
public:
    void play(const QString &path, double gainDb, std::function<void()> done) override;
    void stop() override {}
};

} // namespace orvel
