#pragma once

#include "app/servercalls.h"
#include "records/preferences.h"
#include "records/voiceoffer.h"
#include "server/apiclient.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QtQml/qqml.h>
#include <QVariantList>
#include <QVariantMap>

namespace orvel {

class APIClient;
class AppState;
class Speech;

// The "Sound" pane of the settings window: the account's sound settings as the server keeps
// them, loaded each time the pane is shown, and the voices the server offers for each language.
// A change is sent at once with only its own key and shown at once; the server's reply becomes
// what the pane and the rest of the app go by (the player's pace and voices follow it), and a
// refused change goes back to what the server has.
class SoundPane : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool loaded READ loaded NOTIFY preferencesChanged)
    Q_PROPERTY(bool hearOnFlip READ hearOnFlip WRITE setHearOnFlip NOTIFY preferencesChanged)
    Q_PROPERTY(bool slow READ slow WRITE setSlow NOTIFY preferencesChanged)
    Q_PROPERTY(
        bool marginAsYouGo READ marginAsYouGo WRITE setMarginAsYouGo NOTIFY preferencesChanged)
    Q_PROPERTY(bool offerLoaded READ offerLoaded NOTIFY offerChanged)
    Q_PROPERTY(bool speaks READ speaks NOTIFY offerChanged)
    Q_PROPERTY(QVariantList languages READ languages NOTIFY voicesChanged)
    Q_PROPERTY(QString previewing READ previewing NOTIFY previewingChanged)
    Q_PROPERTY(bool saving READ saving NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)
public:
    explicit SoundPane(QObject *parent = nullptr);

    // Fetches the settings, then the voice offer.
    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    bool loaded() const { return m_preferences.has_value(); }
    const std::optional<Preferences> &preferences() const { return m_preferences; }
    bool hearOnFlip() const;
    void setHearOnFlip(bool on);
    // The "Speed" picker: Slow is rate 0.75, Normal 1.0.
    bool slow() const;
    void setSlow(bool slow);
    bool marginAsYouGo() const;
    void setMarginAsYouGo(bool on);

    bool offerLoaded() const { return m_offer.has_value(); }
    // Whether the server can speak at all.
    bool speaks() const { return m_offer && m_offer->audio; }
    const std::optional<VoiceOffer> &offer() const { return m_offer; }

    // The voice in force for a language: the learner's choice, else the server's default.
    QString chosenVoice(const VoiceOfferLanguage &language) const;
    // The voices shown for a language: the chosen one first (when offered), then the others in
    // the server's order, six at most.
    QList<Voice> shortlist(const VoiceOfferLanguage &language) const;
    // Chooses a voice for a language (by its code) and saves it.
    Q_INVOKABLE void chooseVoice(const QString &code, const QString &voice);
    // Plays a voice's sample, or stops it when it is the one sounding.
    Q_INVOKABLE void preview(const QString &code, const QString &voice);
    // The voice whose sample is sounding, else empty.
    QString previewing() const;

    // Each offered language: {code, heading ("Spoken by German"), error, voices}, each voice
    // {id, name, manner, chosen}.
    QVariantList languages() const;

    bool saving() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }
    QVariantMap texts() const;

    // Sends one change; what it sets is shown at once and until every change on its way has
    // been answered.
    QCoro::Task<> save(SettingsChange change);

signals:
    void preferencesChanged();
    void offerChanged();
    void voicesChanged();
    void previewingChanged();
    void workingChanged();
    void troubleChanged();

private:
    void adopt(const Preferences &preferences);
    // The settings with the changes still on their way laid over them.
    Preferences shown() const;

    APIClient &m_api;
    AppState &m_state;
    Speech &m_speech;
    ServerCalls m_calls{this, &SoundPane::workingChanged, &SoundPane::troubleChanged};
    std::optional<Preferences> m_preferences;
    std::optional<VoiceOffer> m_offer;
    SettingsChange m_pending; // every change still on its way, merged
    int m_sending = 0;
};

} // namespace orvel
