#pragma once
#include <optional>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <string>

namespace cardserver {

class Database;

// Cards as stored and as sent (the Card record, snake_case keys). Every read is scoped to
// the signed-in account through the deck's owner; another account's card is "not found".
class CardStore {
public:
    explicit CardStore(Database &db) : m_db(db) {}

    QJsonObject card(qint64 userId, qint64 cardId);
    // The deck's cards, newest first, as JSON text (decks may hold thousands of cards).
    std::string ofDeckText(qint64 deckId);
    // The card of the deck whose term equals `term` ignoring case, if any.
    std::optional<QJsonObject> withTerm(qint64 deckId, const QString &term);

    // Stores a written card (any missing field is stored empty) and returns the Card.
    QJsonObject insert(qint64 deckId, const QJsonObject &written);
    // Replaces what the writer wrote, keeping the id and the study counts.
    QJsonObject rewrite(qint64 userId, qint64 cardId, const QJsonObject &written);
    // Records an answer: seen + 1, known + 1 when known, streak + 1 or back to 0.
    QJsonObject review(qint64 userId, qint64 cardId, bool known);
    void remove(qint64 userId, qint64 cardId);
    // The deck a card is in (404 when the card is not the account's).
    qint64 deckOf(qint64 userId, qint64 cardId);

    // Case- and accent-insensitive search over term, translation and reading.
    QJsonArray search(qint64 userId, const QString &foldedQuery, int limit);

    // A written card with every field present and of the right type.
    static QJsonObject normalised(const QJsonObject &written);

private:
    Database &m_db;
};

} // namespace cardserver
