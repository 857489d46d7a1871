#include "renderchoice.h"

#include <QDir>
#include <QQuickWindow>
#include <QSGRendererInterface>

namespace orvel {

namespace {

bool anyEntry(const QString &folder, const QString &pattern)
{
    return !QDir(folder)
                .entryList({pattern}, QDir::System | QDir::Files | QDir::NoDotAndDotDot)
                .isEmpty();
}

} // namespace

bool RenderChoice::software(const QProcessEnvironment &env, const QString &devices)
{
    if (!env.value(QStringLiteral("QT_QUICK_BACKEND")).isEmpty() ||
        !env.value(QStringLiteral("QSG_RHI_BACKEND")).isEmpty())
        return false; // the user chose; Qt reads these itself
    const QString forced = env.value(QStringLiteral("LIBGL_ALWAYS_SOFTWARE"));
    if (!forced.isEmpty() && forced != QLatin1String("0") &&
        forced.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0)
        return true;
    // Mesa drivers open a render node; NVIDIA's own driver opens /dev/nvidia*.
    const bool renderNode = anyEntry(devices + QStringLiteral("/dri"), QStringLiteral("renderD*"));
    const bool nvidia = anyEntry(devices, QStringLiteral("nvidia[0-9]*"));
    return !renderNode && !nvidia;
}

void RenderChoice::apply()
{
    if (software(QProcessEnvironment::systemEnvironment(), QStringLiteral("/dev")))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace orvel
