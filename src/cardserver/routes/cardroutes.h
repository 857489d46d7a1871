#pragma once

namespace cardserver {

class Router;
struct Services;

// Writing cards (one, a batch, or the words of a pasted text, each as an event stream),
// rewriting, reviewing and deleting them.
class CardRoutes {
public:
    static void install(Router &router, Services &s);

    // How much of a pasted text is read for words.
    static constexpr int ExtractLimit = 20'000;
};

} // namespace cardserver
