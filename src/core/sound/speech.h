#pragma once

#include <qcoro/qcorotask.h>
#include <QMap>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QUrl>

namespace orvel {

class APIClient;
class AudioOutput;

// The one player of spoken clips. The server renders text to an MP3 clip; the player fetches it
// (kept in a cache folder), plays it with the learner's gain, and says which text is sounding so
// views can mark it. At most one clip sounds; asking again for the sounding text stops it.
//
// Fetches are never cancelled. Instead every stop() bumps a generation counter, and a fetch or a
// completion that belongs to an older generation is ignored when it arrives.
class Speech : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString saying READ saying NOTIFY sayingChanged)
    Q_PROPERTY(bool speaking READ speaking NOTIFY sayingChanged)
    Q_PROPERTY(double gain READ gain WRITE setGain NOTIFY gainChanged)
    Q_PROPERTY(bool slow READ slow WRITE setSlow NOTIFY slowChanged)

public:
    // `cacheDir` holds the fetched clips.
    Speech(APIClient &api, AudioOutput &output, const QString &cacheDir, QObject *parent = nullptr);
    ~Speech() override;

    // QML's singleton: the installed services' player.
    static Speech *create(QQmlEngine *, QJSEngine *);

    // The text whose clip is being fetched or played ("preview:<voice>" for a voice sample);
    // empty when silent.
    QString saying() const { return m_saying; }
    bool speaking() const { return !m_saying.isEmpty(); }
    // Linear amplitude factor; takes effect at the next clip.
    double gain() const { return m_gain; }
    void setGain(double gain);
    // Asks for slowed clips ("0.75" instead of "1"); takes effect at the next say().
    bool slow() const { return m_slow; }
    void setSlow(bool slow);
    // The learner's voice for each language (code → voice id): say() uses it when no voice is
    // given, so a clip heard after a change of voice is fetched afresh in the new one.
    const QMap<QString, QString> &voices() const { return m_voices; }
    void setVoices(const QMap<QString, QString> &voices) { m_voices = voices; }

    // Speaks `text` (trimmed) in `language`, with `voice` when one is given. Blank text or no
    // language does nothing at all; the text already sounding is stopped instead.
    Q_INVOKABLE void say(const QString &text, const QString &language,
                         const QString &voice = QString());
    // Plays the server's sample of a voice; toggles like say().
    Q_INVOKABLE void preview(const QString &voice, const QString &language);
    // Silence now; everything fetched or playing before this call stays silent.
    Q_INVOKABLE void stop();

    // The gain stage's setting for a linear gain: 20·log10(max(gain, 0.01)), held to -96…+24 dB.
    static double decibels(double gain);
    // The cache file of a clip address: a stable hash of the whole address (server, text,
    // language, rate and voice), so a clip fetched once is reused, also by later runs.
    QString cacheFile(const QUrl &url) const;
    // The addresses of a clip and of a voice sample, with their query items in fixed order.
    QUrl clipUrl(const QString &text, const QString &language, const QString &voice) const;
    QUrl previewUrl(const QString &voice, const QString &language) const;

signals:
    void sayingChanged();
    void gainChanged();
    void slowChanged();

private:
    void play(const QUrl &url, const QString &saying);
    QCoro::Task<> fetchAndStart(QUrl url, quint64 generation);
    QCoro::Task<QString> fetch(QUrl url);
    void start(const QString &file, quint64 generation);
    void setSaying(const QString &saying);

    APIClient &m_api;
    AudioOutput &m_output;
    QString m_cacheDir;
    QString m_saying;
    double m_gain = 1.0;
    bool m_slow = false;
    QMap<QString, QString> m_voices;
    quint64 m_generation = 0;
};

} // namespace orvel
