#include "sound/silentoutput.h"

#include <QTimer>

namespace orvel {

void SilentOutput::play(const QString &, double, std::function<void()> done)
{
    // Later, not from inside play(): the caller expects completion after play() returned.
    QTimer::singleShot(0, [done = std::move(done)] { done(); });
}

} // namespace orvel
