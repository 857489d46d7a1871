#pragma once

namespace cardserver {

class Router;
struct Services;

// Decks, folders, the languages on offer and the library search.
class LibraryRoutes {
public:
    static void install(Router &router, Services &s);
};

} // namespace cardserver
