#pragma once

namespace orvel {

class APIClient;

// The client a screen made by QML talks to: the app state's (the one main() set up, or a test's),
// else the shared one.
APIClient &screenApi();

} // namespace orvel
