// Which renderer the window gets: the user's explicit choice, a forced software GL, and the
// presence or absence of a graphics device.
#include "platform/renderchoice.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

class TestRenderChoice : public QObject {
    Q_OBJECT

    static void touch(const QString &path)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    static QProcessEnvironment
    env(std::initializer_list<std::pair<const char *, const char *>> vars)
    {
        QProcessEnvironment e;
        for (const auto &[name, value] : vars)
            e.insert(QString::fromLatin1(name), QString::fromLatin1(value));
        return e;
    }

private slots:
    void devicesDecide()
    {
        QTemporaryDir none;
        QVERIFY(RenderChoice::software({}, none.path()));

        QTemporaryDir cardOnly; // a primary node alone is not enough to render off-screen
        touch(cardOnly.path() + "/dri/card0");
        QVERIFY(RenderChoice::software({}, cardOnly.path()));

        QTemporaryDir mesa;
        touch(mesa.path() + "/dri/card0");
        touch(mesa.path() + "/dri/renderD128");
        QVERIFY(!RenderChoice::software({}, mesa.path()));

        QTemporaryDir nvidia;
        touch(nvidia.path() + "/nvidia0");
        touch(nvidia.path() + "/nvidiactl");
        QVERIFY(!RenderChoice::software({}, nvidia.path()));

        QTemporaryDir controlOnly;
        touch(controlOnly.path() + "/nvidiactl");
        QVERIFY(RenderChoice::software({}, controlOnly.path()));
    }

    void environmentWins()
    {
        QTemporaryDir none;
        QTemporaryDir gpu;
        touch(gpu.path() + "/dri/renderD128");

        // The user's own choice of backend is left to Qt, device or not.
        QVERIFY(!RenderChoice::software(env({{"QT_QUICK_BACKEND", "software"}}), none.path()));
        QVERIFY(!RenderChoice::software(env({{"QSG_RHI_BACKEND", "vulkan"}}), none.path()));

        // Forcing software GL means there is nothing to gain from OpenGL.
        QVERIFY(RenderChoice::software(env({{"LIBGL_ALWAYS_SOFTWARE", "1"}}), gpu.path()));
        QVERIFY(RenderChoice::software(env({{"LIBGL_ALWAYS_SOFTWARE", "true"}}), gpu.path()));
        QVERIFY(!RenderChoice::software(env({{"LIBGL_ALWAYS_SOFTWARE", "0"}}), gpu.path()));
        QVERIFY(!RenderChoice::software(env({{"LIBGL_ALWAYS_SOFTWARE", "false"}}), gpu.path()));
        QVERIFY(!RenderChoice::software(env({{"LIBGL_ALWAYS_SOFTWARE", ""}}), gpu.path()));
    }
};

QTEST_GUILESS_MAIN(TestRenderChoice)
#include "tst_renderchoice.moc"
