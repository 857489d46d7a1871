#pragma once

#include "sound/audiooutput.h"

#include <functional>
#include <QAudioFormat>
#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QStringList>

class QAudioDecoder;
class QAudioSink;

namespace orvel {

class PcmStream;
class SampleGain;

// Spoken clips through Qt Multimedia: the MP3 is decoded to PCM as it is read, each sample
// scaled by the gain (softly limited under full scale), and the samples pulled by a QAudioSink
// on the default output device while decoding goes on. One clip at a time; stop() drops what
// the sink still holds.
//
// The decoded samples of the last few clips are kept, so a clip heard again (the same word
// asked for twice, a card stepped back to) starts without decoding.
class QtAudioOutput : public QObject, public AudioOutput {
    Q_OBJECT
public:
    explicit QtAudioOutput(QObject *parent = nullptr);
    ~QtAudioOutput() override;

    void play(const QString &path, double gainDb, std::function<void()> done) override;
    void stop() override;

signals:
    // The sink took the first samples of the clip that play() started.
    void firstSamples();

private:
    struct Decoded {
        QAudioFormat format;
        QByteArray samples; // float, at unity gain
    };

    void takeBuffer();
    void decodingFinished();
    bool startSink(const QAudioFormat &format);
    void sinkStateChanged();
    void end();
    void release();
    void remember(const QString &key, const Decoded &clip);

    QAudioDecoder *m_decoder = nullptr;
    QAudioSink *m_sink = nullptr;
    QAudioFormat m_sinkFormat;
    PcmStream *m_stream = nullptr;
    std::unique_ptr<SampleGain> m_gain;
    std::function<void()> m_done;
    // The clip being decoded, kept whole for the cache.
    QString m_key;
    Decoded m_decoding;
    bool m_decodeFailed = false;
    QHash<QString, Decoded> m_decoded;
    QStringList m_recent; // cache keys, most recently used last
};

} // namespace orvel
