#pragma once

#include <QString>
#include <QUuid>

namespace orvel {

// A word of an import batch that did not become a card: skipped on purpose (already a card, not
// a word) or failed, with the server's reason.
struct Passed {
    QUuid id = QUuid::createUuid();
    QString term;
    QString why;
    bool failed = false;
};

} // namespace orvel
