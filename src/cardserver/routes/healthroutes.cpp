#include "routes/healthroutes.h"

#include "http/httpserver.h"
#include "http/router.h"
#include "store/database.h"

#include <QJsonObject>

namespace cardserver {

void HealthRoutes::install(Router &router, Database &db)
{
    HttpServer &server = router.server();
    router.get(R"(/healthz)", Router::Access::Public, [&db, &server](Call &call) {
        const bool ok = db.reachable();
        const HttpServer::Stats stats = server.stats();
        call.setHeader("Cache-Control", "no-store");
        call.reply(QJsonObject{{"status", ok ? "ok" : "unavailable"},
                               {"database", ok ? "ok" : "unreachable"},
                               {"connections", stats.connections},
                               {"stream_jobs", stats.streamJobs},
                               {"busy_workers", stats.busyWorkers},
                               {"refused_connections", double(stats.refused)}},
                   ok ? 200 : 503);
    });
}

} // namespace cardserver
