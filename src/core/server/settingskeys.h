#pragma once

#include <QString>

// Every key the app keeps in its local settings file, and the type a dragged deck carries: each
// defined once, here, so no two places can spell one differently.
namespace orvel::settingskeys {

// "system", "light" or "dark".
inline QString appearance()
{
    return QStringLiteral("zelon.appearance");
}
// The chosen skin's identifier.
inline QString skin()
{
    return QStringLiteral("zelon.skin");
}
// Whether the welcome sheet has been put away.
inline QString welcomed()
{
    return QStringLiteral("zelon.welcomed");
}
// The ids of the folders shut in the sidebar.
inline QString shutFolders()
{
    return QStringLiteral("zelon.sidebar.shutFolders");
}
// The server's address, when neither the command line nor the environment names one.
inline QString host()
{
    return QStringLiteral("ZELON_HOST");
}
// The main window's normal size and place, and whether it was maximised.
inline QString windowGeometry()
{
    return QStringLiteral("zelon.window.geometry");
}
inline QString windowMaximised()
{
    return QStringLiteral("zelon.window.maximised");
}
// Whether the list of notes is shown beside the note editor (true unless hidden).
inline QString notesRail()
{
    return QStringLiteral("zelon.notes.rail");
}
// Which page of a deck is shown: "cards" (the default) or "notes". One choice for every deck:
// a learner who is writing notes moves from deck to deck and stays with the notes.
inline QString deckPage()
{
    return QStringLiteral("zelon.deck.page");
}
// The manual page shown last.
inline QString manualPage()
{
    return QStringLiteral("zelon.manual.page");
}

// Whether the daily reminder is wanted (off when absent).
inline QString reminderOn()
{
    return QStringLiteral("zelon.reminder.on");
}
// The daily reminder's hour, local time, minute 0 (19 when absent or not an integer).
inline QString reminderHour()
{
    return QStringLiteral("zelon.reminder.hour");
}

// The decks and cards last opened from the palette: a JSON list, newest first, at most eight.
inline QString paletteRecents()
{
    return QStringLiteral("zelon.palette.recents");
}

// The drag-and-drop type of a dragged deck row (its data is the deck's id).
inline QString deckDragType()
{
    return QStringLiteral("dev.zelon.app.deck");
}

} // namespace orvel::settingskeys
