#include "welcomesheet.h"

#include "app/appcommands.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

namespace orvel {

WelcomeSheet::WelcomeSheet(QObject *parent) : QObject(parent) {}

bool WelcomeSheet::due() const
{
    return !LocalSettings::store().value(settingskeys::welcomed(), false).toBool();
}

void WelcomeSheet::markShown()
{
    if (!due())
        return;
    LocalSettings::store().setValue(settingskeys::welcomed(), true);
    emit dueChanged();
}

void WelcomeSheet::openManual()
{
    markShown();
    AppCommands::shared().post(AppCommand::Manual);
}

void WelcomeSheet::later()
{
    markShown();
}

void WelcomeSheet::startDeck()
{
    markShown();
    AppCommands::shared().post(AppCommand::NewDeck);
}

} // namespace orvel
