#pragma once

namespace orvel {

// The two sound settings that AppState applies from the learner's preferences to the shared
// speech player: loudness and the slow pace. The player implements this; AppState writes a
// value only when it differs from the current one.
class SoundControls {
public:
    virtual ~SoundControls() = default;
    virtual double gain() const = 0;
    virtual void setGain(double gain) = 0;
    virtual bool slow() const = 0;
    virtual void setSlow(bool slow) = 0;
};

} // namespace orvel
