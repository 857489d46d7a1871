#pragma once
#include "store/storeaddress.h"

#include <QString>

namespace cardserver {

// Finding folded text inside a folded column (TextFold on both sides), in the form each engine
// does best. SQLite: instr(column, ?) > 0, as it always has. PostgreSQL: column LIKE '%…%'
// with the needle's wildcards escaped, because the planner can estimate LIKE and so walks one
// learner's rows, where strpos() > 0 looks unselective to it and it walks the whole table.
class TextMatch {
public:
    TextMatch(StoreAddress::Engine engine, const QString &folded);

    // The condition on `column`, with one placeholder for value().
    QString on(const QString &column) const;
    QString value() const { return m_value; }

private:
    StoreAddress::Engine m_engine;
    QString m_value;
};

} // namespace cardserver
