#include "media/imageprobe.h"

namespace cardserver {

namespace {

quint32 be32(const QByteArray &b, qsizetype at)
{
    const auto *p = reinterpret_cast<const unsigned char *>(b.constData() + at);
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | p[3];
}

quint32 be16(const QByteArray &b, qsizetype at)
{
    const auto *p = reinterpret_cast<const unsigned char *>(b.constData() + at);
    return (quint32(p[0]) << 8) | p[1];
}

quint32 le16(const QByteArray &b, qsizetype at)
{
    const auto *p = reinterpret_cast<const unsigned char *>(b.constData() + at);
    return quint32(p[0]) | (quint32(p[1]) << 8);
}

quint32 le24(const QByteArray &b, qsizetype at)
{
    const auto *p = reinterpret_cast<const unsigned char *>(b.constData() + at);
    return quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16);
}

std::optional<ImageProbe::Info> png(const QByteArray &b)
{
    if (b.size() < 24 || !b.startsWith("\x89PNG\r\n\x1a\n") || b.mid(12, 4) != "IHDR")
        return std::nullopt;
    ImageProbe::Info i{"image/png", "png", int(be32(b, 16)), int(be32(b, 20)), false};
    i.animated = b.indexOf("acTL") > 0 && b.indexOf("acTL") < b.indexOf("IDAT");
    return i;
}

std::optional<ImageProbe::Info> gif(const QByteArray &b)
{
    if (b.size() < 10 || !(b.startsWith("GIF87a") || b.startsWith("GIF89a")))
        return std::nullopt;
    ImageProbe::Info i{"image/gif", "gif", int(le16(b, 6)), int(le16(b, 8)), false};
    // More than one image descriptor after a graphic control block: an animation.
    i.animated = b.count("\x21\xF9\x04") > 1;
    return i;
}

std::optional<ImageProbe::Info> jpeg(const QByteArray &b)
{
    if (b.size() < 4 || quint8(b[0]) != 0xFF || quint8(b[1]) != 0xD8)
        return std::nullopt;
    qsizetype at = 2;
    while (at + 9 < b.size()) {
        if (quint8(b[at]) != 0xFF)
            return std::nullopt;
        const quint8 marker = quint8(b[at + 1]);
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += 2;
            continue;
        }
        const quint32 length = be16(b, at + 2);
        // Start-of-frame markers (all but DHT C4, JPG C8 and DAC CC) carry the size.
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC)
            return ImageProbe::Info{"image/jpeg", "jpg", int(be16(b, at + 7)), int(be16(b, at + 5)),
                                    false};
        if (length < 2)
            return std::nullopt;
        at += 2 + length;
    }
    return std::nullopt;
}

std::optional<ImageProbe::Info> webp(const QByteArray &b)
{
    if (b.size() < 30 || !b.startsWith("RIFF") || b.mid(8, 4) != "WEBP")
        return std::nullopt;
    const QByteArray chunk = b.mid(12, 4);
    ImageProbe::Info i{"image/webp", "webp", 0, 0, false};
    if (chunk == "VP8 ") {
        if (quint8(b[23]) != 0x9d || quint8(b[24]) != 0x01 || quint8(b[25]) != 0x2a)
            return std::nullopt;
        i.width = int(le16(b, 26) & 0x3FFF);
        i.height = int(le16(b, 28) & 0x3FFF);
    } else if (chunk == "VP8L") {
        if (quint8(b[20]) != 0x2f)
            return std::nullopt;
        const auto *p = reinterpret_cast<const unsigned char *>(b.constData() + 21);
        const quint32 bits =
            quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16) | (quint32(p[3]) << 24);
        i.width = int((bits & 0x3FFF) + 1);
        i.height = int(((bits >> 14) & 0x3FFF) + 1);
    } else if (chunk == "VP8X") {
        i.animated = (quint8(b[20]) & 0x02) != 0;
        i.width = int(le24(b, 24) + 1);
        i.height = int(le24(b, 27) + 1);
    } else {
        return std::nullopt;
    }
    return i;
}

} // namespace

std::optional<ImageProbe::Info> ImageProbe::probe(const QByteArray &bytes)
{
    std::optional<Info> info;
    for (auto probe : {png, jpeg, gif, webp})
        if ((info = probe(bytes)))
            break;
    if (info && (info->width <= 0 || info->height <= 0))
        return std::nullopt;
    return info;
}

bool ImageProbe::acceptedType(const QString &contentType)
{
    const QString type = contentType.section(';', 0, 0).trimmed().toLower();
    return type == QLatin1String("image/png") || type == QLatin1String("image/jpeg") ||
           type == QLatin1String("image/jpg") || type == QLatin1String("image/gif") ||
           type == QLatin1String("image/webp");
}

} // namespace cardserver
