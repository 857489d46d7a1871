#pragma once
#include "media/imageprobe.h"

#include <optional>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace cardserver {

class Database;

// Pictures, described in the store. Their bytes are files under <data>/media/<id>/<random
// name>.<ext> on SQLite, and rows of media_data on PostgreSQL, where any of several server
// processes must serve any picture. The file name carries 128 random bits, so the address of a
// picture is its capability: it is served to whoever holds the address, as a browser or an image
// view needs, while every listing and lookup by id stays scoped to its owner.
class MediaStore {
public:
    MediaStore(Database &db, QString dir);

    struct Credit {
        QString origin;
        QString sourceUrl;
        QString author;
        QString licence;
        QString title;
    };

    QJsonObject store(qint64 userId, const QByteArray &bytes, const ImageProbe::Info &info,
                      const Credit &credit);
    QJsonObject media(qint64 userId, qint64 mediaId);
    bool owns(qint64 userId, qint64 mediaId);

    // The picture at /media/<id>/<file>: its bytes and type, if it exists.
    struct Picture {
        QByteArray bytes;
        QString mime;
    };
    std::optional<Picture> picture(qint64 mediaId, const QString &name);

    // The account's own pictures whose title, or a note line carrying them, matches.
    QJsonArray search(qint64 userId, const QString &folded, bool animatedOnly, int limit);

    static QJsonObject record(qint64 id, const QString &file, int width, int height,
                              const Credit &credit);
    static QString url(qint64 id, const QString &file);

private:
    Database &m_db;
    QString m_dir;
};

} // namespace cardserver
