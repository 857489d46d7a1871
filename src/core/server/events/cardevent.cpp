#include "server/events/cardevent.h"

#include "records/json.h"

namespace orvel {

CardEvent CardEvent::fromJson(const QJsonObject &object)
{
    using namespace Qt::Literals::StringLiterals;
    const QString type = json::get<QString>(object, "type"_L1);
    CardEvent event;
    if (type == u"progress") {
        event.field = json::get<QString>(object, "field"_L1);
        // A value wins over a count; the count is read only when there is no value.
        if (auto value = json::find<QString>(object, "value"_L1)) {
            event.kind = Kind::Text;
            event.value = *value;
        } else if (auto count = json::find<int>(object, "count"_L1)) {
            event.kind = Kind::Count;
            event.count = *count;
        } else {
            return CardEvent{};
        }
    } else if (type == u"card") {
        event.kind = Kind::Card;
        event.card = json::get<orvel::Card>(object, "card"_L1);
    } else if (type == u"error") {
        event.kind = Kind::Failed;
        event.message = json::get<QString>(object, "error"_L1);
    }
    return event;
}

} // namespace orvel
