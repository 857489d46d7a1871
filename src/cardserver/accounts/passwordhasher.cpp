#include "accounts/passwordhasher.h"

#include "text/randomtoken.h"

#include <sodium.h>
#include <stdexcept>

namespace cardserver {

PasswordHasher::PasswordHasher(int workers, std::chrono::milliseconds queueDeadline)
    : m_gate(workers, queueDeadline)
{}

QString PasswordHasher::hash(const QString &password)
{
    const QByteArray pw = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    const WorkGate::Pass pass = m_gate.enterOrBusy();
    if (crypto_pwhash_str(out, pw.constData(), static_cast<unsigned long long>(pw.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw std::runtime_error("out of memory while hashing a password");
    return QString::fromLatin1(out);
}

bool PasswordHasher::verify(const QString &stored, const QString &password)
{
    const QByteArray s = stored.toLatin1();
    const QByteArray pw = password.toUtf8();
    const WorkGate::Pass pass = m_gate.enterOrBusy();
    return crypto_pwhash_str_verify(s.constData(), pw.constData(),
                                    static_cast<unsigned long long>(pw.size())) == 0;
}

const QString &PasswordHasher::decoy()
{
    // Made on first use rather than at start, so starting the server costs no hashing.
    std::call_once(m_decoyMade, [this] { m_decoy = hash(RandomToken::hex(16)); });
    return m_decoy;
}

} // namespace cardserver
