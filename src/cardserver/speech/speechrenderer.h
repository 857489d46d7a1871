#pragma once
#include "limits/workgate.h"
#include "speech/clipcache.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QString>
#include <QStringList>

namespace cardserver {

// Spoken clips: espeak-ng renders the text to WAV, lame encodes it to MP3, and the clip is kept
// in a ClipCache by a SHA-256 of text, language, rate and voice. Safe to call from several
// threads: two requests for one clip render it once, and at most `processes` renders (and
// voice listings) run at once; a caller that queued longer than `queueWait` is told the server
// is busy (ApiError 503).
class SpeechRenderer {
public:
    static constexpr qint64 DefaultCacheBytes = 512LL * 1024 * 1024;

    explicit SpeechRenderer(QString cacheDir, qint64 cacheBytes = DefaultCacheBytes,
                            int processes = 2,
                            std::chrono::milliseconds queueWait = std::chrono::seconds(10));

    // espeak-ng and lame are both installed.
    bool available() const;
    // The gate every espeak-ng and lame process passes, for other users of those tools.
    WorkGate &tools() const { return m_tools; }
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
    ClipCache m_cache;
    mutable WorkGate m_tools;
    std::mutex m_locksMutex;
    QHash<QString, std::weak_ptr<std::mutex>> m_locks;
    mutable std::mutex m_voicesMutex;
    mutable QHash<QString, QJsonArray> m_voices;
    mutable QStringList m_languages;
};

} // namespace cardserver
