#include "launchhandler.h"

#include "app/appcommands.h"
#include "app/launchrequest.h"
#include "app/providersignin.h"
#include "app/serviceprovider.h"

#include <QClipboard>
#include <QDebug>
#include <QGuiApplication>
#include <QWindow>

namespace orvel {

LaunchHandler::LaunchHandler(ServiceProvider &services, QObject *parent)
    : QObject(parent), m_services(services)
{
    connect(&m_services, &ServiceProvider::activationRequested, this, &LaunchHandler::activate);
}

void LaunchHandler::setWindow(QWindow *window)
{
    m_window = window;
}

void LaunchHandler::handleArguments(const QStringList &arguments)
{
    handle(LaunchRequest::parse(arguments), true);
}

void LaunchHandler::handle(const LaunchRequest &request, bool fromAnotherProcess)
{
    for (const QString &argument : request.unknown)
        qWarning().noquote() << "orvel: ignored the argument" << argument;

    if (request.callback) {
        if (!ProviderSignIn::deliver(*request.callback))
            qInfo() << "orvel: a sign-in callback arrived while no sign-in was waiting";
        activate();
    }
    if (request.addWord) {
        const bool added = m_services.addToOrvel(*request.addWord);
        qInfo().noquote() << (added ? "orvel: quick add" : "orvel: nothing to add");
    }
    if (request.addSelection) {
        const QString selection = QGuiApplication::clipboard()->text(QClipboard::Selection);
        const bool added = m_services.addToOrvel(selection);
        qInfo().noquote() << (added ? "orvel: quick add from the selection"
                                    : "orvel: the selection holds no text to add");
    }
    if (request.newDeck) {
        activate();
        AppCommands::shared().post(AppCommand::NewDeck);
    }
    if (request.manualPage) {
        // The manual window comes forward by itself; an unknown page opens the one shown last.
        AppCommands::shared().post(AppCommand::Manual, *request.manualPage);
    }
    if (fromAnotherProcess && !request.carriesWork())
        activate();
}

void LaunchHandler::activate()
{
    if (!m_window)
        return;
    if (m_window->windowStates() & Qt::WindowMinimized)
        m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

} // namespace orvel
