#include "appcommands.h"

#include <QDebug>
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

void AppCommands::post(AppCommand command, const QString &text)
{
    emit posted(command, text);
    emit notified(appCommandNotification(command), text);
}

bool AppCommands::post(const QString &name, const QString &text)
{
    const auto command = appCommandFromName(name);
    if (!command) {
        qWarning().noquote() << "AppCommands: no command named" << name;
        return false;
    }
    post(*command, text);
    return true;
}

} // namespace orvel
