// Feeds arbitrary bytes, split at a point chosen by the input, through the event-line reader and
// decodes every payload as each of the four event types. Nothing may crash or hang; undecodable
// events must surface as json::DecodeError only.
#include "records/json.h"
#include "server/eventlinereader.h"
#include "server/events/annotateevent.h"
#include "server/events/batchevent.h"
#include "server/events/cardevent.h"
#include "server/events/extractevent.h"

#include <cstddef>
#include <cstdint>

namespace {
template <class Event> void tryDecode(const QByteArray &payload)
{
    try {
        (void)orvel::json::decode<Event>(payload);
    } catch (const orvel::json::DecodeError &) {
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const qsizetype split = bytes.isEmpty() ? 0 : data[0] % (bytes.size() + 1);
    orvel::EventLineReader reader;
    QList<QByteArray> payloads = reader.feed(bytes.left(split));
    payloads += reader.feed(bytes.mid(split));
    (void)reader.midLine();
    for (const QByteArray &payload : payloads) {
        tryDecode<orvel::CardEvent>(payload);
        tryDecode<orvel::BatchEvent>(payload);
        tryDecode<orvel::ExtractEvent>(payload);
        tryDecode<orvel::AnnotateEvent>(payload);
    }
    return 0;
}
