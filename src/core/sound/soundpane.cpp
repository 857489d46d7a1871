#include "sound/soundpane.h"

#include "app/appstate.h"
#include "app/services.h"
#include "server/apiclient.h"
#include "sound/soundtexts.h"
#include "sound/speech.h"
#include "sound/voicename.h"

namespace orvel {

namespace {

const QString previewPrefix = QStringLiteral("preview:");
constexpr double normalRate = 1.0;
constexpr double slowRate = 0.75;
constexpr qsizetype shortlistLength = 6;

} // namespace

SoundPane::SoundPane(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_state(Services::current().state()),
      m_speech(Services::current().speech())
{
    connect(&m_speech, &Speech::sayingChanged, this, &SoundPane::previewingChanged);
}

QCoro::Task<> SoundPane::load()
{
    const auto preferences = co_await m_calls.run(m_api.preferences());
    if (!preferences)
        co_return;
    adopt(*preferences);
    // The voices come second: the switches show as soon as the settings are known.
    const auto offer = co_await m_calls.run(m_api.voices());
    if (!offer)
        co_return;
    m_offer = *offer;
    emit offerChanged();
    emit voicesChanged();
}

void SoundPane::reload()
{
    load();
}

Preferences SoundPane::shown() const
{
    Preferences preferences = m_preferences.value_or(Preferences{});
    if (m_pending.hearOnFlip)
        preferences.hearOnFlip = *m_pending.hearOnFlip;
    if (m_pending.rate)
        preferences.rate = *m_pending.rate;
    if (m_pending.marginAsYouGo)
        preferences.marginAsYouGo = *m_pending.marginAsYouGo;
    if (m_pending.voices)
        preferences.voices.insert(*m_pending.voices);
    return preferences;
}

bool SoundPane::hearOnFlip() const
{
    return shown().hearOnFlip;
}

void SoundPane::setHearOnFlip(bool on)
{
    if (!m_preferences || on == hearOnFlip())
        return;
    SettingsChange change;
    change.hearOnFlip = on;
    save(change);
}

bool SoundPane::slow() const
{
    return loaded() && shown().rate < normalRate;
}

void SoundPane::setSlow(bool slow)
{
    if (!m_preferences || slow == this->slow())
        return;
    SettingsChange change;
    change.rate = slow ? slowRate : normalRate;
    save(change);
}

bool SoundPane::marginAsYouGo() const
{
    return shown().marginAsYouGo.value_or(false);
}

void SoundPane::setMarginAsYouGo(bool on)
{
    if (!m_preferences || on == marginAsYouGo())
        return;
    SettingsChange change;
    change.marginAsYouGo = on;
    save(change);
}

QString SoundPane::chosenVoice(const VoiceOfferLanguage &language) const
{
    if (m_preferences) {
        const Preferences preferences = shown();
        const auto chosen = preferences.voices.constFind(language.code);
        if (chosen != preferences.voices.constEnd())
            return *chosen;
    }
    return language.selected;
}

QList<Voice> SoundPane::shortlist(const VoiceOfferLanguage &language) const
{
    const QString chosen = chosenVoice(language);
    QList<Voice> list;
    for (const Voice &voice : language.voices)
        if (voice.id == chosen) {
            list.append(voice);
            break;
        }
    for (const Voice &voice : language.voices) {
        if (list.size() >= shortlistLength)
            break;
        if (voice.id != chosen)
            list.append(voice);
    }
    return list;
}

void SoundPane::chooseVoice(const QString &code, const QString &voice)
{
    if (!m_preferences || !m_offer || voice.isEmpty())
        return;
    for (const VoiceOfferLanguage &language : m_offer->languages)
        if (language.code == code) {
            if (chosenVoice(language) == voice)
                return;
            SettingsChange change;
            change.voices = QMap<QString, QString>{{code, voice}};
            save(change);
            return;
        }
}

void SoundPane::preview(const QString &code, const QString &voice)
{
    m_speech.preview(voice, code);
}

QString SoundPane::previewing() const
{
    const QString saying = m_speech.saying();
    return saying.startsWith(previewPrefix) ? saying.mid(previewPrefix.size()) : QString();
}

QVariantList SoundPane::languages() const
{
    QVariantList list;
    if (!m_offer)
        return list;
    for (const VoiceOfferLanguage &language : m_offer->languages) {
        const QString chosen = chosenVoice(language);
        QVariantList voices;
        // A language that could not list its voices shows why, and no rows.
        if (!language.error)
            for (const Voice &voice : shortlist(language)) {
                const VoiceName name = VoiceName::split(voice.name);
                voices.append(QVariantMap{{QStringLiteral("id"), voice.id},
                                          {QStringLiteral("name"), name.name},
                                          {QStringLiteral("manner"), name.manner},
                                          {QStringLiteral("chosen"), voice.id == chosen}});
            }
        list.append(QVariantMap{{QStringLiteral("code"), language.code},
                                {QStringLiteral("heading"), soundtexts::spokenBy(language.name)},
                                {QStringLiteral("error"), language.error.value_or(QString())},
                                {QStringLiteral("voices"), voices}});
    }
    return list;
}

QVariantMap SoundPane::texts() const
{
    return {{QStringLiteral("title"), soundtexts::title()},
            {QStringLiteral("hearOnFlip"), soundtexts::hearOnFlip()},
            {QStringLiteral("speed"), soundtexts::speed()},
            {QStringLiteral("normal"), soundtexts::normal()},
            {QStringLiteral("slow"), soundtexts::slow()},
            {QStringLiteral("noSpeech"), soundtexts::noSpeech()},
            {QStringLiteral("hearThisVoice"), soundtexts::hearThisVoice()},
            {QStringLiteral("stop"), soundtexts::stop()},
            {QStringLiteral("marginAsYouGo"), soundtexts::marginAsYouGo()},
            {QStringLiteral("marginAsYouGoNote"), soundtexts::marginAsYouGoNote()}};
}

QCoro::Task<> SoundPane::save(SettingsChange change)
{
    // The control shows the change at once; the server's answer confirms or undoes it.
    if (change.hearOnFlip)
        m_pending.hearOnFlip = change.hearOnFlip;
    if (change.rate)
        m_pending.rate = change.rate;
    if (change.marginAsYouGo)
        m_pending.marginAsYouGo = change.marginAsYouGo;
    if (change.voices) {
        QMap<QString, QString> voices = m_pending.voices.value_or(QMap<QString, QString>{});
        voices.insert(*change.voices);
        m_pending.voices = voices;
    }
    ++m_sending;
    emit preferencesChanged();
    if (change.voices)
        emit voicesChanged();

    const auto reply = co_await m_calls.run(m_api.saveSettings(std::move(change)));
    if (reply.gone())
        co_return;
    if (reply)
        m_preferences = *reply;
    if (--m_sending == 0)
        m_pending = {};
    // A refused change goes back to what the server still has.
    adopt(m_preferences.value_or(Preferences{}));
}

void SoundPane::adopt(const Preferences &preferences)
{
    m_preferences = preferences;
    // The rest of the app follows the server's answer: the note editor's margin as you go, the
    // study screen's hearing on flip, the player's pace and voices.
    m_state.storePreferences(preferences);
    emit preferencesChanged();
    emit voicesChanged();
}

} // namespace orvel
