#pragma once

#include <QAudioBuffer>
#include <QByteArray>

namespace orvel {

// The gain stage of spoken clips, on 32-bit float samples. A gain of 0 dB or less only scales
// (0 dB leaves the samples as they are); a louder gain bends the loudest samples softly under
// full scale instead of clipping them hard, so +24 dB is really louder without cracking.
class SampleGain {
public:
    explicit SampleGain(double gainDb);

    double factor() const { return m_factor; }
    // One sample after the gain and the soft limit.
    float shape(float sample) const;
    // Float samples (as bytes) with the gain applied.
    QByteArray applied(const QByteArray &samples) const;

    // The buffer's samples (8-bit unsigned, 16- or 32-bit signed, or float) as float samples,
    // unchanged in level; nothing for any other sample format.
    static QByteArray toFloat(const QAudioBuffer &buffer);

private:
    float m_factor;
    // Where the bend starts for gains above unity: just under the ceiling for a slight boost,
    // lower for louder gains (never below 80 % of it), so the bend grows with the gain.
    float m_knee;
};

} // namespace orvel
