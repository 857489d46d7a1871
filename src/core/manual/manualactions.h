#pragma once

#include "app/appcommands.h"

#include <optional>
#include <QString>
#include <QStringList>

namespace orvel {

// What a manual page's "try:" buttons can do: each action name stands for a command of the app,
// posted as the menus post it.
class ManualActions {
public:
    // Every action a page may name.
    static QStringList names();
    static std::optional<AppCommand> command(const QString &action);
    // Posts the action's command; false for a name that stands for none.
    static bool run(const QString &action);
};

} // namespace orvel
