#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A note found by the library search (`id` is the note's id).
struct NoteHit {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(int deckId MEMBER deckId)
    Q_PROPERTY(QString title MEMBER title)
public:
    int id = 0;
    int deckId = 0;
    QString title{};

    bool operator==(const NoteHit &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("id", &NoteHit::id), json::field("deckId", &NoteHit::deckId),
                        json::field("title", &NoteHit::title));
};

} // namespace orvel
