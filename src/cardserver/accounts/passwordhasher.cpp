#include "accounts/passwordhasher.h"

#include <sodium.h>
#include <stdexcept>

namespace cardserver {

QString PasswordHasher::hash(const QString &password)
{
    const QByteArray pw = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
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
    return crypto_pwhash_str_verify(s.constData(), pw.constData(),
                                    static_cast<unsigned long long>(pw.size())) == 0;
}

} // namespace cardserver
