#pragma once
#include <QJsonObject>
#include <QString>

namespace cardserver {

// One learner's account as stored.
struct Account {
    qint64 id = 0;
    QString email;
    QString displayName;
    QString passwordHash;
    bool confirmed = false;

    // The User record: {id, email, display_name}.
    QJsonObject json() const
    {
        return {{"id", id}, {"email", email}, {"display_name", displayName}};
    }
};

} // namespace cardserver
