#include "http/httpserver.h"

#include <sys/socket.h>

namespace cardserver {

bool HttpServer::widenBacklog(int backlog)
{
    // listen() on a socket that already listens only changes its backlog.
    return ::listen(svr_sock_, backlog) == 0;
}

} // namespace cardserver
