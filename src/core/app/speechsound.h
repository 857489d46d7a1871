#pragma once

#include "app/soundcontrols.h"

namespace orvel {

class Speech;

// The shared speech player as the target of the learner's sound preferences.
class SpeechSound : public SoundControls {
public:
    explicit SpeechSound(Speech &speech) : m_speech(speech) {}

    double gain() const override;
    void setGain(double gain) override;
    bool slow() const override;
    void setSlow(bool slow) override;
    QMap<QString, QString> voices() const override;
    void setVoices(const QMap<QString, QString> &voices) override;

private:
    Speech &m_speech;
};

} // namespace orvel
