#include "appcommands.h"

#include <QMetaEnum>
#include <QQmlEngine>

namespace orvel {

AppCommands::AppCommands(QObject *parent) : QObject(parent) {}

AppCommands &AppCommands::shared()
{
    static AppCommands commands(nullptr);
    return commands;
}

AppCommands *AppCommands::create(QQmlEngine *, QJSEngine *)
{
    QQmlEngine::setObjectOwnership(&shared(), QQmlEngine::CppOwnership);
    return &shared();
}

QList<AppCommands::Command> AppCommands::all()
{
    const QMetaEnum commands = QMetaEnum::fromType<Command>();
    QList<Command> list;
    for (int i = 0; i < commands.keyCount(); ++i)
        list.append(Command(commands.value(i)));
    return list;
}

QString AppCommands::name(Command command)
{
    QString key = QString::fromLatin1(QMetaEnum::fromType<Command>().valueToKey(int(command)));
    if (!key.isEmpty())
        key[0] = key[0].toLower();
    return key;
}

QString AppCommands::notification(Command command)
{
    return QStringLiteral("zelon.command.") + name(command);
}

std::optional<AppCommands::Command> AppCommands::fromName(const QString &name)
{
    for (const Command command : all())
        if (AppCommands::name(command) == name)
            return command;
    return std::nullopt;
}

void AppCommands::post(Command command, const QString &text)
{
    emit posted(command, text);
}

} // namespace orvel
