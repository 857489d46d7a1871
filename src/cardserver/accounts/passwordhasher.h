#pragma once
#include "limits/workgate.h"

#include <mutex>
#include <QString>

namespace cardserver {

// Argon2id password hashes (libsodium's crypto_pwhash_str, interactive limits: 64 MiB and a
// fraction of a second each): the stored string carries its own salt and parameters. Every
// hash and check passes a WorkGate, so no more than `workers` of them hold their memory at
// once; one that queued past the deadline throws ApiError 503.
class PasswordHasher {
public:
    PasswordHasher(int workers, std::chrono::milliseconds queueDeadline);

    QString hash(const QString &password);
    bool verify(const QString &stored, const QString &password);
    // A stored hash of a password nobody has: checking against it costs what a real check
    // costs, so a sign-in for an unknown address takes as long as a wrong password.
    const QString &decoy();

private:
    WorkGate m_gate;
    std::once_flag m_decoyMade;
    QString m_decoy;
};

} // namespace cardserver
