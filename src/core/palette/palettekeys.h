#pragma once

#include <QString>

namespace orvel {

// The app's keys as the palette shows them, named the way the Linux desktop names them
// (QKeySequence's native text), so a row's key caps read like the menus'.
namespace palettekeys {

inline QString palette()
{
    return QStringLiteral("Ctrl+K");
}
inline QString newDeck()
{
    return QStringLiteral("Ctrl+N");
}
inline QString newNote()
{
    return QStringLiteral("Ctrl+Shift+N");
}
inline QString newFolder()
{
    return QStringLiteral("Ctrl+Alt+N");
}
inline QString study()
{
    return QStringLiteral("Ctrl+R");
}
inline QString firstNineDecks()
{
    return QStringLiteral("Ctrl+1 … Ctrl+9");
}
inline QString manual()
{
    return QStringLiteral("Ctrl+?");
}
inline QString settings()
{
    return QStringLiteral("Ctrl+,");
}
// The note editor's keys: the margin of the pending lines, and deleting a line.
inline QString margin()
{
    return QStringLiteral("Ctrl+Return");
}
inline QString deleteLine()
{
    return QStringLiteral("Ctrl+Backspace");
}

// The key caps of the palette's own footer.
inline QString enterCap()
{
    return QStringLiteral("↩");
}
inline QString tabCap()
{
    return QStringLiteral("Tab");
}
inline QString backspaceCap()
{
    return QStringLiteral("⌫");
}
inline QString escapeCap()
{
    return QStringLiteral("Esc");
}

} // namespace palettekeys

} // namespace orvel
