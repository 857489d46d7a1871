#pragma once

namespace cardserver {

class Database;

// Versioned schema: each migration runs once, in order, and bumps schema_version.
// Called inside a write transaction when the store opens.
class Schema {
public:
    static void migrate(Database &db);
    static int latestVersion();
};

} // namespace cardserver
