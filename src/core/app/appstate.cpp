#include "appstate.h"

#include "app/services.h"
#include "app/skins.h"
#include "app/soundcontrols.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <QDebug>
#include <QQmlEngine>

namespace orvel {

namespace {

std::optional<AppState::Appearance> appearanceFromText(const QString &text)
{
    if (text == QLatin1String("system"))
        return AppState::Appearance::System;
    if (text == QLatin1String("light"))
        return AppState::Appearance::Light;
    if (text == QLatin1String("dark"))
        return AppState::Appearance::Dark;
    return std::nullopt;
}

AppState::Appearance appearanceFor(SkinFamily family)
{
    return family == SkinFamily::dark ? AppState::Appearance::Dark : AppState::Appearance::Light;
}

} // namespace

AppState::AppState(APIClient &api, QObject *parent) : QObject(parent), m_api(api)
{
    QSettings &settings = LocalSettings::store();
    m_skin = settings.value(settingskeys::skin()).toString();
    const auto family = Skins::familyOf(m_skin);
    if (const auto stored =
            appearanceFromText(settings.value(settingskeys::appearance()).toString()))
        m_appearance = *stored;
    else if (family)
        m_appearance = appearanceFor(*family);
    else
        m_appearance = Appearance::System;
    m_effectiveSkin = effectiveSkin();
}

AppState::~AppState() = default;

AppState *AppState::create(QQmlEngine *, QJSEngine *)
{
    AppState *state = &Services::current().state();
    QQmlEngine::setObjectOwnership(state, QQmlEngine::CppOwnership);
    return state;
}

QString AppState::appearanceText(Appearance appearance)
{
    switch (appearance) {
    case Appearance::System:
        return QStringLiteral("system");
    case Appearance::Light:
        return QStringLiteral("light");
    case Appearance::Dark:
        return QStringLiteral("dark");
    }
    return QStringLiteral("system");
}

void AppState::setAppearance(Appearance appearance)
{
    LocalSettings::store().setValue(settingskeys::appearance(), appearanceText(appearance));
    if (m_appearance == appearance)
        return;
    m_appearance = appearance;
    emit appearanceChanged();
    updateEffectiveSkin();
}

void AppState::setSystemIsDark(bool dark)
{
    if (m_systemIsDark == dark)
        return;
    m_systemIsDark = dark;
    emit systemIsDarkChanged();
    updateEffectiveSkin();
}

QString AppState::effectiveSkin() const
{
    const bool shownDark =
        m_appearance == Appearance::Dark || (m_appearance == Appearance::System && m_systemIsDark);
    return Skins::effective(m_skin, shownDark ? SkinFamily::dark : SkinFamily::light);
}

bool AppState::dark() const
{
    return Skins::familyOf(m_effectiveSkin) == SkinFamily::dark;
}

QCoro::Task<> AppState::restore()
{
    QPointer self(this);
    std::optional<User> user;
    try {
        user = co_await m_api.me();
    } catch (const ServerError &) {
    }
    if (!self)
        co_return;
    if (!user) {
        setAuth(Auth::SignedOut);
        co_return;
    }
    setAuth(Auth::SignedIn, *user);
    co_await adoptPreferences();
}

QCoro::Task<> AppState::adoptPreferences()
{
    QPointer self(this);
    std::optional<Preferences> loaded;
    try {
        loaded = co_await m_api.preferences();
    } catch (const ServerError &) {
    }
    if (!self || !loaded)
        co_return;
    storePreferences(*loaded);
    if (Skins::find(loaded->skin))
        setSkin(loaded->skin);
    if (m_appearance != Appearance::System)
        if (const auto family = Skins::familyOf(loaded->skin))
            setAppearance(appearanceFor(*family));
}

QCoro::Task<> AppState::signOut()
{
    QPointer self(this);
    try {
        co_await m_api.signOut();
    } catch (const ServerError &) {
    }
    if (self)
        setAuth(Auth::SignedOut);
}

void AppState::setSignedIn(const User &user)
{
    setAuth(Auth::SignedIn, user);
}

void AppState::choose(Appearance appearance)
{
    setAppearance(appearance);
    if (appearance == Appearance::System)
        return;
    const SkinFamily family = appearance == Appearance::Dark ? SkinFamily::dark : SkinFamily::light;
    // The learner's own skin of that family when there is one, so that choosing an appearance
    // does not overwrite a chosen skin on the server; else the family's name.
    const QString skin =
        Skins::familyOf(m_skin) == family && Skins::find(m_skin)
            ? m_skin
            : (family == SkinFamily::dark ? QStringLiteral("dark") : QStringLiteral("light"));
    saveSkin(skin);
}

void AppState::chooseSkin(const QString &id)
{
    const Skin *chosen = Skins::find(id);
    if (!chosen) {
        qWarning().noquote() << "AppState: no skin named" << id;
        return;
    }
    setSkin(id);
    const SkinFamily systemFamily = m_systemIsDark ? SkinFamily::dark : SkinFamily::light;
    if (m_appearance != Appearance::System || chosen->family != systemFamily)
        setAppearance(appearanceFor(chosen->family));
    saveSkin(id);
}

void AppState::requestSignOut()
{
    signOut();
}

void AppState::storePreferences(const Preferences &preferences)
{
    if (m_preferences && *m_preferences == preferences)
        return;
    m_preferences = preferences;
    // The player follows at once: the next clip has the new loudness, pace and voice.
    if (m_sound) {
        if (m_sound->gain() != preferences.gain)
            m_sound->setGain(preferences.gain);
        const bool slow = preferences.rate < 1.0;
        if (m_sound->slow() != slow)
            m_sound->setSlow(slow);
        if (m_sound->voices() != preferences.voices)
            m_sound->setVoices(preferences.voices);
    }
    emit preferencesChanged();
}

void AppState::setAuth(Auth auth, const User &user)
{
    if (m_auth == auth && m_user == user)
        return;
    m_auth = auth;
    m_user = auth == Auth::SignedIn ? user : User{};
    emit authChanged();
}

void AppState::setSkin(const QString &id)
{
    LocalSettings::store().setValue(settingskeys::skin(), id);
    if (m_skin == id)
        return;
    m_skin = id;
    emit skinChanged();
    updateEffectiveSkin();
}

void AppState::updateEffectiveSkin()
{
    const QString skin = effectiveSkin();
    if (skin == m_effectiveSkin)
        return;
    m_effectiveSkin = skin;
    emit effectiveSkinChanged();
}

QCoro::Task<> AppState::saveSkin(QString skin)
{
    QPointer self(this);
    try {
        SettingsChange change;
        change.skin = skin;
        const Preferences reply = co_await m_api.saveSettings(change);
        if (self)
            storePreferences(reply);
    } catch (const ServerError &) {
        // The chosen appearance stays; the server keeps its old skin.
    }
}

} // namespace orvel
