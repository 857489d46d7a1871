#pragma once
#include <optional>
#include <QByteArray>
#include <QString>

namespace cardserver {

// What a picture's own bytes say it is: PNG, JPEG, GIF or WebP by their magic numbers,
// and its size in pixels read from the header, without decoding the image.
class ImageProbe {
public:
    struct Info {
        QString mime;
        QString extension;
        int width = 0;
        int height = 0;
        bool animated = false;
    };

    // nullopt when the bytes are not one of the four formats or the header is unreadable.
    static std::optional<Info> probe(const QByteArray &bytes);
    static bool acceptedType(const QString &contentType);
};

} // namespace cardserver
