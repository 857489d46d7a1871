#pragma once
#include <QByteArray>
#include <QString>

namespace cardserver {

// Unguessable identifiers from libsodium's generator: session ids, confirmation tokens,
// one-time sign-in codes, picture file names.
class RandomToken {
public:
    // `bytes` random bytes as lowercase hex (so 32 bytes give 256 bits in 64 characters).
    static QString hex(int bytes);
    // A stable digest of a secret, so the store never holds a usable session id.
    static QString digest(const QString &secret);
};

} // namespace cardserver
