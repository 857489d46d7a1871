#include "library/screenapi.h"

#include "app/appstate.h"
#include "server/apiclient.h"

namespace orvel {

APIClient &screenApi()
{
    if (AppState *state = AppState::instance())
        return state->api();
    return APIClient::shared();
}

} // namespace orvel
