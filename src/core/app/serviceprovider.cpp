#include "serviceprovider.h"

#include "app/appcommands.h"

namespace orvel {

ServiceProvider::ServiceProvider(AppCommands &commands, QObject *parent)
    : QObject(parent), m_commands(commands)
{}

bool ServiceProvider::addToOrvel(const QString &text)
{
    const QString word = text.trimmed();
    if (word.isEmpty())
        return false;
    emit activationRequested();
    m_commands.post(AppCommand::QuickAdd, word);
    return true;
}

} // namespace orvel
