#pragma once

namespace cardserver {

class Router;
struct Services;

// The account's preferences, the voices on offer and the spoken clips.
class SettingsRoutes {
public:
    static void install(Router &router, Services &s);
};

} // namespace cardserver
