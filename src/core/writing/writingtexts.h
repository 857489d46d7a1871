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

// Adding from a pasted text.
inline QString importTitle()
{
    return QStringLiteral("Add from text");
}
inline QString importPlaceholder()
{
    return QStringLiteral("An article, a chapter, subtitles, a menu — anything you're reading.");
}
// "Paste something you're reading in German. orvel picks out the words worth a card."
inline QString pasteSubtitle(const QString &languageName)
{
    return QStringLiteral("Paste something you're reading in ") + languageName +
           QStringLiteral(". orvel picks out the words worth a card.");
}
inline QString characters(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 character")
                      : QString::number(count) + QStringLiteral(" characters");
}
inline QString findWords()
{
    return QStringLiteral("Find words");
}
inline QString chooseWhatToKeep()
{
    return QStringLiteral("Choose what's worth keeping.");
}
inline QString unreadNotice(int unread)
{
    return QStringLiteral("Read the first 20,000 characters; ") + QString::number(unread) +
           QStringLiteral(" to go");
}
inline QString alreadyInTheDeck(int skipped)
{
    return QString::number(skipped) + QStringLiteral(" already in the deck");
}
inline QString seenAs(const QString &form)
{
    return QStringLiteral("seen as ") + form;
}
inline QString none()
{
    return QStringLiteral("None");
}
// "Write 1 card", "Write 3 cards"; "Write cards" when nothing is chosen.
inline QString writeCards(int chosen)
{
    if (chosen <= 0)
        return QStringLiteral("Write cards");
    return QStringLiteral("Write ") + QString::number(chosen) +
           (chosen == 1 ? QStringLiteral(" card") : QStringLiteral(" cards"));
}
inline QString back()
{
    return QStringLiteral("Back");
}
inline QString writingOf(int done, int total)
{
    return QStringLiteral("Writing ") + QString::number(done) + QStringLiteral(" of ") +
           QString::number(total);
}
inline QString done()
{
    return QStringLiteral("Done");
}

inline QString writtenHeading()
{
    return QStringLiteral("Written");
}
inline QString passedOver()
{
    return QStringLiteral("Left out");
}
inline QString notWritten()
{
    return QStringLiteral("Could not be written");
}
inline QString findBroke()
{
    return QStringLiteral("The server stopped before it had read the whole text. Try again.");
}
inline QString batchBroke()
{
    return QStringLiteral("The server stopped answering before the last card. It keeps "
                          "writing them: they will be in the deck when you open it again.");
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
