#include "sound/speech.h"

#include "app/services.h"
#include "server/apiclient.h"
#include "sound/audiooutput.h"

#include <algorithm>
#include <cmath>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJSEngine>
#include <QPointer>
#include <QSaveFile>
#include <stdexcept>

namespace orvel {

Speech::Speech(APIClient &api, AudioOutput &output, const QString &cacheDir, QObject *parent)
    : QObject(parent), m_api(api), m_output(output), m_cacheDir(cacheDir)
{}

Speech::~Speech() = default;

Speech *Speech::create(QQmlEngine *, QJSEngine *)
{
    Speech *speech = &Services::current().speech();
    QJSEngine::setObjectOwnership(speech, QJSEngine::CppOwnership);
    return speech;
}

void Speech::setGain(double gain)
{
    if (m_gain == gain)
        return;
    m_gain = gain;
    emit gainChanged();
}

void Speech::setSlow(bool slow)
{
    if (m_slow == slow)
        return;
    m_slow = slow;
    emit slowChanged();
}

double Speech::decibels(double gain)
{
    const double db = 20.0 * std::log10(std::max(gain, 0.01));
    return std::clamp(db, -96.0, 24.0);
}

QUrl Speech::clipUrl(const QString &text, const QString &language, const QString &voice) const
{
    return m_api.clipUrl(text, language, m_slow ? QStringLiteral("0.75") : QStringLiteral("1"),
                         voice);
}

QUrl Speech::previewUrl(const QString &voice, const QString &language) const
{
    return m_api.previewUrl(voice, language);
}

QString Speech::cacheFile(const QUrl &url) const
{
    // A content hash rather than a per-run seeded one: the name stays the same between runs, so
    // clips already on disk are played without asking the server again.
    const QByteArray hash = QCryptographicHash::hash(url.toString(QUrl::FullyEncoded).toUtf8(),
                                                     QCryptographicHash::Sha1)
                                .toHex();
    return QDir(m_cacheDir)
        .absoluteFilePath(QStringLiteral("orvel-clip-") + QString::fromLatin1(hash.left(24)) +
                          QStringLiteral(".mp3"));
}

void Speech::say(const QString &text, const QString &language, const QString &voice)
{
    // Spaces, tabs and line breaks at either end are not part of what is said.
    const QString said = text.trimmed();
    if (said.isEmpty() || language.isEmpty())
        return;
    if (m_saying == said) {
        stop();
        return;
    }
    play(clipUrl(said, language, voice.isEmpty() ? m_voices.value(language) : voice), said);
}

void Speech::preview(const QString &voice, const QString &language)
{
    const QString key = QStringLiteral("preview:") + voice;
    if (m_saying == key) {
        stop();
        return;
    }
    play(previewUrl(voice, language), key);
}

void Speech::stop()
{
    ++m_generation;
    m_output.stop();
    setSaying(QString());
}

void Speech::play(const QUrl &url, const QString &saying)
{
    stop();
    setSaying(saying);
    fetchAndStart(url, m_generation);
}

QCoro::Task<> Speech::fetchAndStart(QUrl url, quint64 generation)
{
    QPointer self(this);
    QString file;
    try {
        file = co_await fetch(url);
    } catch (...) {
        // Network errors, refused replies and unwritable caches all end in silence, unannounced.
    }
    if (!self || m_generation != generation)
        co_return;
    if (file.isEmpty()) {
        setSaying(QString());
        co_return;
    }
    start(file, generation);
}

QCoro::Task<QString> Speech::fetch(QUrl url)
{
    const QString path = cacheFile(url);
    if (QFileInfo(path).size() > 0)
        co_return path;
    const QByteArray clip = co_await m_api.fetch(url);
    if (clip.isEmpty())
        throw std::runtime_error("empty clip");
    // Written whole or not at all, so a half-written file never passes for a cached clip.
    QSaveFile cache(path);
    if (!cache.open(QIODevice::WriteOnly) || cache.write(clip) != clip.size() || !cache.commit())
        throw std::runtime_error("clip cache not writable");
    co_return path;
}

void Speech::start(const QString &file, quint64 generation)
{
    QPointer self(this);
    m_output.play(file, decibels(m_gain), [self, generation] {
        if (!self || self->m_generation != generation || self->m_saying.isEmpty())
            return;
        self->setSaying(QString());
    });
}

void Speech::setSaying(const QString &saying)
{
    if (m_saying == saying)
        return;
    m_saying = saying;
    emit sayingChanged();
}

} // namespace orvel
