#include "qtaudiooutput.h"

#include "pcmstream.h"
#include "samplegain.h"

#include <QAudioDecoder>
#include <QAudioSink>
#include <QDateTime>
#include <QFileInfo>
#include <QMediaDevices>
#include <QSignalBlocker>
#include <QUrl>

namespace orvel {

namespace {

constexpr qsizetype keptClips = 16;

// A clip is the same clip while its file is unchanged.
QString cacheKey(const QFileInfo &file)
{
    return file.absoluteFilePath() + u'|' + QString::number(file.size()) + u'|' +
           QString::number(file.lastModified().toMSecsSinceEpoch());
}

} // namespace

QtAudioOutput::QtAudioOutput(QObject *parent) : QObject(parent) {}

QtAudioOutput::~QtAudioOutput()
{
    m_done = nullptr;
    release();
    if (m_sink) {
        const QSignalBlocker quiet(m_sink);
        m_sink->stop();
    }
}

void QtAudioOutput::play(const QString &path, double gainDb, std::function<void()> done)
{
    release();
    m_done = std::move(done);
    m_gain = std::make_unique<SampleGain>(gainDb);
    m_stream = new PcmStream(this);
    m_stream->open(QIODevice::ReadOnly);
    connect(m_stream, &PcmStream::started, this, &QtAudioOutput::firstSamples);

    const QFileInfo file(path);
    m_key = cacheKey(file);
    if (const auto kept = m_decoded.constFind(m_key); kept != m_decoded.cend()) {
        const Decoded clip = *kept;
        m_recent.removeOne(m_key);
        m_recent.append(m_key);
        m_stream->append(m_gain->applied(clip.samples));
        m_stream->finish();
        if (!startSink(clip.format))
            end();
        return;
    }

    m_decoding = {};
    m_decodeFailed = false;
    m_decoder = new QAudioDecoder(this);
    connect(m_decoder, &QAudioDecoder::bufferReady, this, &QtAudioOutput::takeBuffer);
    connect(m_decoder, &QAudioDecoder::finished, this, &QtAudioOutput::decodingFinished);
    connect(m_decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), this,
            [this](QAudioDecoder::Error) {
                // An unreadable or undecodable clip: whatever was decoded plays out, then ends.
                m_decodeFailed = true;
                decodingFinished();
            });
    m_decoder->setSource(QUrl::fromLocalFile(file.absoluteFilePath()));
    m_decoder->start();
}

void QtAudioOutput::takeBuffer()
{
    while (m_decoder && m_decoder->bufferAvailable()) {
        const QAudioBuffer buffer = m_decoder->read();
        if (!buffer.isValid())
            continue;
        const QByteArray samples = SampleGain::toFloat(buffer);
        if (samples.isEmpty()) {
            m_decodeFailed = true;
            decodingFinished();
            return;
        }
        if (!m_decoding.format.isValid()) {
            m_decoding.format.setSampleRate(buffer.format().sampleRate());
            m_decoding.format.setChannelCount(buffer.format().channelCount());
            m_decoding.format.setSampleFormat(QAudioFormat::Float);
            if (!startSink(m_decoding.format)) {
                end();
                return;
            }
        }
        m_decoding.samples.append(samples);
        m_stream->append(m_gain->applied(samples));
    }
}

bool QtAudioOutput::startSink(const QAudioFormat &format)
{
    if (!format.isValid())
        return false;
    if (m_sink && m_sinkFormat != format) {
        m_sink->disconnect(this);
        m_sink->stop();
        m_sink->deleteLater();
        m_sink = nullptr;
    }
    if (!m_sink) {
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull())
            return false;
        m_sink = new QAudioSink(device, format, this);
        m_sinkFormat = format;
        connect(m_sink, &QAudioSink::stateChanged, this, &QtAudioOutput::sinkStateChanged);
    }
    m_sink->start(m_stream);
    return m_sink->error() == QAudio::NoError;
}

void QtAudioOutput::decodingFinished()
{
    if (!m_stream)
        return;
    if (m_decoder) {
        m_decoder->disconnect(this);
        m_decoder->stop();
        m_decoder->deleteLater();
        m_decoder = nullptr;
        if (!m_decodeFailed && !m_decoding.samples.isEmpty())
            remember(m_key, m_decoding);
        m_decoding = {};
    }
    m_stream->finish();
    if (!m_sink || m_sink->state() == QAudio::StoppedState) {
        end(); // nothing was decoded
        return;
    }
    sinkStateChanged();
}

void QtAudioOutput::sinkStateChanged()
{
    if (!m_sink || !m_stream || !m_done)
        return;
    const QAudio::State state = m_sink->state();
    // Idle with samples still to come is a gap in decoding, not the end of the clip.
    if ((state == QAudio::IdleState && m_stream->drained()) ||
        (state == QAudio::StoppedState && m_sink->error() != QAudio::NoError))
        end();
}

void QtAudioOutput::end()
{
    std::function<void()> done = std::move(m_done);
    m_done = nullptr;
    release();
    if (done)
        done();
}

void QtAudioOutput::stop()
{
    m_done = nullptr;
    release();
}

void QtAudioOutput::release()
{
    if (m_sink) {
        // Queued audio is dropped, not played out. A stopped sink does not reliably take a new
        // stream, so each clip gets a sink of its own.
        m_sink->disconnect(this);
        m_sink->reset();
        m_sink->stop();
        m_sink->deleteLater();
        m_sink = nullptr;
    }
    if (m_decoder) {
        m_decoder->disconnect(this);
        m_decoder->stop();
        m_decoder->deleteLater();
        m_decoder = nullptr;
    }
    if (m_stream) {
        m_stream->disconnect(this);
        m_stream->deleteLater();
        m_stream = nullptr;
    }
    m_gain.reset();
}

void QtAudioOutput::remember(const QString &key, const Decoded &clip)
{
    m_decoded.insert(key, clip);
    m_recent.removeOne(key);
    m_recent.append(key);
    while (m_recent.size() > keptClips)
        m_decoded.remove(m_recent.takeFirst());
}

} // namespace orvel
