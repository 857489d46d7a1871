#pragma once

#include "manual/manualpage.h"
#include "palette/palettecommands.h"
#include "palette/palettecontext.h"
#include "palette/paletteitems.h"
#include "palette/palettesection.h"
#include "records/searchresults.h"

#include <memory>
#include <optional>
#include <QList>
#include <QString>

namespace orvel {

// Turns what is typed into the palette's sections. There is no score: a fixed order of
// sections, commands and manual pages split into those whose first word starts like the query
// and the rest, and inside every list the order it came in. Stateless between calls: each call
// matches the context's decks and folders, the command list and the manual afresh, and takes the
// search reply's cards, notes and lines as the server sent them (their rows are made once, when
// the reply comes).
class PaletteBuilder {
public:
    explicit PaletteBuilder(PaletteContext context, QList<ManualPage> manual = {},
                            std::optional<SearchResults> reply = std::nullopt);
    PaletteBuilder(const PaletteBuilder &) = delete;
    PaletteBuilder &operator=(const PaletteBuilder &) = delete;

    // The list for the query: the starting point when it is blank, the shortcuts for "?".
    QList<PaletteSection> sections(const QString &query) const;
    // The list with nothing typed: what to do in the open deck (or how to start), then the
    // recents that still resolve, at most five.
    QList<PaletteSection> startingPoint() const;
    // Every command the context offers, in order.
    QList<PaletteItem> commands() const;

    // The latest search reply (none before the first, and after the query was cleared). Its
    // rows are made here, once: they are the same whatever is typed.
    void setReply(std::optional<SearchResults> reply);
    const std::optional<SearchResults> &reply() const { return m_reply; }
    const PaletteContext &context() const { return m_items.context(); }

    // The query as it is matched: spaces and tabs trimmed from both ends, line breaks kept.
    static QString trimmed(const QString &query);
    // How many recents the starting point lists.
    static constexpr int recentsShown = 5;

private:
    PaletteItems m_items;
    PaletteCommands m_commands;
    QList<ManualPage> m_manual;
    std::optional<SearchResults> m_reply;
    // The reply's rows, and how many decks its cards come from.
    QList<PaletteItem> m_cards;
    QList<PaletteItem> m_notes;
    QList<PaletteItem> m_lines;
    int m_cardDecks = 0;
};

} // namespace orvel
