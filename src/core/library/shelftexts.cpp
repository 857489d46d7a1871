#include "library/shelftexts.h"

namespace orvel::shelftexts {

QString couldNotLoadDecks()
{
    return QStringLiteral("Couldn't load your decks");
}

QString couldNotFile()
{
    return QStringLiteral("Couldn't file that");
}

QString folderDeleteQuestion(const QString &name)
{
    return QStringLiteral("Delete the folder “") + name + QStringLiteral("”?");
}

QString folderDeleteDetail(int decks)
{
    if (decks <= 0)
        return QStringLiteral("The folder is empty.");
    return QStringLiteral("Its ") + QString::number(decks) +
           (decks == 1 ? QStringLiteral(" deck moves") : QStringLiteral(" decks move")) +
           QStringLiteral(" out of the folder. No cards or notes are deleted.");
}

QString deckDeleteQuestion(const QString &name)
{
    return QStringLiteral("Delete ") + (name.isEmpty() ? QStringLiteral("this deck") : name) + u'?';
}

QString deckDeleteDetail(int cards, int notes)
{
    if (notes > 0)
        return QString::number(cards) + QStringLiteral(" cards and ") + QString::number(notes) +
               QStringLiteral(" notes go too. This cannot be undone.");
    return QString::number(cards) + QStringLiteral(" cards go too. This cannot be undone.");
}

QString newFolderWith(const QString &deckName)
{
    return QStringLiteral("New Folder with “") + deckName + QStringLiteral("”");
}

QString studyThisDeck(const QString &keyName)
{
    return QStringLiteral("Study this deck (") + keyName + u')';
}

QString deletedCard(const QString &term)
{
    return QStringLiteral("Deleted ") + term;
}

QString emptyDeckGuidance(const QString &lessonKeyName)
{
    return QStringLiteral("Type a word below and the card writes itself.\n\nOr a topic — "
                          "“asking for the bill” — and ") +
           lessonKeyName + QStringLiteral(" writes a short lesson you keep what you like from.");
}

} // namespace orvel::shelftexts
