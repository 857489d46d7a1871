#pragma once

#include "manual/manualpage.h"
#include "palette/palettecontext.h"
#include "palette/paletteitem.h"
#include "palette/palettestages.h"
#include "records/linehit.h"
#include "records/notehit.h"

#include <memory>
#include <optional>
#include <QHash>
#include <QList>
#include <QString>

namespace orvel {

// The palette's rows for the learner's things: decks, folders, found cards, notes and lines,
// manual pages, the recents that still resolve, and the rows that write a card for the query.
class PaletteItems {
public:
    explicit PaletteItems(std::shared_ptr<const PaletteContext> context);

    const PaletteContext &context() const { return *m_context; }
    const std::shared_ptr<const PaletteContext> &sharedContext() const { return m_context; }
    const PaletteStages &stages() const { return m_stages; }
    // The context's deck with this id.
    std::optional<DeckSummary> deckById(int id) const;

    PaletteItem deck(const DeckSummary &deck) const;
    PaletteItem folder(const Folder &folder) const;
    PaletteItem card(const Card &card) const;
    PaletteItem note(const NoteHit &note) const;
    PaletteItem line(const LineHit &line) const;
    PaletteItem manualPage(const ManualPage &page) const;
    // The row of a recent, or none when its deck is gone (or, for a deck, is the open one).
    std::optional<PaletteItem> recent(const PaletteRecent &recent) const;
    // The rows that write a card for the query (2 to 200 characters; none otherwise).
    QList<PaletteItem> writing(const QString &query) const;

    // How many characters (grapheme clusters) a text holds.
    static qsizetype characters(const QString &text);

private:
    // A deck the context does not list (a found card's deck that left the shelf): its id only.
    DeckSummary deckOrStub(int id) const;

    std::shared_ptr<const PaletteContext> m_context;
    PaletteStages m_stages;
    QHash<int, qsizetype> m_deckIndex;
};

} // namespace orvel
