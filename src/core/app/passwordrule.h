#pragma once

#include <QString>

namespace orvel {

// The one rule a new password must meet before it is sent: at least 8 characters as the learner
// sees them (an accented letter or an emoji counts once). Sign-up and changing the password
// both check it, with the same words.
class PasswordRule {
public:
    static constexpr int minimumLength = 8;

    static bool tooShort(const QString &password);
    static QString tooShortMessage();
};

} // namespace orvel
