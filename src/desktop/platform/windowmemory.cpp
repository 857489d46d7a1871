#include "windowmemory.h"

#include "server/settingskeys.h"
#include "windowplacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QWindow>

namespace orvel {

WindowMemory::WindowMemory(QWindow *window, QSettings &settings, QObject *parent)
    : QObject(parent), m_window(window), m_settings(settings)
{
    for (auto signal :
         {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged, &QWindow::heightChanged})
        connect(window, signal, this, &WindowMemory::geometryChanged);
    connect(window, &QWindow::windowStateChanged, this,
            [this](Qt::WindowState) { stateChanged(m_window->windowStates()); });
}

void WindowMemory::show()
{
    QList<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens())
        areas.append(screen->availableGeometry());
    const QRect available = m_window->screen()->availableGeometry();
    const QRect rect = WindowPlacement::remembered(
                           m_settings.value(settingskeys::windowGeometry()).toRect(), areas)
                           .value_or(WindowPlacement::fresh(m_window->size(), available));
    const QScreen *target = QGuiApplication::screenAt(rect.center());
    m_window->setMinimumSize(WindowPlacement::minimum(
        m_window->minimumSize(), target ? target->availableGeometry() : available));
    m_window->setGeometry(rect);
    m_normal = rect;
    m_previous = rect;
    if (m_settings.value(settingskeys::windowMaximised(), false).toBool())
        m_window->showMaximized();
    else
        m_window->show();
}

void WindowMemory::save()
{
    if (!m_window || m_normal.isNull())
        return;
    m_settings.setValue(settingskeys::windowGeometry(), m_normal);
    m_settings.setValue(settingskeys::windowMaximised(),
                        bool(m_window->windowStates() & Qt::WindowMaximized));
}

void WindowMemory::geometryChanged()
{
    const QRect rect = m_window->geometry();
    if (m_normal.isNull() || m_window->windowStates() != Qt::WindowNoState || rect == m_normal)
        return;
    m_previous = m_normal;
    m_normal = rect;
}

void WindowMemory::stateChanged(Qt::WindowStates states)
{
    // The desktop may send the maximised size before saying the window is maximised; the place
    // before that is the one to return to.
    if (states & (Qt::WindowMaximized | Qt::WindowFullScreen) && m_window->geometry() == m_normal)
        m_normal = m_previous;
}

} // namespace orvel
