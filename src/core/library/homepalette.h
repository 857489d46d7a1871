#pragma once

#include "palette/palettecontext.h"

namespace orvel {

class HomeView;

// The home screen's side of the command palette: the context the palette reads (the shelf's
// decks and folders, the open deck, the stored recents, the appearance) and the actions it
// runs, each done through the home screen's own parts, so the palette opens, files, studies and
// writes exactly as the sidebar and the card column do.
class HomePalette {
public:
    static PaletteContext context(HomeView &home);
};

} // namespace orvel
