#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// A picture offered by the image search; `url` is its identity.
struct FoundImage {
    Q_GADGET
    Q_PROPERTY(QString url MEMBER url)
    Q_PROPERTY(QString thumb MEMBER thumb)
    Q_PROPERTY(int width MEMBER width)
    Q_PROPERTY(int height MEMBER height)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString author MEMBER author)
    Q_PROPERTY(QString licence MEMBER licence)
    Q_PROPERTY(QString sourceUrl MEMBER sourceUrl)
    Q_PROPERTY(QString origin MEMBER origin)
    Q_PROPERTY(std::optional<bool> animated MEMBER animated)
    Q_PROPERTY(QString credit READ credit)
public:
    QString url{};
    QString thumb{};
    int width = 0;
    int height = 0;
    QString title{};
    QString author{};
    QString licence{};
    QString sourceUrl{};
    QString origin{};
    std::optional<bool> animated{};

    // "author · licence", with "Unknown" for an empty author; the licence is always appended.
    QString credit() const;

    bool operator==(const FoundImage &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("url", &FoundImage::url), json::field("thumb", &FoundImage::thumb),
        json::field("width", &FoundImage::width), json::field("height", &FoundImage::height),
        json::field("title", &FoundImage::title), json::field("author", &FoundImage::author),
        json::field("licence", &FoundImage::licence),
        json::field("sourceUrl", &FoundImage::sourceUrl),
        json::field("origin", &FoundImage::origin), json::field("animated", &FoundImage::animated));
};

} // namespace orvel
