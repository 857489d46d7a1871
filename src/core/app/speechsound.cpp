#include "speechsound.h"

#include "sound/speech.h"

namespace orvel {

double SpeechSound::gain() const
{
    return m_speech.gain();
}

void SpeechSound::setGain(double gain)
{
    m_speech.setGain(gain);
}

bool SpeechSound::slow() const
{
    return m_speech.slow();
}

void SpeechSound::setSlow(bool slow)
{
    m_speech.setSlow(slow);
}

QMap<QString, QString> SpeechSound::voices() const
{
    return m_speech.voices();
}

void SpeechSound::setVoices(const QMap<QString, QString> &voices)
{
    m_speech.setVoices(voices);
}

} // namespace orvel
