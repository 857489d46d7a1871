#pragma once

#include "records/field.h"
#include "records/foundimage.h"
#include "records/gifsources.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// The reply of an image search: the text it answered, the pictures, and which
// animated-picture providers the server can search (absent when it did not say).
struct ImageSearchReply {
    Q_GADGET
    Q_PROPERTY(QString query MEMBER query)
    Q_PROPERTY(QList<FoundImage> results MEMBER results)
    Q_PROPERTY(std::optional<GifSources> sources MEMBER sources)
public:
    QString query{};
    QList<FoundImage> results{};
    std::optional<GifSources> sources{};

    bool operator==(const ImageSearchReply &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("query", &ImageSearchReply::query),
                        json::field("results", &ImageSearchReply::results),
                        json::field("sources", &ImageSearchReply::sources));
};

} // namespace orvel
