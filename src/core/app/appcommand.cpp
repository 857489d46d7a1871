#include "appcommand.h"

namespace orvel {

QList<AppCommand> allAppCommands()
{
    return {AppCommand::newDeck, AppCommand::newNote,        AppCommand::newFolder,
            AppCommand::study,   AppCommand::findEverywhere, AppCommand::quickAdd,
            AppCommand::palette, AppCommand::manual};
}

QString appCommandName(AppCommand command)
{
    switch (command) {
    case AppCommand::newDeck:
        return QStringLiteral("newDeck");
    case AppCommand::newNote:
        return QStringLiteral("newNote");
    case AppCommand::newFolder:
        return QStringLiteral("newFolder");
    case AppCommand::study:
        return QStringLiteral("study");
    case AppCommand::findEverywhere:
        return QStringLiteral("findEverywhere");
    case AppCommand::quickAdd:
        return QStringLiteral("quickAdd");
    case AppCommand::palette:
        return QStringLiteral("palette");
    case AppCommand::manual:
        return QStringLiteral("manual");
    }
    return {};
}

QString appCommandNotification(AppCommand command)
{
    return QStringLiteral("zelon.command.") + appCommandName(command);
}

std::optional<AppCommand> appCommandFromName(const QString &name)
{
    for (const AppCommand command : allAppCommands())
        if (appCommandName(command) == name)
            return command;
    return std::nullopt;
}

} // namespace orvel
