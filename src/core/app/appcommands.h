#pragma once

#include <optional>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

// The in-process notice board for app-wide commands: a menu item, a shortcut or the --add entry
// posts a command, the screens that can act on it listen. One instance per process (shared());
// QML reaches it as the singleton AppCommands and compares commands as its enum
// (AppCommands.QuickAdd).
class AppCommands : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    // Each command travels under the name "zelon.command." plus its name with the first letter
    // lowered ("zelon.command.newDeck").
    enum class Command {
        NewDeck,
        NewNote,
        NewFolder,
        Study,
        FindEverywhere,
        QuickAdd,
        Palette,
        Manual,
        Settings,
        AddFromText
    };
    Q_ENUM(Command)

    // Deliberately not default-constructible: Qt 6.4 builds a QML singleton with its default
    // constructor when there is one and ignores create(), which would give QML a board of its
    // own that no C++ poster reaches.
    explicit AppCommands(QObject *parent);

    static AppCommands &shared();
    static AppCommands *create(QQmlEngine *, QJSEngine *);

    // Every command, in declaration order.
    static QList<Command> all();
    // "newDeck" for Command::NewDeck.
    static QString name(Command command);
    // "zelon.command.newDeck" for Command::NewDeck.
    static QString notification(Command command);
    // The command whose name is given ("quickAdd"), or none for any other text.
    static std::optional<Command> fromName(const QString &name);

    Q_INVOKABLE void post(orvel::AppCommands::Command command, const QString &text = {});

signals:
    void posted(orvel::AppCommands::Command command, const QString &text);
};

using AppCommand = AppCommands::Command;

} // namespace orvel
