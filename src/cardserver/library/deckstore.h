#pragma once
#include "library/deckinfo.h"

#include <mutex>
#include <optional>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <string>

namespace cardserver {

class Database;

// Decks and folders of one account: the DeckSummary, Deck and Folder records, filing,
// renaming and deleting. Ids of other accounts answer 404.
class DeckStore {
public:
    explicit DeckStore(Database &db) : m_db(db) {}

    DeckInfo info(qint64 userId, qint64 deckId);
    // The DeckSummary list as JSON text, written directly (GET /api/decks is the hot path).
    std::string summariesText(qint64 userId);
    QJsonObject summary(qint64 userId, qint64 deckId);

    QJsonObject create(qint64 userId, const QString &name, const QString &description,
                       const QString &language, const QString &nativeLanguage,
                       std::optional<qint64> folderId);
    // Changes what is given; `moveTo` present (holding nullopt for "no folder") files the deck.
    QJsonObject update(qint64 userId, qint64 deckId, const std::optional<QString> &name,
                       const std::optional<QString> &description,
                       const std::optional<std::optional<qint64>> &moveTo);
    // Deletes the deck with its cards, notes and their lines.
    void remove(qint64 userId, qint64 deckId);
    // The languages of the account's decks.
    QStringList languages(qint64 userId);

    QJsonArray folders(qint64 userId);
    QJsonObject folder(qint64 userId, qint64 folderId);
    QJsonObject createFolder(qint64 userId, const QString &name);
    QJsonObject renameFolder(qint64 userId, qint64 folderId, const QString &name);
    // Deletes the folder; its decks become loose.
    void removeFolder(qint64 userId, qint64 folderId);

private:
    void requireFolder(qint64 userId, qint64 folderId);
    std::string readSummaries(qint64 userId);

    Database &m_db;
    // The last deck list written per account, with the store generation it was read at.
    struct Listing {
        quint64 generation = 0;
        std::string text;
    };
    std::mutex m_listingsLock;
    QHash<qint64, Listing> m_listings;
};

} // namespace cardserver
