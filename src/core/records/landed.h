#pragma once

#include "records/card.h"
#include "records/field.h"
#include "records/notestub.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// Where the kept parts of a lesson went: the note and the new cards.
struct Landed {
    Q_GADGET
    Q_PROPERTY(NoteStub note MEMBER note)
    Q_PROPERTY(QList<Card> cards MEMBER cards)
public:
    NoteStub note{};
    QList<Card> cards{};

    bool operator==(const Landed &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("note", &Landed::note), json::field("cards", &Landed::cards));
};

} // namespace orvel
