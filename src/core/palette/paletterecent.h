#pragma once

#include <optional>
#include <QByteArray>
#include <QList>
#include <QString>
#include <variant>

namespace orvel {

// A deck or a card the learner opened from the palette, for its "Jump back to" section. A card
// keeps a snapshot of its term, translation and kind of word, so its row shows without asking
// the server. The list lives only in the local settings ("zelon.palette.recents"): newest
// first, at most eight, one entry per key.
class PaletteRecent {
public:
    struct Card {
        int deckId = 0;
        int cardId = 0;
        QString term;
        QString translation;
        // The card's kind of word as its raw value ("noun").
        QString kind;

        bool operator==(const Card &) const = default;
    };

    // How many entries the stored list keeps.
    static constexpr int kept = 8;

    static PaletteRecent deck(int deckId);
    static PaletteRecent card(const Card &card);

    bool isDeck() const { return std::holds_alternative<int>(m_value); }
    // The deck opened, or the card's deck.
    int deckId() const;
    // The card's snapshot, or none for a deck.
    std::optional<Card> card() const;
    // "deck-12" or "card-345": two recents with the same key are the same entry.
    QString key() const;

    bool operator==(const PaletteRecent &) const = default;

    // The stored list; absent, unreadable or malformed data reads as an empty list and is left
    // as it is until the next note().
    static QList<PaletteRecent> load();
    // Puts `recent` first, drops the older entry with its key and keeps the first eight.
    static void note(const PaletteRecent &recent);

    // The stored form: a JSON array of one-key objects, {"deck":{"_0":12}} or
    // {"card":{"deckId":12,"cardId":345,"term":…,"translation":…,"kind":…}}, keys in that order.
    static QByteArray encode(const QList<PaletteRecent> &recents);
    // Reads the stored form; none when any part of it is malformed, with the reason in `error`.
    static std::optional<QList<PaletteRecent>> decode(const QByteArray &data,
                                                      QString *error = nullptr);

private:
    explicit PaletteRecent(std::variant<int, Card> value) : m_value(std::move(value)) {}

    std::variant<int, Card> m_value;
};

} // namespace orvel
