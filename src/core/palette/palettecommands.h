#pragma once

#include "palette/paletteitem.h"
#include "palette/paletteitems.h"

#include <QList>

namespace orvel {

class PaletteQuery;

// The palette's command list, in its fixed order: studying (the open deck, its folder, the other
// decks, a deck picked), filing the open deck, making a folder, a deck or a note, adding from a
// text, the appearance, the settings and the manual. What is offered follows the context (a
// deck open, the deck's folder, decks with cards).
class PaletteCommands {
public:
    explicit PaletteCommands(const PaletteItems &items) : m_items(items) {}

    // The commands whose title matches the query, in list order; every command for an empty
    // query. A command's row is only made once its title matched.
    QList<PaletteItem> matching(const PaletteQuery &query) const;

private:
    const PaletteItems &m_items;
};

} // namespace orvel
