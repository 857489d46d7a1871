#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The clipboard's plain text, for the note lines' paste (pictures: ImageTransfer).
class Clipboard : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit Clipboard(QObject *parent = nullptr);

    Q_INVOKABLE QString text() const;
};

} // namespace orvel
