#include "media/mediastore.h"

#include "http/apierror.h"
#include "store/database.h"
#include "store/sql.h"
#include "store/textmatch.h"
#include "text/clock.h"
#include "text/randomtoken.h"
#include "text/textfold.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <stdexcept>

namespace cardserver {

namespace {
const QString Columns = QStringLiteral(
    "m.id, m.file, m.width, m.height, m.origin, m.source_url, m.author, m.licence, m.title, "
    "m.animated");

QJsonObject fromRow(const Sql &q)
{
    return MediaStore::record(q.integer(0), q.text(1), int(q.integer(2)), int(q.integer(3)),
                              {q.text(4), q.text(5), q.text(6), q.text(7), q.text(8)});
}
} // namespace

MediaStore::MediaStore(Database &db, QString dir) : m_db(db), m_dir(std::move(dir))
{
    QDir().mkpath(m_dir);
}

QString MediaStore::url(qint64 id, const QString &file)
{
    return QStringLiteral("/media/%1/%2").arg(id).arg(file);
}

QJsonObject MediaStore::record(qint64 id, const QString &file, int width, int height,
                               const Credit &credit)
{
    return {{"id", id},
            {"url", url(id, file)},
            {"width", width},
            {"height", height},
            {"origin", credit.origin},
            {"source_url", credit.sourceUrl},
            {"author", credit.author},
            {"licence", credit.licence},
            {"title", credit.title}};
}

QJsonObject MediaStore::store(qint64 userId, const QByteArray &bytes, const ImageProbe::Info &info,
                              const Credit &credit)
{
    const QString file = RandomToken::hex(16) + "." + info.extension;
    qint64 id = 0;
    m_db.write([&] {
        Sql q(m_db, "INSERT INTO media (user_id, file, mime, width, height, origin, source_url, "
                    "author, licence, title, title_fold, created_at, animated) VALUES (?, ?, ?, ?, "
                    "?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id");
        id = q.bind(userId)
                 .bind(file)
                 .bind(info.mime)
                 .bind(info.width)
                 .bind(info.height)
                 .bind(credit.origin)
                 .bind(credit.sourceUrl)
                 .bind(credit.author)
                 .bind(credit.licence)
                 .bind(credit.title)
                 .bind(TextFold::fold(credit.title))
                 .bind(Clock::nowText())
                 .bind(info.animated ? 1 : 0)
                 .insertedId();
        if (m_db.engine() == Database::Engine::Postgres) {
            Sql(m_db, "INSERT INTO media_data (media_id, bytes) VALUES (?, ?)")
                .bind(id)
                .bind(bytes)
                .exec();
            return;
        }
        const QString folder = QDir(m_dir).filePath(QString::number(id));
        QDir().mkpath(folder);
        QFile out(QDir(folder).filePath(file));
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            throw std::runtime_error("cannot write a picture under " + m_dir.toStdString());
    });
    return record(id, file, info.width, info.height, credit);
}

QJsonObject MediaStore::media(qint64 userId, qint64 mediaId)
{
    Sql q(m_db, "SELECT " + Columns + " FROM media m WHERE m.id = ? AND m.user_id = ?");
    q.bind(mediaId).bind(userId).exec();
    if (!q.next())
        throw ApiError::notFound(QStringLiteral("That picture does not exist."));
    return fromRow(q);
}

bool MediaStore::owns(qint64 userId, qint64 mediaId)
{
    return Sql(m_db, "SELECT COUNT(*) FROM media WHERE id = ? AND user_id = ?")
               .bind(mediaId)
               .bind(userId)
               .scalar() > 0;
}

std::optional<MediaStore::Picture> MediaStore::picture(qint64 mediaId, const QString &name)
{
    static const QRegularExpression safe(QStringLiteral("^[0-9a-f]{32}\\.(png|jpg|gif|webp)$"));
    if (!safe.match(name).hasMatch())
        return std::nullopt;
    if (m_db.engine() == Database::Engine::Postgres) {
        Sql q(m_db, "SELECT m.mime, d.bytes FROM media m JOIN media_data d ON d.media_id = m.id "
                    "WHERE m.id = ? AND m.file = ?");
        q.bind(mediaId).bind(name).exec();
        if (!q.next())
            return std::nullopt;
        return Picture{q.value(1).toByteArray(), q.text(0)};
    }
    QString mime;
    {
        Sql q(m_db, "SELECT mime FROM media WHERE id = ? AND file = ?");
        q.bind(mediaId).bind(name).exec();
        if (!q.next())
            return std::nullopt;
        mime = q.text(0);
    }
    QFile f(QDir(m_dir).filePath(QString::number(mediaId) + "/" + name));
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    return Picture{f.readAll(), mime};
}

QJsonArray MediaStore::search(qint64 userId, const QString &folded, bool animatedOnly, int limit)
{
    const TextMatch match(m_db.engine(), folded);
    Sql q(m_db, "SELECT " + Columns + " FROM media m WHERE m.user_id = ? AND (? = '' OR " +
                    match.on("m.title_fold") +
                    " OR EXISTS (SELECT 1 FROM note_lines l WHERE l.media_id = m.id AND " +
                    match.on("l.text_fold") +
                    ")) AND (? = 0 OR m.animated = 1) ORDER BY m.id DESC LIMIT ?");
    q.bind(userId)
        .bind(folded)
        .bind(match.value())
        .bind(match.value())
        .bind(animatedOnly ? 1 : 0)
        .bind(limit);
    q.exec();
    QJsonArray out;
    while (q.next()) {
        const QJsonObject m = fromRow(q);
        out.append(QJsonObject{{"url", m.value("url")},
                               {"thumb", m.value("url")},
                               {"width", m.value("width")},
                               {"height", m.value("height")},
                               {"title", m.value("title")},
                               {"author", m.value("author")},
                               {"licence", m.value("licence")},
                               {"source_url", m.value("source_url")},
                               {"origin", QStringLiteral("yours")},
                               {"animated", q.integer(9) != 0}});
    }
    return out;
}

} // namespace cardserver
