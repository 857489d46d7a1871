#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QWindow;

namespace orvel {

class ServiceProvider;
struct LaunchRequest;

// Carries out what a launch asked for inside the running instance: the first launch's own
// arguments and those that later `orvel` processes hand over. An orvel:// address completes the
// waiting provider sign-in; --add and --add-selection go to the services entry; a bare second
// launch brings the window forward.
class LaunchHandler : public QObject {
    Q_OBJECT

public:
    LaunchHandler(ServiceProvider &services, QObject *parent = nullptr);

    void setWindow(QWindow *window);
    void handle(const LaunchRequest &request, bool fromAnotherProcess);
    void handleArguments(const QStringList &arguments);

    // Brings the main window to the front.
    void activate();

private:
    ServiceProvider &m_services;
    QPointer<QWindow> m_window;
};

} // namespace orvel
