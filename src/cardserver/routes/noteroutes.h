#pragma once

namespace cardserver {

class Router;
struct Services;

// Notes: listing, making, loading, saving, deleting; the margin (a stream over the note or
// one line), deeper levels of a remark, a card from a line, and slash-command lines.
class NoteRoutes {
public:
    static void install(Router &router, Services &s);
};

} // namespace cardserver
