#pragma once

#include "palette/palettecontext.h"
#include "palette/palettestage.h"

#include <memory>
#include <QList>
#include <QString>

namespace orvel {

// The stages the palette steps into: what to do with a card, a deck or a folder, and the
// pickers (a folder to move a deck to, a deck to write a card in, a deck to study). Each stage
// keeps its rows whose title matches what is typed, in order.
class PaletteStages {
public:
    explicit PaletteStages(std::shared_ptr<const PaletteContext> context);

    PaletteStage card(const DeckSummary &deck, const Card &card) const;
    PaletteStage deck(const DeckSummary &deck) const;
    PaletteStage folder(const Folder &folder) const;
    // "Which folder" for moving `deck`.
    PaletteStage folderPicker(const DeckSummary &deck) const;
    // The decks other than the open one to write a card for `term` in.
    PaletteStage deckPicker(const QString &term) const;
    // "Which deck": every deck with a card, to study.
    PaletteStage studyPicker() const;

    // The sections with only the rows whose title matches the query; empty sections go.
    static QList<PaletteSection> filtered(const QList<PaletteSection> &sections,
                                          const QString &query);
    // The card's title as the palette shows it: its article, if any, then its term.
    static QString cardTitle(const Card &card);
    // The snapshot a card's row notes among the recents.
    static PaletteRecent cardRecent(const Card &card);

private:
    std::shared_ptr<const PaletteContext> m_context;
};

} // namespace orvel
