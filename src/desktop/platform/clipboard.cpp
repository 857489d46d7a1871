#include "clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace orvel {

Clipboard::Clipboard(QObject *parent) : QObject(parent) {}

QString Clipboard::text() const
{
    return QGuiApplication::clipboard()->text();
}

} // namespace orvel
