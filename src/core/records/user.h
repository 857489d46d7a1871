#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The signed-in account.
struct User {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString email MEMBER email)
    Q_PROPERTY(QString displayName MEMBER displayName)
public:
    int id = 0;
    QString email{};
    QString displayName{};

    bool operator==(const User &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("id", &User::id), json::field("email", &User::email),
                        json::field("displayName", &User::displayName));
};

} // namespace orvel
