#pragma once

namespace cardserver {

class Router;
struct Services;

// Short lessons: asking the writer for one, and keeping the chosen phrases as note lines
// and cards.
class LessonRoutes {
public:
    static void install(Router &router, Services &s);
};

} // namespace cardserver
