#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// The sign-in methods the server offers.
struct AuthOptions {
    Q_GADGET
    Q_PROPERTY(bool google MEMBER google)
    Q_PROPERTY(bool apple MEMBER apple)
    Q_PROPERTY(bool signup MEMBER signup)
public:
    bool google = false;
    bool apple = false;
    bool signup = false;

    bool operator==(const AuthOptions &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("google", &AuthOptions::google),
                                                   json::field("apple", &AuthOptions::apple),
                                                   json::field("signup", &AuthOptions::signup));
};

} // namespace orvel
