#include "server/events/batchevent.h"

#include "records/json.h"

namespace orvel {

BatchEvent BatchEvent::fromJson(const QJsonObject &object)
{
    using namespace Qt::Literals::StringLiterals;
    const QString type = json::get<QString>(object, "type"_L1);
    BatchEvent event;
    if (type == u"start") {
        event.kind = Kind::Start;
        event.total = json::get<int>(object, "total"_L1);
    } else if (type == u"word") {
        event.kind = Kind::Word;
        event.index = json::get<int>(object, "index"_L1);
        event.term = json::get<QString>(object, "term"_L1);
    } else if (type == u"card") {
        event.kind = Kind::Card;
        event.index = json::get<int>(object, "index"_L1);
        event.card = json::get<orvel::Card>(object, "card"_L1);
    } else if (type == u"skipped" || type == u"failed") {
        event.kind = type == u"skipped" ? Kind::Skipped : Kind::Failed;
        event.index = json::get<int>(object, "index"_L1);
        event.term = json::get<QString>(object, "term"_L1);
        if (auto reason = json::find<QString>(object, "reason"_L1))
            event.reason = *reason;
        else
            event.reason = json::getOr<QString>(object, "error"_L1, {});
    } else if (type == u"done") {
        event.kind = Kind::Done;
    }
    return event;
}

} // namespace orvel
