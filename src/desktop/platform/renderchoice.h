#pragma once

#include <QProcessEnvironment>
#include <QString>

namespace orvel {

// Which scene graph draws the window. Without a graphics device (a virtual machine, a remote
// session, Xvfb) OpenGL falls back to Mesa's llvmpipe, which maps some hundred megabytes of LLVM
// and takes a few hundred milliseconds to start, only to rasterise on the processor anyway. Qt
// Quick's own software renderer draws this interface just as well for a fraction of both, so it
// is chosen whenever no device is there to accelerate. What the user set (QT_QUICK_BACKEND,
// QSG_RHI_BACKEND) always wins.
class RenderChoice {
public:
    // True when the software renderer should be used. `devices` is the folder holding the
    // device nodes ("/dev" outside tests).
    static bool software(const QProcessEnvironment &env, const QString &devices);

    // Applies the choice for this process; call before the first window is made.
    static void apply();
};

} // namespace orvel
