#pragma once

namespace cardserver {

class Router;
struct Services;

// Sign-up, confirmation, sign-in (password and test providers), sessions, password change
// and the forgotten-password pages.
class AuthRoutes {
public:
    static void install(Router &router, Services &s);
};

} // namespace cardserver
