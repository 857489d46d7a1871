#pragma once

#include <QString>

namespace orvel::writingtexts {

// The wording of the composer, the writing view, quick add and the lesson sheet, each text in
// one place. Keys are named as the desktop names them (Return, Ctrl+Return).

// The deck's composer.
inline QString placeholder()
{
    return QStringLiteral("word or topic…");
}
inline QString addHelp()
{
    return QStringLiteral("Add this as a card (Return)");
}
inline QString teachHelp()
{
    return QStringLiteral(
        "Teach me this (Ctrl+Return) — one idea, offered, and you keep what you want");
}
inline QString fromText()
{
    return QStringLiteral("or add from text…");
}
inline QString fromTextHelp()
{
    return QStringLiteral("Paste a page and take the words out of it");
}
inline QString askingFor(const QString &topic)
{
    return QStringLiteral("Writing a byte on “") + topic + QStringLiteral("”");
}

// The writing view.
inline QString writingHeading()
{
    return QStringLiteral("WRITING");
}
inline QString notWrittenHeading()
{
    return QStringLiteral("NOT WRITTEN");
}
inline QString writingFooter()
{
    return QStringLiteral("This takes a few seconds. It keeps going if you close this.");
}
inline QString sentences(int count)
{
    return count == 1 ? QStringLiteral("1 sentence")
                      : QString::number(count) + QStringLiteral(" sentences");
}
inline QString tenses(int count)
{
    return count == 1 ? QStringLiteral("1 tense")
                      : QString::number(count) + QStringLiteral(" tenses");
}

// Quick add.
inline QString quickAddTitle()
{
    return QStringLiteral("Add to a deck");
}
inline QString deckLabel()
{
    return QStringLiteral("Deck");
}
inline QString pickOne()
{
    return QStringLiteral("Pick one");
}
inline QString cancel()
{
    return QStringLiteral("Cancel");
}
inline QString writeTheCard()
{
    return QStringLiteral("Write the card");
}

// The short-lesson sheet.
inline QString byteHeading()
{
    return QStringLiteral("BYTE");
}
inline QString patternHeading()
{
    return QStringLiteral("PATTERN");
}
inline QString rememberHeading()
{
    return QStringLiteral("REMEMBER");
}
inline QString whatToRemember()
{
    return QStringLiteral("what to remember");
}
inline QString hearIt()
{
    return QStringLiteral("Hear it");
}
inline QString leaveIt()
{
    return QStringLiteral("Leave");
}
inline QString toANote()
{
    return QStringLiteral("Note");
}
inline QString asACard()
{
    return QStringLiteral("Card");
}
inline QString into()
{
    return QStringLiteral("Into");
}
inline QString untitled()
{
    return QStringLiteral("Untitled");
}
inline QString aNewNote()
{
    return QStringLiteral("a new note");
}
inline QString theIdea()
{
    return QStringLiteral("the idea");
}
inline QString theCorrection()
{
    return QStringLiteral("the correction");
}
inline QString keep()
{
    return QStringLiteral("Keep");
}
inline QString nothingKeptYet()
{
    return QStringLiteral("nothing kept yet");
}
// "Keep", "Keep 3", "Keep 3, write 1 card", "Keep 3, write 2 cards".
inline QString keepLabel(int kept, int cards)
{
    if (kept <= 0)
        return keep();
    QString label = keep() + u' ' + QString::number(kept);
    if (cards > 0)
        label += QStringLiteral(", write ") + QString::number(cards) +
                 (cards == 1 ? QStringLiteral(" card") : QStringLiteral(" cards"));
    return label;
}

} // namespace orvel::writingtexts
