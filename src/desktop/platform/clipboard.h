#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// What the clipboard holds, for the note lines' paste: its plain text, and whether it holds a
// picture (an image, or a copied image file).
class Clipboard : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit Clipboard(QObject *parent = nullptr);

    Q_INVOKABLE QString text() const;
    Q_INVOKABLE bool hasImage() const;
};

} // namespace orvel
