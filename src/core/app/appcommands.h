#pragma once

#include "app/appcommand.h"

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The in-process notice board for app-wide commands: a menu item posts a command, the screens
// that can act on it listen. One instance per process (shared()); QML reaches it as the
// singleton AppCommands.
class AppCommands : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    // Deliberately not default-constructible: Qt 6.4 builds a QML singleton with its default
    // constructor when there is one and ignores create(), which would give QML a board of its
    // own that no C++ poster reaches.
    explicit AppCommands(QObject *parent);

    static AppCommands &shared();
    static AppCommands *create(QQmlEngine *, QJSEngine *);

    void post(AppCommand command, const QString &text = {});
    // QML's way in: the command's name ("newDeck"). An unknown name is a programming fault and
    // is reported on the console; nothing is posted.
    Q_INVOKABLE bool post(const QString &name, const QString &text = {});

signals:
    void posted(orvel::AppCommand command, const QString &text);
    // The same post, by its notification name ("zelon.command.quickAdd"), for QML listeners.
    void notified(const QString &notification, const QString &text);
};

} // namespace orvel
