#include "manual/manualnavigator.h"

#include "manual/manualbook.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <QQmlEngine>

namespace orvel {

ManualNavigator::ManualNavigator(QObject *parent) : QObject(parent)
{
    const QString stored = LocalSettings::store().value(settingskeys::manualPage()).toString();
    m_current = ManualBook::page(stored) ? stored : ManualBook::firstPage();
}

ManualNavigator &ManualNavigator::shared()
{
    static ManualNavigator navigator(nullptr);
    return navigator;
}

ManualNavigator *ManualNavigator::create(QQmlEngine *, QJSEngine *)
{
    QQmlEngine::setObjectOwnership(&shared(), QQmlEngine::CppOwnership);
    return &shared();
}

void ManualNavigator::go(const QString &id)
{
    if (id == m_current || !ManualBook::page(id))
        return;
    m_back.append(m_current);
    m_forward.clear();
    setCurrent(id);
}

void ManualNavigator::goBack()
{
    if (m_back.isEmpty())
        return;
    m_forward.append(m_current);
    setCurrent(m_back.takeLast());
}

void ManualNavigator::goForward()
{
    if (m_forward.isEmpty())
        return;
    m_back.append(m_current);
    setCurrent(m_forward.takeLast());
}

void ManualNavigator::setCurrent(const QString &id)
{
    m_current = id;
    LocalSettings::store().setValue(settingskeys::manualPage(), id);
    emit currentChanged();
}

} // namespace orvel
