#include "clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

namespace orvel {

Clipboard::Clipboard(QObject *parent) : QObject(parent) {}

QString Clipboard::text() const
{
    return QGuiApplication::clipboard()->text();
}

bool Clipboard::hasImage() const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return false;
    if (data->hasImage())
        return true;
    // A file manager's copy of a picture file arrives as a list of file addresses.
    static const QStringList pictures{QStringLiteral(".png"), QStringLiteral(".jpg"),
                                      QStringLiteral(".jpeg"), QStringLiteral(".gif"),
                                      QStringLiteral(".webp")};
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile())
            continue;
        const QString path = url.toLocalFile().toLower();
        for (const QString &ending : pictures)
            if (path.endsWith(ending))
                return true;
    }
    return false;
}

} // namespace orvel
