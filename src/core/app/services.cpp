#include "app/services.h"

#include <QtGlobal>

namespace orvel {

namespace {

Services *installedServices = nullptr;

} // namespace

Services::Services(APIClient &api, AppState &state, Speech &speech, Reminder *reminder)
    : m_api(api), m_state(state), m_speech(speech), m_reminder(reminder),
      m_previous(installedServices)
{
    installedServices = this;
}

Services::~Services()
{
    // Sets are installed and removed in stack order (scopes); anything else is a fault.
    Q_ASSERT(installedServices == this);
    installedServices = m_previous;
}

Services &Services::current()
{
    if (!installedServices)
        qFatal("orvel: a screen was made before the app's services were installed "
               "(install an orvel::Services first)");
    return *installedServices;
}

Reminder &Services::reminder() const
{
    if (!m_reminder)
        qFatal("orvel: the reminder's pane was made with services that have no reminder "
               "(pass one to orvel::Services)");
    return *m_reminder;
}

bool Services::installed()
{
    return installedServices != nullptr;
}

} // namespace orvel
