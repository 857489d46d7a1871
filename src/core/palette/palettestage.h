#pragma once

#include "palette/palettesection.h"

#include <functional>
#include <QList>
#include <QString>

namespace orvel {

// A sub-list the palette steps into with ⇥ ("What to do with it", "Which folder"): its title and
// the sections it shows for what is typed while it is open.
struct PaletteStage {
    QString title;
    std::function<QList<PaletteSection>(const QString &query)> sections;
};

} // namespace orvel
