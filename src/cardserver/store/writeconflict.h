#pragma once
#include <stdexcept>
#include <string>

namespace cardserver {

// PostgreSQL refused a statement of a write transaction because a concurrent transaction
// conflicts with it (serialization failure or deadlock). Database::write rolls back and runs the
// whole transaction again; it never reaches a route unless the retries run out.
class WriteConflict : public std::runtime_error {
public:
    explicit WriteConflict(const std::string &what) : std::runtime_error(what) {}
};

} // namespace cardserver
