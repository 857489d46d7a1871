#include "app/services.h"

#include <QtGlobal>

namespace orvel {

namespace {

Services *installedServices = nullptr;

} // namespace

Services::Services(APIClient &api, AppState &state, Speech &speech)
    : m_api(api), m_state(state), m_speech(speech), m_previous(installedServices)
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

bool Services::installed()
{
    return installedServices != nullptr;
}

} // namespace orvel
