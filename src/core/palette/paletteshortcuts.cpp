#include "palette/paletteshortcuts.h"

#include "palette/palettekeys.h"

namespace orvel {

namespace {

PaletteItem shortcutRow(const QString &title, const QString &keys)
{
    PaletteItem item;
    item.id = QStringLiteral("sc-") + title;
    item.title = title;
    item.shortcut = keys;
    return item;
}

} // namespace

QList<PaletteSection> PaletteShortcuts::sections()
{
    PaletteItem find = shortcutRow(QStringLiteral("Find or do anything"), palettekeys::palette());
    find.glyph = QStringLiteral("keyboard");
    return {
        {QStringLiteral("Anywhere"),
         {},
         {find, shortcutRow(QStringLiteral("New Deck"), palettekeys::newDeck()),
          shortcutRow(QStringLiteral("New Note"), palettekeys::newNote()),
          shortcutRow(QStringLiteral("New Folder"), palettekeys::newFolder()),
          shortcutRow(QStringLiteral("Study the deck"), palettekeys::study()),
          shortcutRow(QStringLiteral("Go to the first nine decks"), palettekeys::firstNineDecks()),
          shortcutRow(QStringLiteral("This manual"), palettekeys::manual()),
          shortcutRow(QStringLiteral("Settings"), palettekeys::settings())}},
        {QStringLiteral("In a note"),
         {},
         {shortcutRow(QStringLiteral("Ask for the margin"), palettekeys::margin()),
          shortcutRow(QStringLiteral("Delete the line"), palettekeys::deleteLine()),
          shortcutRow(QStringLiteral("Slash commands"), QStringLiteral("/"))}},
        {QStringLiteral("Studying"),
         {},
         {shortcutRow(QStringLiteral("Turn the card over"), QStringLiteral("Space")),
          shortcutRow(QStringLiteral("Didn’t know it / knew it"), QStringLiteral("1  2")),
          shortcutRow(QStringLiteral("Back a card / on a card"), QStringLiteral("←  →")),
          shortcutRow(QStringLiteral("Show more of the card"), QStringLiteral("E"))}},
    };
}

} // namespace orvel
