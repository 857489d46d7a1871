#pragma once

#include "palette/paletterecent.h"

#include <functional>
#include <optional>
#include <QString>

namespace orvel {

struct PaletteStage;

// What is left after an item ran: the palette dismissed, or still open over the same list.
enum class PaletteOutcome { Close, Stay };

// One row of the palette. It runs an action, opens a further stage, or both; a row with
// neither only shows something (a shortcut of the "?" list). Identifiers are a kind prefix and a
// record id ("deck-12", "cmd-study-12") and are unique within one list.
struct PaletteItem {
    QString id;
    // A symbol name ("play.fill") or a kind word ("deck", "folder", "card").
    QString glyph;
    QString title;
    QString subtitle;
    // Shown right-aligned ("12 cards").
    QString meta;
    // Key text shown as key caps; two keys are separated by two spaces ("1  2").
    QString shortcut;
    // The title is a card's term, set in the serif face.
    bool serif = false;
    bool destructive = false;
    // Runs only at the second ↩ on the same row.
    bool confirm = false;
    std::function<PaletteOutcome()> run;
    std::function<PaletteStage()> stage;
    // The deck or card the row opens: chosen with a closing outcome, it goes first among the
    // recents.
    std::optional<PaletteRecent> recent;

    // A row that runs an action: the common shape of commands and stage rows.
    static PaletteItem action(const QString &id, const QString &glyph, const QString &title,
                              std::function<PaletteOutcome()> run)
    {
        PaletteItem item;
        item.id = id;
        item.glyph = glyph;
        item.title = title;
        item.run = std::move(run);
        return item;
    }
};

} // namespace orvel
