#include "samplegain.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvel {

namespace {

template <class T> void convert(const T *in, qsizetype count, float scale, float offset, float *out)
{
    for (qsizetype i = 0; i < count; ++i)
        out[i] = (float(in[i]) - offset) * scale;
}

} // namespace

namespace {

// The loudest level a louder-than-unity gain bends towards: 3 dB under full scale. The sound
// server resamples (a 22.05 kHz clip to the device's rate) and converts to 16 bits after us. A
// strongly boosted clip is nearly square, and resampling a square wave overshoots each edge by
// about 9 % of its swing (Gibbs), so 1 dB of headroom still clipped; 3 dB keeps it clean.
constexpr float ceiling = 0.708f;

} // namespace

SampleGain::SampleGain(double gainDb)
    : m_factor(float(std::pow(10.0, gainDb / 20.0))),
      m_knee(std::clamp(ceiling / m_factor, 0.8f * ceiling, ceiling))
{}

float SampleGain::shape(float sample) const
{
    const float scaled = sample * m_factor;
    if (m_factor <= 1.0f)
        return std::clamp(scaled, -1.0f, 1.0f);
    const float size = std::fabs(scaled);
    if (size <= m_knee)
        return scaled;
    // Above the knee the level approaches the ceiling along a tanh curve that leaves the
    // straight line with the same slope.
    const float headroom = ceiling - m_knee;
    return std::copysign(m_knee + headroom * std::tanh((size - m_knee) / headroom), scaled);
}

QByteArray SampleGain::applied(const QByteArray &samples) const
{
    QByteArray out(samples.size(), Qt::Uninitialized);
    const qsizetype count = samples.size() / qsizetype(sizeof(float));
    const auto *in = reinterpret_cast<const float *>(samples.constData());
    auto *target = reinterpret_cast<float *>(out.data());
    if (m_factor == 1.0f) {
        std::memcpy(target, in, size_t(count) * sizeof(float));
        return out;
    }
    for (qsizetype i = 0; i < count; ++i)
        target[i] = shape(in[i]);
    return out;
}

QByteArray SampleGain::toFloat(const QAudioBuffer &buffer)
{
    const qsizetype count = qsizetype(buffer.sampleCount());
    QByteArray out(count * qsizetype(sizeof(float)), Qt::Uninitialized);
    auto *target = reinterpret_cast<float *>(out.data());
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        convert(buffer.constData<quint8>(), count, 1.0f / 128.0f, 128.0f, target);
        return out;
    case QAudioFormat::Int16:
        convert(buffer.constData<qint16>(), count, 1.0f / 32768.0f, 0.0f, target);
        return out;
    case QAudioFormat::Int32:
        convert(buffer.constData<qint32>(), count, 1.0f / 2147483648.0f, 0.0f, target);
        return out;
    case QAudioFormat::Float:
        convert(buffer.constData<float>(), count, 1.0f, 0.0f, target);
        return out;
    default:
        return QByteArray();
    }
}

} // namespace orvel
