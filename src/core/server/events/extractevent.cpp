#include "server/events/extractevent.h"

#include "records/json.h"

namespace orvel {

ExtractEvent ExtractEvent::fromJson(const QJsonObject &object)
{
    using namespace Qt::Literals::StringLiterals;
    const QString type = json::get<QString>(object, "type"_L1);
    ExtractEvent event;
    if (type == u"reading") {
        event.kind = Kind::Reading;
        event.characters = json::get<int>(object, "characters"_L1);
    } else if (type == u"word") {
        event.kind = Kind::Word;
        event.word = json::get<Candidate>(object, "word"_L1);
    } else if (type == u"error") {
        event.kind = Kind::Failed;
        event.message = json::get<QString>(object, "error"_L1);
    } else if (type == u"done") {
        event.kind = Kind::Done;
        event.summary = json::getOr<QString>(object, "summary"_L1, {});
        event.words = json::getOr<QList<Candidate>>(object, "words"_L1, {});
        event.skipped = json::getOr<int>(object, "skipped"_L1, 0);
        event.unread = json::getOr<int>(object, "unread"_L1, 0);
    }
    return event;
}

} // namespace orvel
