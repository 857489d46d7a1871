#include "media/gifsearch.h"

#include "net/outgoingfetch.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QUrl>
#include <QUrlQuery>

namespace cardserver {

namespace {

constexpr int TimeoutMs = 8000;
constexpr qint64 MaxReplyBytes = 4LL * 1024 * 1024;

} // namespace

// GETs a JSON object from `base` + `path` with `query`; nullopt on any failure.
std::optional<QJsonObject> GifSearch::getJson(const QString &base, const QString &path,
                                              const QUrlQuery &query) const
{
    const OutgoingFetch fetcher(m_policy, MaxReplyBytes, TimeoutMs);
    const OutgoingFetch::Result r =
        fetcher.get(base + path + "?" + query.toString(QUrl::FullyEncoded));
    if (r.outcome != OutgoingFetch::Outcome::Fetched || r.status != 200) {
        // The detail holds the whole address, keys included: log only the provider's base.
        qWarning().noquote() << "picture search at" << base << "failed:"
                             << (r.status ? QString::number(r.status) : QStringLiteral("no answer"))
                             << (r.outcome == OutgoingFetch::Outcome::NotAllowed
                                     ? QStringLiteral("(address not allowed)")
                                     : QString());
        return std::nullopt;
    }
    const QJsonDocument doc = QJsonDocument::fromJson(r.body);
    if (!doc.isObject())
        return std::nullopt;
    return doc.object();
}

namespace {

QJsonObject found(const QString &url, const QString &thumb, int width, int height,
                  const QString &title, const QString &author, const QString &licence,
                  const QString &sourceUrl, const QString &origin)
{
    return {{"url", url},         {"thumb", thumb.isEmpty() ? url : thumb},
            {"width", width},     {"height", height},
            {"title", title},     {"author", author},
            {"licence", licence}, {"source_url", sourceUrl},
            {"origin", origin},   {"animated", true}};
}

} // namespace

GifSearch::GifSearch(QString tenorKey, QString giphyKey, QString tenorUrl, QString giphyUrl,
                     AddressPolicy policy)
    : m_policy(std::move(policy)), m_tenorKey(std::move(tenorKey)), m_giphyKey(std::move(giphyKey)),
      m_tenorUrl(std::move(tenorUrl)), m_giphyUrl(std::move(giphyUrl))
{}

GifSearch GifSearch::fromEnvironment(AddressPolicy policy)
{
    const auto env = QProcessEnvironment::systemEnvironment();
    return GifSearch(env.value("TENOR_API_KEY"), env.value("GIPHY_API_KEY"),
                     env.value("ORVEL_TENOR_URL", "https://tenor.googleapis.com"),
                     env.value("ORVEL_GIPHY_URL", "https://api.giphy.com"), std::move(policy));
}

QJsonArray GifSearch::search(const QString &query, int limit) const
{
    QJsonArray out;
    if (query.trimmed().isEmpty())
        return out;
    if (tenor())
        for (const QJsonValue &v : searchTenor(query, limit))
            out.append(v);
    if (giphy())
        for (const QJsonValue &v : searchGiphy(query, limit))
            out.append(v);
    return out;
}

QJsonArray GifSearch::searchTenor(const QString &query, int limit) const
{
    QUrlQuery q;
    q.addQueryItem("q", query);
    q.addQueryItem("key", m_tenorKey);
    q.addQueryItem("limit", QString::number(limit));
    q.addQueryItem("media_filter", "gif,tinygif");
    q.addQueryItem("contentfilter", "medium");
    QJsonArray out;
    const auto reply = getJson(m_tenorUrl, "/v2/search", q);
    if (!reply)
        return out;
    for (const QJsonValue &v : reply->value("results").toArray()) {
        const QJsonObject r = v.toObject();
        const QJsonObject formats = r.value("media_formats").toObject();
        const QJsonObject gif = formats.value("gif").toObject();
        const QJsonArray dims = gif.value("dims").toArray();
        const QString url = gif.value("url").toString();
        if (!url.startsWith("http"))
            continue;
        out.append(found(url, formats.value("tinygif").toObject().value("url").toString(),
                         dims.at(0).toInt(), dims.at(1).toInt(),
                         r.value("content_description").toString(), QString(), "Tenor",
                         r.value("itemurl").toString(), "tenor"));
    }
    return out;
}

QJsonArray GifSearch::searchGiphy(const QString &query, int limit) const
{
    QUrlQuery q;
    q.addQueryItem("api_key", m_giphyKey);
    q.addQueryItem("q", query);
    q.addQueryItem("limit", QString::number(limit));
    q.addQueryItem("rating", "pg");
    QJsonArray out;
    const auto reply = getJson(m_giphyUrl, "/v1/gifs/search", q);
    if (!reply)
        return out;
    for (const QJsonValue &v : reply->value("data").toArray()) {
        const QJsonObject r = v.toObject();
        const QJsonObject images = r.value("images").toObject();
        const QJsonObject original = images.value("original").toObject();
        const QString url = original.value("url").toString();
        if (!url.startsWith("http"))
            continue;
        out.append(found(url, images.value("fixed_width_small").toObject().value("url").toString(),
                         original.value("width").toString().toInt(),
                         original.value("height").toString().toInt(), r.value("title").toString(),
                         r.value("username").toString(), "GIPHY", r.value("url").toString(),
                         "giphy"));
    }
    return out;
}

} // namespace cardserver
