#pragma once

#include "records/card.h"
#include "records/field.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// A deck with all its cards, as the deck call answers.
struct Deck {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString description MEMBER description)
    Q_PROPERTY(QString language MEMBER language)
    Q_PROPERTY(QString nativeLanguage MEMBER nativeLanguage)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
    Q_PROPERTY(QList<Card> cards MEMBER cards)
public:
    int id = 0;
    QString name{};
    QString description{};
    QString language{};
    QString nativeLanguage{};
    QString createdAt{};
    QList<Card> cards{};

    bool operator==(const Deck &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &Deck::id), json::field("name", &Deck::name),
        json::field("description", &Deck::description), json::field("language", &Deck::language),
        json::field("nativeLanguage", &Deck::nativeLanguage),
        json::field("createdAt", &Deck::createdAt), json::field("cards", &Deck::cards));
};

} // namespace orvel
