#pragma once

#include "app/soundcontrols.h"

// A speech player stand-in that counts how often each setting was written.
class FakeSound : public orvel::SoundControls {
public:
    double gain() const override { return m_gain; }
    void setGain(double gain) override
    {
        m_gain = gain;
        ++gainWrites;
    }
    bool slow() const override { return m_slow; }
    void setSlow(bool slow) override
    {
        m_slow = slow;
        ++slowWrites;
    }

    QMap<QString, QString> voices() const override { return m_voices; }
    void setVoices(const QMap<QString, QString> &voices) override { m_voices = voices; }

    int gainWrites = 0;
    int slowWrites = 0;

private:
    double m_gain = 1.0;
    bool m_slow = false;
    QMap<QString, QString> m_voices;
};
