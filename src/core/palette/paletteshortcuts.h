#pragma once

#include "palette/palettesection.h"

#include <QList>

namespace orvel {

// The keyboard shortcuts the palette lists for the query "?": "Anywhere", "In a note" and
// "Studying". Their rows only show the keys; choosing one does nothing.
class PaletteShortcuts {
public:
    static QList<PaletteSection> sections();
};

} // namespace orvel
