#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The display face (Newsreader Medium) for titles and card terms, registered from the app's
// resources once per process. QML reads the family name from the singleton Brand.
class Brand : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString family READ family CONSTANT)

public:
    explicit Brand(QObject *parent = nullptr);

    // Registers the face on first use and returns its family name; the desktop's serif family
    // when the face is missing or could not be registered (both reported on the console).
    static QString family();

    // Where the face is looked for.
    static QString resourcePath();
};

} // namespace orvel
