#pragma once

#include <optional>
#include <QList>
#include <QString>

namespace orvel {

// The app-wide commands that menus, shortcuts and the --add entry post to whichever screen can
// act on them. Each travels under the name "zelon.command." plus the case's name.
enum class AppCommand {
    newDeck,
    newNote,
    newFolder,
    study,
    findEverywhere,
    quickAdd,
    palette,
    manual
};

// Every command, in declaration order.
QList<AppCommand> allAppCommands();
// "newDeck" for AppCommand::newDeck.
QString appCommandName(AppCommand command);
// "zelon.command.newDeck" for AppCommand::newDeck.
QString appCommandNotification(AppCommand command);
// The command whose name is given ("quickAdd"), or none for any other text.
std::optional<AppCommand> appCommandFromName(const QString &name);

} // namespace orvel
