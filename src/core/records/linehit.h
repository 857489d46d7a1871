#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A note line found by the library search (`id` is the line's id).
struct LineHit {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(int noteId MEMBER noteId)
    Q_PROPERTY(int deckId MEMBER deckId)
    Q_PROPERTY(QString noteTitle MEMBER noteTitle)
    Q_PROPERTY(QString text MEMBER text)
public:
    int id = 0;
    int noteId = 0;
    int deckId = 0;
    QString noteTitle{};
    QString text{};

    bool operator==(const LineHit &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &LineHit::id), json::field("noteId", &LineHit::noteId),
        json::field("deckId", &LineHit::deckId), json::field("noteTitle", &LineHit::noteTitle),
        json::field("text", &LineHit::text));
};

} // namespace orvel
