#pragma once

#include "records/card.h"
#include "records/field.h"
#include "records/linehit.h"
#include "records/notehit.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// The reply of the library search.
struct SearchResults {
    Q_GADGET
    Q_PROPERTY(QList<Card> cards MEMBER cards)
    Q_PROPERTY(QList<NoteHit> notes MEMBER notes)
    Q_PROPERTY(QList<LineHit> lines MEMBER lines)
public:
    QList<Card> cards{};
    QList<NoteHit> notes{};
    QList<LineHit> lines{};

    bool operator==(const SearchResults &) const = default;

    static constexpr auto fields = std::make_tuple(json::field("cards", &SearchResults::cards),
                                                   json::field("notes", &SearchResults::notes),
                                                   json::field("lines", &SearchResults::lines));
};

} // namespace orvel
