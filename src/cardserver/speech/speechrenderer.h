#pragma once
#include <memory>
#include <mutex>
#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QString>
#include <QStringList>

namespace cardserver {

// Spoken clips: espeak-ng renders the text to WAV, lame encodes it to MP3, and the clip is kept
// under the cache folder by a SHA-256 of text, language, rate and voice. Safe to call from
// several threads: two requests for one clip render it once, and a clip is written to the cache
// atomically, so a reader never sees half a file.
class SpeechRenderer {
public:
    explicit SpeechRenderer(QString cacheDir);

    // espeak-ng and lame are both installed.
    bool available() const;
    // MP3 bytes of text spoken in lang (a language code or an espeak-ng voice) at rate (1 is
    // espeak-ng's normal 175 words a minute, 0.75 slower), with voice (an espeak-ng voice id such
    // as "gmw/de"; empty: the language's default). Throws WriterError: 422 for an empty or
    // over-long text or a malformed voice, 503 when espeak-ng or lame fail.
    QByteArray render(const QString &text, const QString &lang, double rate, const QString &voice);
    // [{id, name, gender, preview_url: null}] of the voices espeak-ng offers for lang.
    QJsonArray voices(const QString &lang) const;
    // Language codes espeak-ng can speak.
    QStringList languages() const;

    // Where the clip of these arguments is cached (whether or not it exists yet).
    QString cachePath(const QString &text, const QString &lang, double rate,
                      const QString &voice) const;

    static constexpr int kMaxText = 1000;

private:
    QByteArray renderUncached(const QString &text, const QString &voice, double rate) const;
    std::shared_ptr<std::mutex> lockFor(const QString &key);

    QString m_cacheDir;
    std::mutex m_locksMutex;
    QHash<QString, std::weak_ptr<std::mutex>> m_locks;
    mutable std::mutex m_voicesMutex;
    mutable QHash<QString, QJsonArray> m_voices;
    mutable QStringList m_languages;
};

} // namespace cardserver
