#include "pcmstream.h"

#include <cstring>

namespace orvel {

PcmStream::PcmStream(QObject *parent) : QIODevice(parent) {}

void PcmStream::append(const QByteArray &samples)
{
    if (samples.isEmpty())
        return;
    m_data.append(samples);
    emit readyRead();
}

void PcmStream::finish()
{
    m_finished = true;
}

qint64 PcmStream::bytesAvailable() const
{
    return m_data.size() - m_read + QIODevice::bytesAvailable();
}

qint64 PcmStream::readData(char *data, qint64 maxSize)
{
    const qint64 n = std::min<qint64>(maxSize, m_data.size() - m_read);
    if (n <= 0)
        return 0;
    std::memcpy(data, m_data.constData() + m_read, size_t(n));
    const bool first = m_read == 0;
    m_read += n;
    if (first)
        emit started();
    return n;
}

} // namespace orvel
