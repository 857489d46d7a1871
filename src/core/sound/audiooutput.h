#pragma once

#include <functional>
#include <QString>

namespace orvel {

// Where spoken clips sound. The desktop plays through the sound server; tests record what they
// were asked to play. One clip at a time: play() replaces whatever was sounding.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;

    // Plays the MP3 file at `path` (absolute) once, louder or softer by `gainDb` decibels.
    // `done` runs on the caller's thread once the clip has played through or turned out to be
    // unplayable (unreadable, undecodable, no audio device). After stop() or a newer play() the
    // output may still call an older `done`; the caller decides whether it still matters.
    virtual void play(const QString &path, double gainDb, std::function<void()> done) = 0;
    // Silence at once: queued audio is dropped, not drained.
    virtual void stop() = 0;
};

} // namespace orvel
