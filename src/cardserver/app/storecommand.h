#pragma once

namespace cardserver {

struct ServerOptions;

// The commands that work on the store and exit instead of serving: --migrate-only and --check.
// Each prints one line (on standard output when it went well, on standard error when not) and
// returns the process's exit status.
class StoreCommand {
public:
    static int migrateOnly(const ServerOptions &options);
    static int check(const ServerOptions &options);
};

} // namespace cardserver
