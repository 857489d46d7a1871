#pragma once

namespace cardserver {

class Database;
class Router;

// GET /healthz (public): whether the store answers, and how busy the HTTP layer is.
//   200 {"status": "ok", "database": "ok", "connections": n, "stream_jobs": n,
//        "busy_workers": n, "refused_connections": n}
//   503 the same with "status": "unavailable", "database": "unreachable"
// stream_jobs counts the card-writing streams whose job is running or waiting for a thread.
class HealthRoutes {
public:
    static void install(Router &router, Database &db);
};

} // namespace cardserver
