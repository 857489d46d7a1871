#include "records/noteline.h"

#include "records/rawvalues.h"

namespace orvel {

namespace {
constexpr auto states = rawValues<NoteLine::State>(
    std::pair{NoteLine::State::Annotated, u"annotated"},
    std::pair{NoteLine::State::Stale, u"stale"}, std::pair{NoteLine::State::Blank, u"blank"});
} // namespace

QString NoteLine::rawValue(State state)
{
    return states.of(state);
}

std::optional<NoteLine::State> NoteLine::stateFromRawValue(QStringView raw)
{
    return states.find(raw);
}

} // namespace orvel
