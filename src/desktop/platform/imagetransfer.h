#pragma once

#include "notes/notepictures.h"

#include <optional>
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QUrl>

class QMimeData;

namespace orvel {

// Pictures that reach a note line from the desktop: pasted from the clipboard (an image another
// application copied, or a picture file a file manager copied) or dropped as files. The bytes go
// to the line as they are, with their own type; only an image that comes as pixels alone is
// written out as PNG.
class ImageTransfer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    struct Picture {
        QByteArray bytes;
        QString type;
    };

    explicit ImageTransfer(QObject *parent = nullptr);

    // What a clipboard or a drop holds as a picture, if anything.
    static std::optional<Picture> fromMime(const QMimeData &data);
    // The first of these addresses that is a local PNG, JPEG, GIF or WebP file.
    static std::optional<Picture> fromFiles(const QList<QUrl> &urls);

    // Whether the clipboard holds a picture.
    Q_INVOKABLE bool clipboardHasPicture() const;
    // Pastes the clipboard's picture onto a line; false when it holds none.
    Q_INVOKABLE bool pasteInto(orvel::NotePictures *pictures, int row) const;
    // Places the first picture file of a drop onto a line; false when there is none.
    Q_INVOKABLE bool dropInto(orvel::NotePictures *pictures, int row,
                              const QList<QUrl> &urls) const;
    // Whether a drop's addresses hold a picture file (to accept it while it hovers).
    Q_INVOKABLE bool holdsPicture(const QList<QUrl> &urls) const;
};

} // namespace orvel
