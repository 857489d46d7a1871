// Record and event decoding on arbitrary bytes: every input either decodes or throws
// json::DecodeError; nothing else may escape, crash or hang. Whatever decodes must agree with
// the QJsonValue decoders and survive its own encoding.

#include "records/json.h"
#include "records/records.h"
#include "server/events/annotateevent.h"
#include "server/events/batchevent.h"
#include "server/events/cardevent.h"
#include "server/events/extractevent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

template <class T> std::optional<T> decodeText(const QByteArray &bytes)
{
    try {
        return orvel::json::decode<T>(bytes);
    } catch (const orvel::json::DecodeError &) {
        return std::nullopt;
    }
}

template <class T> std::optional<T> decodeTree(const QJsonDocument &document)
{
    try {
        return orvel::json::fromValue<T>(document.isArray() ? QJsonValue(document.array())
                                                            : QJsonValue(document.object()));
    } catch (const orvel::json::DecodeError &) {
        return std::nullopt;
    }
}

template <class T> void tryDecode(const QByteArray &bytes, const QJsonDocument &document)
{
    const std::optional<T> value = decodeText<T>(bytes);
    if (!value)
        return;
    // The one-pass reader and the QJsonValue decoders agree on text that Qt reads too.
    if (!document.isNull()) {
        const std::optional<T> fromTree = decodeTree<T>(document);
        if (fromTree && !(*fromTree == *value))
            __builtin_trap();
    }
    if constexpr (orvel::json::Record<T>) {
        if (!(orvel::json::decode<T>(orvel::json::encode(*value)) == *value))
            __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    tryDecode<orvel::Done>(bytes, document);
    tryDecode<orvel::Deck>(bytes, document);
    tryDecode<orvel::Note>(bytes, document);
    tryDecode<orvel::Preferences>(bytes, document);
    tryDecode<QList<orvel::DeckSummary>>(bytes, document);
    tryDecode<orvel::CardEvent>(bytes, document);
    tryDecode<orvel::BatchEvent>(bytes, document);
    tryDecode<orvel::ExtractEvent>(bytes, document);
    tryDecode<orvel::AnnotateEvent>(bytes, document);
    return 0;
}
