#pragma once

#include "palette/paletteitem.h"

#include <QList>
#include <QString>

namespace orvel {

// A titled group of rows; a section with no items is never shown.
struct PaletteSection {
    QString title;
    // Shown beside the title ("2 in 1 deck"), or empty.
    QString note;
    QList<PaletteItem> items;
};

} // namespace orvel
