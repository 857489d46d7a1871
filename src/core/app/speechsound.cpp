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

} // namespace orvel
