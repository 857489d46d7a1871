#pragma once

namespace cardserver {

class Database;

// Versioned schema: each migration runs once, in order, and bumps schema_version. One list
// serves both engines; a step whose types differ is written once per engine.
class Schema {
public:
    // Brings the store up to `target` (default: the latest). Called inside a write transaction.
    // Throws std::runtime_error when the store is newer than this build.
    static void migrate(Database &db, int target = -1);
    // The store's version without changing anything: 0 for an empty store.
    static int version(Database &db);
    static int latestVersion();
};

} // namespace cardserver
