// orvel-server: the self-hostable card server. See --help.
#include "app/cardserver.h"
#include "app/serveroptions.h"
#include "app/storecommand.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <pthread.h>
#include <QCoreApplication>
#include <sodium.h>
#include <thread>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orvel-server"));

    const auto options = cardserver::ServerOptions::parse(QCoreApplication::arguments());
    if (options.help) {
        std::fputs(qPrintable(cardserver::ServerOptions::usage()), stdout);
        return 0;
    }
    if (!options.error.isEmpty()) {
        std::fprintf(stderr, "orvel-server: %s\n", qPrintable(options.error));
        return 2;
    }
    if (options.migrateOnly)
        return cardserver::StoreCommand::migrateOnly(options);
    if (options.check)
        return cardserver::StoreCommand::check(options);
    if (sodium_init() < 0) {
        std::fprintf(stderr, "orvel-server: libsodium could not start\n");
        return 1;
    }

    // SIGTERM and SIGINT are taken by one thread with sigwait (blocked everywhere else, so
    // every thread started from here inherits the mask) and stop the server in order.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    cardserver::CardServer server(options);
    try {
        server.start();
    } catch (const std::exception &e) {
        std::fprintf(stderr, "orvel-server: %s\n", e.what());
        return 1;
    }
    std::atomic<bool> served{false};
    std::thread watcher([&] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        // A signal can come before the server has started accepting: keep asking until the
        // serving loop has ended.
        while (!served) {
            server.stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });

    // An IPv6 host goes in brackets, so the line is an address a client can use as it is.
    const QString host = server.host().contains(':') ? "[" + server.host() + "]" : server.host();
    std::printf("listening on http://%s:%d\n", qPrintable(host), server.port());
    std::fflush(stdout);
    server.serve();
    served = true;
    pthread_kill(watcher.native_handle(), SIGTERM); // wakes the watcher if no signal came
    watcher.join();
    return 0;
}
