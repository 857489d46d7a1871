#include "notes/imagetype.h"

namespace orvel {

QString imageTypeOf(const QByteArray &bytes)
{
    if (bytes.startsWith("\x89PNG\r\n\x1a\n"))
        return QStringLiteral("image/png");
    if (bytes.startsWith("\xff\xd8\xff"))
        return QStringLiteral("image/jpeg");
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a"))
        return QStringLiteral("image/gif");
    if (bytes.size() >= 12 && bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return QStringLiteral("image/webp");
    return {};
}

} // namespace orvel
