#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A stored picture. `sourceUrl`, `author`, `licence` and `title` may be empty.
struct Media {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString url MEMBER url)
    Q_PROPERTY(int width MEMBER width)
    Q_PROPERTY(int height MEMBER height)
    Q_PROPERTY(QString origin MEMBER origin)
    Q_PROPERTY(QString sourceUrl MEMBER sourceUrl)
    Q_PROPERTY(QString author MEMBER author)
    Q_PROPERTY(QString licence MEMBER licence)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString credit READ credit)
public:
    int id = 0;
    QString url{};
    int width = 0;
    int height = 0;
    QString origin{};
    QString sourceUrl{};
    QString author{};
    QString licence{};
    QString title{};

    // "author · licence", with "Unknown" for an empty author; the licence is always appended.
    QString credit() const;

    bool operator==(const Media &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &Media::id), json::field("url", &Media::url),
        json::field("width", &Media::width), json::field("height", &Media::height),
        json::field("origin", &Media::origin), json::field("sourceUrl", &Media::sourceUrl),
        json::field("author", &Media::author), json::field("licence", &Media::licence),
        json::field("title", &Media::title));
};

} // namespace orvel
