#include "manual/manualactions.h"

#include <QList>
#include <utility>

namespace orvel {

namespace {

const QList<std::pair<QString, AppCommand>> &table()
{
    static const QList<std::pair<QString, AppCommand>> actions = {
        {QStringLiteral("new-deck"), AppCommand::NewDeck},
        {QStringLiteral("new-note"), AppCommand::NewNote},
        {QStringLiteral("new-folder"), AppCommand::NewFolder},
        {QStringLiteral("quick-add"), AppCommand::QuickAdd},
        {QStringLiteral("add-from-text"), AppCommand::AddFromText},
        {QStringLiteral("study"), AppCommand::Study},
        {QStringLiteral("palette"), AppCommand::Palette},
        {QStringLiteral("settings"), AppCommand::Settings},
    };
    return actions;
}

} // namespace

QStringList ManualActions::names()
{
    QStringList list;
    for (const auto &action : table())
        list.append(action.first);
    return list;
}

std::optional<AppCommand> ManualActions::command(const QString &action)
{
    for (const auto &[name, command] : table())
        if (name == action)
            return command;
    return std::nullopt;
}

bool ManualActions::run(const QString &action)
{
    const std::optional<AppCommand> found = command(action);
    if (!found)
        return false;
    AppCommands::shared().post(*found);
    return true;
}

} // namespace orvel
