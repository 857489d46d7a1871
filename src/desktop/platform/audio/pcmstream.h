#pragma once

#include <QByteArray>
#include <QIODevice>

namespace orvel {

// The samples of one clip on their way to the audio sink, which pulls them while the decoder is
// still adding more. It ends only when the decoder has finished and everything was read.
class PcmStream : public QIODevice {
    Q_OBJECT
public:
    explicit PcmStream(QObject *parent = nullptr);

    void append(const QByteArray &samples);
    // No more samples will come.
    void finish();
    bool finished() const { return m_finished; }
    // Nothing left for the sink: finished and read to the end.
    bool drained() const { return m_finished && m_read >= m_data.size(); }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;
    bool atEnd() const override { return drained(); }

signals:
    // The sink took the clip's first samples.
    void started();

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_data;
    qint64 m_read = 0;
    bool m_finished = false;
};

} // namespace orvel
