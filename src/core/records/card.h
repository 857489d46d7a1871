#pragma once

#include "records/conjugation.h"
#include "records/example.h"
#include "records/field.h"
#include "records/related.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// One card with everything the server wrote for it. Identified by `id`; equality covers every
// field.
struct Card {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(int deckId MEMBER deckId)
    Q_PROPERTY(QString term MEMBER term)
    Q_PROPERTY(QString reading MEMBER reading)
    Q_PROPERTY(QString partOfSpeech MEMBER partOfSpeech)
    Q_PROPERTY(QString gender MEMBER gender)
    Q_PROPERTY(QString translation MEMBER translation)
    Q_PROPERTY(QString definition MEMBER definition)
    Q_PROPERTY(QString usageNotes MEMBER usageNotes)
    Q_PROPERTY(QList<Example> examples MEMBER examples)
    Q_PROPERTY(QList<Related> related MEMBER related)
    Q_PROPERTY(QList<Conjugation> conjugations MEMBER conjugations)
    Q_PROPERTY(int seen MEMBER seen)
    Q_PROPERTY(int known MEMBER known)
    Q_PROPERTY(int streak MEMBER streak)
    Q_PROPERTY(std::optional<QString> lastReviewed MEMBER lastReviewed)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
    Q_PROPERTY(QString article READ article)
public:
    int id = 0;
    int deckId = 0;
    QString term{};
    QString reading{};
    QString partOfSpeech{};
    QString gender{};
    QString translation{};
    QString definition{};
    QString usageNotes{};
    QList<Example> examples{};
    QList<Related> related{};
    QList<Conjugation> conjugations{};
    int seen = 0;
    int known = 0;
    int streak = 0;
    std::optional<QString> lastReviewed{};
    QString createdAt{};

    // The article to show before the term ("der" for Hund), or empty: gender codes (m, f, n,
    // c), abbreviations ("fem."), words of four or more characters and articles the term
    // already starts with give nothing.
    QString article() const;

    bool operator==(const Card &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &Card::id), json::field("deckId", &Card::deckId),
        json::field("term", &Card::term), json::field("reading", &Card::reading),
        json::field("partOfSpeech", &Card::partOfSpeech), json::field("gender", &Card::gender),
        json::field("translation", &Card::translation),
        json::field("definition", &Card::definition), json::field("usageNotes", &Card::usageNotes),
        json::field("examples", &Card::examples), json::field("related", &Card::related),
        json::field("conjugations", &Card::conjugations), json::field("seen", &Card::seen),
        json::field("known", &Card::known), json::field("streak", &Card::streak),
        json::field("lastReviewed", &Card::lastReviewed),
        json::field("createdAt", &Card::createdAt));
};

} // namespace orvel
