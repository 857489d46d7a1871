#pragma once

#include <functional>
#include <QUrl>

namespace orvel {

// Opens addresses in the learner's default browser. The core cannot reach the desktop itself, so
// the app installs the opener at start-up (QDesktopServices); tests install one that records.
class Browser {
public:
    using Opener = std::function<bool(const QUrl &)>;

    static void setOpener(Opener opener);
    // False when no opener is installed or it could not open the address.
    static bool open(const QUrl &url);
};

} // namespace orvel
