#include "imagetransfer.h"

#include "notes/imagetype.h"
#include "notes/notepictures.h"

#include <QBuffer>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

namespace orvel {

namespace {

// A picture file larger than this is not read: the server would refuse it anyway.
constexpr qint64 largestFile = 20 * 1024 * 1024;

} // namespace

ImageTransfer::ImageTransfer(QObject *parent) : QObject(parent) {}

std::optional<ImageTransfer::Picture> ImageTransfer::fromFiles(const QList<QUrl> &urls)
{
    for (const QUrl &url : urls) {
        if (!url.isLocalFile())
            continue;
        QFile file(url.toLocalFile());
        if (file.size() > largestFile || !file.open(QIODevice::ReadOnly))
            continue;
        QByteArray bytes = file.readAll();
        // The file's own bytes say what it is, whatever its name.
        const QString type = imageTypeOf(bytes);
        if (!type.isEmpty())
            return Picture{std::move(bytes), type};
    }
    return std::nullopt;
}

std::optional<ImageTransfer::Picture> ImageTransfer::fromMime(const QMimeData &data)
{
    // The copying application's own encoding first, byte for byte.
    for (const QString &format : data.formats()) {
        if (!format.startsWith(QLatin1String("image/")))
            continue;
        QByteArray bytes = data.data(format);
        const QString type = imageTypeOf(bytes);
        if (!type.isEmpty())
            return Picture{std::move(bytes), type};
    }
    if (data.hasUrls())
        if (auto picture = fromFiles(data.urls()))
            return picture;
    // Pixels alone (a screenshot tool's copy): written out as PNG.
    if (data.hasImage()) {
        const QImage image = qvariant_cast<QImage>(data.imageData());
        if (!image.isNull()) {
            QByteArray bytes;
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::WriteOnly);
            if (image.save(&buffer, "PNG"))
                return Picture{std::move(bytes), QStringLiteral("image/png")};
        }
    }
    return std::nullopt;
}

bool ImageTransfer::clipboardHasPicture() const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return false;
    if (data->hasImage())
        return true;
    for (const QString &format : data->formats())
        if (format.startsWith(QLatin1String("image/")))
            return true;
    return data->hasUrls() && holdsPicture(data->urls());
}

bool ImageTransfer::pasteInto(NotePictures *pictures, int row) const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!pictures || !data)
        return false;
    const std::optional<Picture> picture = fromMime(*data);
    if (!picture)
        return false;
    pictures->place(row, picture->bytes, picture->type);
    return true;
}

bool ImageTransfer::dropInto(NotePictures *pictures, int row, const QList<QUrl> &urls) const
{
    if (!pictures)
        return false;
    const std::optional<Picture> picture = fromFiles(urls);
    if (!picture)
        return false;
    pictures->place(row, picture->bytes, picture->type);
    return true;
}

bool ImageTransfer::holdsPicture(const QList<QUrl> &urls) const
{
    static const QStringList endings{QStringLiteral(".png"), QStringLiteral(".jpg"),
                                     QStringLiteral(".jpeg"), QStringLiteral(".gif"),
                                     QStringLiteral(".webp")};
    for (const QUrl &url : urls) {
        if (!url.isLocalFile())
            continue;
        const QString path = url.toLocalFile().toLower();
        for (const QString &ending : endings)
            if (path.endsWith(ending))
                return true;
    }
    return false;
}

} // namespace orvel
