#pragma once
#include <QJsonArray>
#include <QString>

namespace cardserver {

// Moving pictures from Tenor and Giphy, each searched only when its key is set
// (TENOR_API_KEY, GIPHY_API_KEY). Results come back as FoundImage records; a provider that
// fails or answers nonsense adds nothing rather than failing the search. The providers'
// addresses can be pointed elsewhere with ORVEL_TENOR_URL and ORVEL_GIPHY_URL.
class GifSearch {
public:
    GifSearch(QString tenorKey, QString giphyKey, QString tenorUrl, QString giphyUrl);
    static GifSearch fromEnvironment();

    bool tenor() const { return !m_tenorKey.isEmpty(); }
    bool giphy() const { return !m_giphyKey.isEmpty(); }

    QJsonArray search(const QString &query, int limit) const;

private:
    QJsonArray searchTenor(const QString &query, int limit) const;
    QJsonArray searchGiphy(const QString &query, int limit) const;

    QString m_tenorKey;
    QString m_giphyKey;
    QString m_tenorUrl;
    QString m_giphyUrl;
};

} // namespace cardserver
