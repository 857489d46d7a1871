#include "browser.h"

#include <QDebug>

namespace orvel {

namespace {
Browser::Opener &installed()
{
    static Browser::Opener opener;
    return opener;
}
} // namespace

void Browser::setOpener(Opener opener)
{
    installed() = std::move(opener);
}

bool Browser::open(const QUrl &url)
{
    if (!installed()) {
        qWarning().noquote() << "Browser: no way to open" << url.toString();
        return false;
    }
    return installed()(url);
}

} // namespace orvel
