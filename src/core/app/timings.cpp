#include "timings.h"

#include <algorithm>

namespace orvel {

namespace {
std::chrono::milliseconds scale(std::chrono::milliseconds duration, double factor)
{
    const auto scaled = static_cast<long long>(static_cast<double>(duration.count()) * factor);
    return std::chrono::milliseconds{std::max(1LL, scaled)};
}
} // namespace

Timings Timings::scaled(double factor) const
{
    return Timings{
        scale(save, factor),      scale(undoSnapshot, factor),  scale(marginAsYouGo, factor),
        scale(cardUndo, factor),  scale(pictureSearch, factor), scale(journalRetry, factor),
        scale(draftKeep, factor), scale(saveRetry, factor),     scale(paletteSearch, factor)};
}

Timings &Timings::shared()
{
    static Timings timings;
    return timings;
}

} // namespace orvel
