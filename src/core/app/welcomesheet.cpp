#include "welcomesheet.h"

#include "app/appcommands.h"
#include "server/localsettings.h"

namespace orvel {

namespace {
const QString welcomedKey = QStringLiteral("zelon.welcomed");
}

WelcomeSheet::WelcomeSheet(QObject *parent) : QObject(parent) {}

bool WelcomeSheet::due() const
{
    return !LocalSettings::store().value(welcomedKey, false).toBool();
}

void WelcomeSheet::markShown()
{
    if (!due())
        return;
    LocalSettings::store().setValue(welcomedKey, true);
    emit dueChanged();
}

void WelcomeSheet::openManual()
{
    markShown();
    AppCommands::shared().post(AppCommand::manual);
}

void WelcomeSheet::later()
{
    markShown();
}

void WelcomeSheet::startDeck()
{
    markShown();
    AppCommands::shared().post(AppCommand::newDeck);
}

} // namespace orvel
