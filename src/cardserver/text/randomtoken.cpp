#include "text/randomtoken.h"

#include <sodium.h>

namespace cardserver {

QString RandomToken::hex(int bytes)
{
    QByteArray raw(bytes, Qt::Uninitialized);
    randombytes_buf(raw.data(), static_cast<size_t>(raw.size()));
    return QString::fromLatin1(raw.toHex());
}

QString RandomToken::digest(const QString &secret)
{
    const QByteArray in = secret.toUtf8();
    unsigned char out[32];
    crypto_generichash(out, sizeof out, reinterpret_cast<const unsigned char *>(in.constData()),
                       static_cast<unsigned long long>(in.size()), nullptr, 0);
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(out), sizeof out).toHex());
}

} // namespace cardserver
