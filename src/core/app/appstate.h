#pragma once

#include "app/skin.h"
#include "records/preferences.h"
#include "records/user.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class SoundControls;

// The app's one shared state: who is signed in, the chosen appearance and skin, whether the
// desktop is dark, and the signed-in learner's preferences. Every screen reads it; QML sees it as
// the singleton AppState (the installed services' one).
class AppState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(Auth auth READ auth NOTIFY authChanged)
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY authChanged)
    Q_PROPERTY(orvel::User user READ user NOTIFY authChanged)
    Q_PROPERTY(QString userDisplayName READ userDisplayName NOTIFY authChanged)
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY authChanged)
    Q_PROPERTY(Appearance appearance READ appearance WRITE setAppearance NOTIFY appearanceChanged)
    Q_PROPERTY(bool systemIsDark READ systemIsDark WRITE setSystemIsDark NOTIFY systemIsDarkChanged)
    Q_PROPERTY(QString skin READ skin NOTIFY skinChanged)
    Q_PROPERTY(QString effectiveSkin READ effectiveSkin NOTIFY effectiveSkinChanged)
    Q_PROPERTY(bool dark READ dark NOTIFY effectiveSkinChanged)
    Q_PROPERTY(bool hasPreferences READ hasPreferences NOTIFY preferencesChanged)
    Q_PROPERTY(orvel::Preferences preferences READ preferencesOrDefault NOTIFY preferencesChanged)

public:
    enum class Auth { Unknown, SignedOut, SignedIn };
    Q_ENUM(Auth)
    enum class Appearance { System, Light, Dark };
    Q_ENUM(Appearance)

    // Reads "zelon.appearance" and "zelon.skin" from the local settings.
    explicit AppState(APIClient &api, QObject *parent = nullptr);
    ~AppState() override;

    // QML's singleton: the installed services' state.
    static AppState *create(QQmlEngine *, QJSEngine *);

    static QString appearanceText(Appearance appearance);

    APIClient &api() const { return m_api; }

    Auth auth() const { return m_auth; }
    bool signedIn() const { return m_auth == Auth::SignedIn; }
    User user() const { return m_user; }
    QString userDisplayName() const { return m_user.displayName; }
    QString userEmail() const { return m_user.email; }
    Appearance appearance() const { return m_appearance; }
    void setAppearance(Appearance appearance);
    bool systemIsDark() const { return m_systemIsDark; }
    void setSystemIsDark(bool dark);
    QString skin() const { return m_skin; }
    QString effectiveSkin() const;
    bool dark() const;
    const std::optional<Preferences> &preferences() const { return m_preferences; }
    bool hasPreferences() const { return m_preferences.has_value(); }

    // The speech player the sound preferences go to (none until it exists).
    void setSound(SoundControls *sound) { m_sound = sound; }

    // Asks the server who is signed in; signed in, loads the preferences. Any failure means
    // signed out, with nothing shown.
    QCoro::Task<> restore();
    // Loads the preferences and applies them: sound settings, and the skin's family when the
    // appearance is not System. A failure keeps what was there.
    QCoro::Task<> adoptPreferences();
    // Ends the session; signed out whether or not the server answered.
    QCoro::Task<> signOut();
    // A sign-in succeeded (sign-in screen).
    void setSignedIn(const User &user);

    // Sets the appearance at once; for Light and Dark also tells the server the matching skin.
    Q_INVOKABLE void choose(orvel::AppState::Appearance appearance);
    // The look pane chose a skin: kept locally, saved to the server, and shown at once (the
    // appearance follows the skin's family unless the desktop's scheme already shows it).
    Q_INVOKABLE void chooseSkin(const QString &id);
    // QML's way to sign out (runs signOut() in the background).
    Q_INVOKABLE void requestSignOut();

    // Stores preferences the server sent in reply to a settings update, and applies their sound
    // settings to the speech player.
    void storePreferences(const Preferences &preferences);

signals:
    void authChanged();
    void appearanceChanged();
    void systemIsDarkChanged();
    void skinChanged();
    void effectiveSkinChanged();
    void preferencesChanged();

private:
    Preferences preferencesOrDefault() const { return m_preferences.value_or(Preferences{}); }
    void setAuth(Auth auth, const User &user = {});
    void setSkin(const QString &id);
    void updateEffectiveSkin();
    QCoro::Task<> saveSkin(QString skin);

    APIClient &m_api;
    SoundControls *m_sound = nullptr;
    Auth m_auth = Auth::Unknown;
    User m_user;
    Appearance m_appearance = Appearance::System;
    bool m_systemIsDark = false;
    QString m_skin;
    QString m_effectiveSkin;
    std::optional<Preferences> m_preferences;
};

} // namespace orvel
