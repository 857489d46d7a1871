#pragma once
#include <QtGlobal>

namespace cardserver {

class Router;
struct Services;

// Pictures: upload, import of a found picture, search over the learner's own pictures,
// and the files themselves at /media/<id>/<name>.
class MediaRoutes {
public:
    static void install(Router &router, Services &s);

    static constexpr qint64 MaxBytes = 10LL * 1024 * 1024;
};

} // namespace cardserver
