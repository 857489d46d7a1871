#include "speechrenderer.h"

#include "espeakvoicelist.h"
#include "writers/writer.h"

#include <cmath>
#include <QCryptographicHash>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace cardserver {

namespace {

constexpr int kStartTimeoutMs = 5000;
constexpr int kRunTimeoutMs = 30000;

// What a learner hears when a tool failed; the tool's own words go to the log.
WriterError speechFailed()
{
    return WriterError(QStringLiteral("Speech failed on this server. Try again later."), 503);
}

// Runs a program with an argument list (never through a shell); returns its standard output, or
// throws WriterError(503). What the program said goes to the log: learners get a plain sentence.
QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(kStartTimeoutMs)) {
        qWarning().noquote() << program << "cannot be started:" << process.errorString();
        throw speechFailed();
    }
    if (!process.waitForFinished(kRunTimeoutMs)) {
        process.kill();
        process.waitForFinished(1000);
        qWarning().noquote() << program << "took too long and was stopped";
        throw speechFailed();
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        qWarning().noquote() << program << "stopped with code" << process.exitCode() << ":"
                             << QString::fromUtf8(process.readAllStandardError()).simplified();
        throw speechFailed();
    }
    return process.readAllStandardOutput();
}

QString rateText(double rate)
{
    return QString::number(rate, 'f', 2);
}

} // namespace

SpeechRenderer::SpeechRenderer(QString cacheDir, qint64 cacheBytes, int processes,
                               std::chrono::milliseconds queueWait)
    : m_cacheDir(cacheDir), m_cache(std::move(cacheDir), cacheBytes), m_tools(processes, queueWait)
{}

bool SpeechRenderer::available() const
{
    return !QStandardPaths::findExecutable(QStringLiteral("espeak-ng")).isEmpty() &&
           !QStandardPaths::findExecutable(QStringLiteral("lame")).isEmpty();
}

QString SpeechRenderer::cachePath(const QString &text, const QString &lang, double rate,
                                  const QString &voice) const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &part : {text, lang, rateText(rate), voice}) {
        hash.addData(part.toUtf8());
        hash.addData(QByteArrayView("\0", 1)); // keeps ("ab","c") apart from ("a","bc")
    }
    return QDir(m_cacheDir)
        .filePath(QString::fromLatin1(hash.result().toHex()) + QStringLiteral(".mp3"));
}

std::shared_ptr<std::mutex> SpeechRenderer::lockFor(const QString &key)
{
    std::lock_guard guard(m_locksMutex);
    if (auto existing = m_locks.value(key).lock())
        return existing;
    auto lock = std::make_shared<std::mutex>();
    m_locks.insert(key, lock);
    // Forget locks nobody holds, so the table does not grow with every clip ever spoken.
    if (m_locks.size() > 256) {
        for (auto it = m_locks.begin(); it != m_locks.end();)
            it = it->expired() ? m_locks.erase(it) : std::next(it);
    }
    return lock;
}

QByteArray SpeechRenderer::render(const QString &text, const QString &lang, double rate,
                                  const QString &voice)
{
    const QString spoken = text.trimmed();
    if (spoken.isEmpty())
        throw WriterError(QStringLiteral("Say what to speak."), 422);
    if (spoken.size() > kMaxText)
        throw WriterError(QStringLiteral("That is too long to speak in one go (at most 1,000 "
                                         "characters)."),
                          422);
    // Voices and languages are espeak-ng names such as "de", "en-gb" or "gmw/de"; anything else
    // could be read by espeak-ng as an option.
    static const QRegularExpression voiceName(
        QStringLiteral("^[A-Za-z0-9][A-Za-z0-9_+./-]{0,63}$"));
    const QString speaker = voice.trimmed().isEmpty() ? lang.trimmed() : voice.trimmed();
    if (!voiceName.match(speaker).hasMatch() || speaker.contains(QLatin1String("..")))
        throw WriterError(QStringLiteral("There is no voice called “%1”.").arg(speaker), 422);
    if (!std::isfinite(rate) || rate <= 0)
        throw WriterError(QStringLiteral("The speaking rate must be a positive number."), 422);

    const QString name =
        QFileInfo(cachePath(spoken, lang.trimmed(), rate, voice.trimmed())).fileName();
    if (QByteArray hit = m_cache.read(name); !hit.isEmpty())
        return hit;

    const auto lock = lockFor(name);
    std::lock_guard guard(*lock);
    if (QByteArray hit = m_cache.read(name); !hit.isEmpty())
        return hit; // another thread rendered it while this one waited

    QByteArray mp3;
    {
        const WorkGate::Pass pass = m_tools.enterOrBusy();
        mp3 = renderUncached(spoken, speaker, rate);
    }
    m_cache.store(name, mp3);
    return mp3;
}

QByteArray SpeechRenderer::renderUncached(const QString &text, const QString &voice,
                                          double rate) const
{
    QTemporaryDir work;
    if (!work.isValid()) {
        qWarning().noquote() << "speech: no temporary folder:" << work.errorString();
        throw speechFailed();
    }
    const QString wav = work.filePath(QStringLiteral("clip.wav"));
    const QString mp3 = work.filePath(QStringLiteral("clip.mp3"));
    const int wordsPerMinute = std::clamp(int(std::lround(175 * rate)), 80, 450);
    run(QStringLiteral("espeak-ng"),
        {QStringLiteral("-v"), voice, QStringLiteral("-s"), QString::number(wordsPerMinute),
         QStringLiteral("-w"), wav, QStringLiteral("--"), text});
    run(QStringLiteral("lame"),
        {QStringLiteral("--quiet"), QStringLiteral("-b"), QStringLiteral("64"), wav, mp3});
    QFile file(mp3);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (bytes.isEmpty()) {
        qWarning().noquote() << "speech: lame wrote no clip";
        throw speechFailed();
    }
    return bytes;
}

QJsonArray SpeechRenderer::voices(const QString &lang) const
{
    const QString code = lang.trimmed().toLower();
    static const QRegularExpression languageCode(QStringLiteral("^[a-z]{2,3}(-[a-z0-9-]{1,16})?$"));
    if (!languageCode.match(code).hasMatch())
        return {};
    {
        std::lock_guard guard(m_voicesMutex);
        if (const auto it = m_voices.constFind(code); it != m_voices.constEnd())
            return *it;
    }
    QJsonArray list;
    try {
        const std::optional<WorkGate::Pass> pass = m_tools.enter();
        if (!pass)
            return {};
        list = EspeakVoiceList::parse(QString::fromUtf8(
            run(QStringLiteral("espeak-ng"), {QStringLiteral("--voices=") + code})));
    } catch (const WriterError &) {
        return {}; // not cached: espeak-ng may be installed later
    }
    std::lock_guard guard(m_voicesMutex);
    m_voices.insert(code, list);
    return list;
}

QStringList SpeechRenderer::languages() const
{
    {
        std::lock_guard guard(m_voicesMutex);
        if (!m_languages.isEmpty())
            return m_languages;
    }
    QStringList list;
    try {
        const std::optional<WorkGate::Pass> pass = m_tools.enter();
        if (!pass)
            return {};
        list = EspeakVoiceList::languages(
            QString::fromUtf8(run(QStringLiteral("espeak-ng"), {QStringLiteral("--voices")})));
    } catch (const WriterError &) {
        return {};
    }
    std::lock_guard guard(m_voicesMutex);
    m_languages = list;
    return list;
}

} // namespace cardserver
