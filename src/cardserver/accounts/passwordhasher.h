#pragma once
#include <QString>

namespace cardserver {

// Argon2id password hashes (libsodium's crypto_pwhash_str, interactive limits): the stored
// string carries its own salt and parameters.
class PasswordHasher {
public:
    static QString hash(const QString &password);
    static bool verify(const QString &stored, const QString &password);
};

} // namespace cardserver
