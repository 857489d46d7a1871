#pragma once
#include "net/addresspolicy.h"

#include <optional>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

class QUrlQuery;

namespace cardserver {

// Moving pictures from Tenor and Giphy, each searched only when its key is set
// (TENOR_API_KEY, GIPHY_API_KEY). Results come back as FoundImage records; a provider that
// fails or answers nonsense adds nothing rather than failing the search. The providers'
// addresses can be pointed elsewhere with ORVEL_TENOR_URL and ORVEL_GIPHY_URL; they are fetched
// under the server's address policy like any other outgoing request.
class GifSearch {
public:
    GifSearch(QString tenorKey, QString giphyKey, QString tenorUrl, QString giphyUrl,
              AddressPolicy policy);
    static GifSearch fromEnvironment(AddressPolicy policy);

    bool tenor() const { return !m_tenorKey.isEmpty(); }
    bool giphy() const { return !m_giphyKey.isEmpty(); }

    QJsonArray search(const QString &query, int limit) const;

private:
    QJsonArray searchTenor(const QString &query, int limit) const;
    QJsonArray searchGiphy(const QString &query, int limit) const;
    std::optional<QJsonObject> getJson(const QString &base, const QString &path,
                                       const QUrlQuery &query) const;

    AddressPolicy m_policy;

    QString m_tenorKey;
    QString m_giphyKey;
    QString m_tenorUrl;
    QString m_giphyUrl;
};

} // namespace cardserver
