#include "server/events/annotateevent.h"

#include "records/json.h"

namespace orvel {

AnnotateEvent AnnotateEvent::fromJson(const QJsonObject &object)
{
    using namespace Qt::Literals::StringLiterals;
    const QString type = json::get<QString>(object, "type"_L1);
    AnnotateEvent event;
    if (type == u"start") {
        event.kind = Kind::Start;
        event.total = json::get<int>(object, "total"_L1);
    } else if (type == u"progress") {
        event.kind = Kind::Progress;
        event.done = json::get<int>(object, "done"_L1);
        event.total = json::get<int>(object, "total"_L1);
    } else if (type == u"error") {
        event.kind = Kind::Failed;
        event.message = json::get<QString>(object, "error"_L1);
    } else if (type == u"done") {
        event.kind = Kind::Done;
        event.note = json::get<Note>(object, "note"_L1);
        event.annotated = json::getOr<int>(object, "annotated"_L1, 0);
    }
    return event;
}

} // namespace orvel
