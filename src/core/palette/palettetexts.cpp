#include "palette/palettetexts.h"

#include <initializer_list>
#include <QStringView>

namespace orvel::palettetexts {

namespace {

// The parts joined in one allocation: titles are made for hundreds of rows on each keystroke.
QString joined(std::initializer_list<QStringView> parts)
{
    qsizetype size = 0;
    for (const QStringView part : parts)
        size += part.size();
    QString text;
    text.reserve(size);
    for (const QStringView part : parts)
        text.append(part);
    return text;
}

} // namespace

QString placeholder()
{
    return QStringLiteral("Find a deck, a card, a note — or say what to do");
}

QString name()
{
    return QStringLiteral("Find or Do");
}

QString nothingMatches()
{
    return QStringLiteral("Nothing matches.");
}

QString nothingYet()
{
    return QStringLiteral("Nothing to show yet.");
}

QString inDeck(const QString &deckName)
{
    return QStringLiteral("In ") + deckName;
}

QString start()
{
    return QStringLiteral("Start");
}

QString jumpBackTo()
{
    return QStringLiteral("Jump back to");
}

QString commands()
{
    return QStringLiteral("Commands");
}

QString moreCommands()
{
    return QStringLiteral("More commands");
}

QString manual()
{
    return QStringLiteral("Manual");
}

QString notInAnyDeck()
{
    return QStringLiteral("Not in any deck");
}

QString cards()
{
    return QStringLiteral("Cards");
}

QString decks()
{
    return QStringLiteral("Decks");
}

QString folders()
{
    return QStringLiteral("Folders");
}

QString notes()
{
    return QStringLiteral("Notes");
}

QString lines()
{
    return QStringLiteral("Lines");
}

QString doSection()
{
    return QStringLiteral("Do");
}

QString sameLanguage()
{
    return QStringLiteral("Same language");
}

QString otherLanguages()
{
    return QStringLiteral("Other languages");
}

QString cardCount(int cards)
{
    return joined({QString::number(cards), cards == 1 ? u" card" : u" cards"});
}

QString deckProgress(const DeckSummary &deck)
{
    if (deck.knownCount < 1)
        return cardCount(deck.cardCount);
    return joined(
        {QString::number(deck.knownCount), u" of ", QString::number(deck.cardCount), u" learned"});
}

QString deckCount(int decks)
{
    return joined({QString::number(decks), decks == 1 ? u" deck" : u" decks"});
}

QString cardsFound(int cards, int decks)
{
    return QString::number(cards) + QStringLiteral(" in ") + deckCount(decks);
}

QString cardKind(WordType type, const QString &partOfSpeech)
{
    switch (type) {
    case WordType::Noun:
        return QStringLiteral("noun");
    case WordType::Verb:
        return QStringLiteral("verb");
    case WordType::Adjective:
        return QStringLiteral("adjective");
    case WordType::Adverb:
        return QStringLiteral("adverb");
    case WordType::Phrase:
        return QStringLiteral("phrase");
    case WordType::Function:
        return QStringLiteral("grammar word");
    case WordType::Other:
        break;
    }
    return partOfSpeech.trimmed();
}

QString untitled()
{
    return QStringLiteral("Untitled");
}

QString lineSubtitle(const QString &noteTitle, const QString &deckName)
{
    const QString note = noteTitle.isEmpty()
                             ? untitled() + QStringLiteral(" note")
                             : QStringLiteral("“") + noteTitle + QStringLiteral("”");
    return QStringLiteral("in the note ") + note + QStringLiteral(" · ") + deckName;
}

QString writeEmpty()
{
    return QStringLiteral("Write a card…");
}

QString writeEmptySubtitle()
{
    return QStringLiteral("Type a word, then ↩");
}

QString addFromText()
{
    return QStringLiteral("Add from Text…");
}

QString newNote()
{
    return QStringLiteral("New Note");
}

QString newDeck()
{
    return QStringLiteral("New Deck");
}

QString newFolder()
{
    return QStringLiteral("New Folder");
}

QString study(const QString &deckName)
{
    return joined({u"Study ", deckName});
}

QString studyFolder(const QString &folder)
{
    return joined({u"Study All Decks in ", folder});
}

QString studyPick()
{
    return QStringLiteral("Study a Deck…");
}

QString appearance(const QString &mode)
{
    QString shown = mode;
    if (!shown.isEmpty())
        shown[0] = shown[0].toUpper();
    return QStringLiteral("Appearance: ") + shown;
}

QString settings()
{
    return QStringLiteral("Settings…");
}

QString orvelManual()
{
    return QStringLiteral("Orvel Manual");
}

QString help()
{
    return QStringLiteral("Help");
}

QString helpSubtitle()
{
    return QStringLiteral("Open the Orvel Manual");
}

QString writeFor(const QString &query)
{
    return QStringLiteral("Write a card for “") + query + QStringLiteral("”");
}

QString writeForIn(const QString &query)
{
    return writeFor(query) + QStringLiteral(" in…");
}

QString writesItself(const QString &deckName)
{
    return deckName + QStringLiteral(" · the card writes itself");
}

QString writeElsewhere()
{
    return QStringLiteral("Write It in Another Deck…");
}

QString hear(const QString &query)
{
    return QStringLiteral("Hear “") + query + QStringLiteral("”");
}

QString whatToDo()
{
    return QStringLiteral("What to do with it");
}

QString openCard()
{
    return QStringLiteral("Open the Card");
}

QString hearIt()
{
    return QStringLiteral("Hear It");
}

QString rewriteCard()
{
    return QStringLiteral("Rewrite the Card");
}

QString deleteCard()
{
    return QStringLiteral("Delete Card…");
}

QString pressAgainToDelete()
{
    return QStringLiteral("Press ↩ again to delete");
}

QString openDeck(const QString &deckName)
{
    return joined({u"Open ", deckName});
}

QString studyAll()
{
    return QStringLiteral("Study All Decks");
}

QString showInSidebar()
{
    return QStringLiteral("Show in Sidebar");
}

QString moveTo(const QString &deckName)
{
    return joined({u"Move ", deckName, u" to…"});
}

QString moveInto(const QString &deckName, const QString &folder)
{
    return joined({u"Move ", deckName, u" to ", folder});
}

QString moveOut(const QString &deckName, const QString &folder)
{
    return joined({u"Move ", deckName, u" Out of ", folder});
}

QString whichFolder()
{
    return QStringLiteral("Which folder");
}

QString noFolder()
{
    return QStringLiteral("No Folder");
}

QString whichDeck()
{
    return QStringLiteral("Which deck");
}

QString hintOpen()
{
    return QStringLiteral("Open");
}

QString hintActions()
{
    return QStringLiteral("Actions");
}

QString hintClose()
{
    return QStringLiteral("Close");
}

QString hintDoIt()
{
    return QStringLiteral("Do it");
}

QString hintBack()
{
    return QStringLiteral("Back");
}

} // namespace orvel::palettetexts
