#include "sound/soundpane.h"

#include "app/appstate.h"
#include "app/services.h"
#include "server/apiclient.h"

namespace orvel {

SoundPane::SoundPane(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_state(Services::current().state())
{}

QCoro::Task<> SoundPane::load()
{
    const auto preferences = co_await m_calls.run(m_api.preferences());
    if (preferences)
        adopt(*preferences);
}

void SoundPane::reload()
{
    load();
}

bool SoundPane::marginAsYouGo() const
{
    if (m_sending)
        return *m_sending;
    return m_preferences && m_preferences->marginAsYouGo.value_or(false);
}

void SoundPane::setMarginAsYouGo(bool on)
{
    if (!m_preferences || on == marginAsYouGo())
        return;
    // The switch shows the choice at once; the server's answer confirms or undoes it.
    m_sending = on;
    emit preferencesChanged();
    SettingsChange change;
    change.marginAsYouGo = on;
    save(change);
}

QCoro::Task<> SoundPane::save(SettingsChange change)
{
    const auto reply = co_await m_calls.run(m_api.saveSettings(std::move(change)));
    if (reply.gone())
        co_return;
    m_sending.reset();
    if (reply) {
        adopt(*reply);
        co_return;
    }
    // The switch goes back to what the server still has.
    emit preferencesChanged();
}

void SoundPane::adopt(const Preferences &preferences)
{
    m_preferences = preferences;
    // The rest of the app (the note editor's margin as you go) follows the server's answer.
    m_state.storePreferences(preferences);
    emit preferencesChanged();
}

} // namespace orvel
