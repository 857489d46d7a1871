#pragma once

#include <QMap>
#include <QString>

namespace orvel {

// The sound settings that AppState applies from the learner's preferences to the shared speech
// player: loudness, the slow pace and the voice for each language. The player implements this;
// AppState writes a value only when it differs from the current one.
class SoundControls {
public:
    virtual ~SoundControls() = default;
    virtual double gain() const = 0;
    virtual void setGain(double gain) = 0;
    virtual bool slow() const = 0;
    virtual void setSlow(bool slow) = 0;
    // The voice chosen for each language (code → voice id).
    virtual QMap<QString, QString> voices() const = 0;
    virtual void setVoices(const QMap<QString, QString> &voices) = 0;
};

} // namespace orvel
