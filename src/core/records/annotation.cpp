#include "records/annotation.h"

#include "records/rawvalues.h"

namespace orvel {

namespace {
constexpr auto kinds = rawValues<Annotation::Kind>(
    std::pair{Annotation::Kind::Translation, u"translation"},
    std::pair{Annotation::Kind::Gloss, u"gloss"}, std::pair{Annotation::Kind::Note, u"note"},
    std::pair{Annotation::Kind::Caution, u"caution"});
} // namespace

QString Annotation::rawValue(Kind kind)
{
    return kinds.of(kind);
}

std::optional<Annotation::Kind> Annotation::kindFromRawValue(QStringView raw)
{
    return kinds.find(raw);
}

} // namespace orvel
