#include "notes/notetexts.h"

#include "records/annotation.h"

namespace orvel::notetexts {

QString untitled()
{
    return QStringLiteral("Untitled note");
}

QString linePlaceholder()
{
    return QStringLiteral("A phrase you heard — or / for more");
}

QString deleteQuestion(int lines)
{
    if (lines == 1)
        return QStringLiteral("Its one line goes too. This cannot be undone.");
    return QStringLiteral("Its %1 lines go too. This cannot be undone.").arg(lines);
}

QString askText(int pending)
{
    return pending == 1 ? QStringLiteral("Ask for the margin on this line")
                        : QStringLiteral("Ask for the margin on these lines");
}

QString askTitle(int pending)
{
    return pending == 1 ? QStringLiteral("Annotate 1 line")
                        : QStringLiteral("Annotate %1 lines").arg(pending);
}

QString allAnnotated()
{
    return QStringLiteral("Every line already has a margin. Write them again from the ⋯ menu.");
}

QString hint(int pending)
{
    const QString which =
        pending == 1 ? QStringLiteral("this line") : QStringLiteral("%1 lines").arg(pending);
    return QStringLiteral("Ctrl+↩ asks for the margin on ") + which + u'.';
}

QString reading(int done, int total)
{
    return QStringLiteral("Reading %1 of %2").arg(done).arg(total);
}

QString annotated(int lines)
{
    return lines == 1 ? QStringLiteral("1 line annotated.")
                      : QStringLiteral("%1 lines annotated.").arg(lines);
}

QString stale()
{
    return QStringLiteral("This line changed since the margin was written.");
}

QString remarkHint()
{
    return QStringLiteral("Clear it to remove this remark");
}

QString kindLabel(const QString &kind)
{
    const std::optional<Annotation::Kind> known = Annotation::kindFromRawValue(kind);
    if (!known)
        return kind;
    switch (*known) {
    case Annotation::Kind::Translation:
        return QStringLiteral("Translation");
    case Annotation::Kind::Gloss:
        return QStringLiteral("Gloss");
    case Annotation::Kind::Note:
        return QStringLiteral("Note");
    case Annotation::Kind::Caution:
        return QStringLiteral("Caution");
    }
    return kind;
}

QString deeper(int unfolded)
{
    if (unfolded == 0)
        return QStringLiteral("Deeper. Ask why this is so — the rule behind the remark");
    return QStringLiteral(
        "Even deeper. Ask for the register, the regional variation and the related forms");
}

QString lessDeep()
{
    return QStringLiteral("Less deep. Fold the last answer away — it is kept, not thrown out");
}

QString makeCard()
{
    return QStringLiteral("Make a card from this line");
}

QString cardMade(const QString &term, bool already)
{
    return term + (already ? QStringLiteral(" was already in the deck.")
                           : QStringLiteral(" is now a card."));
}

QString localOnly()
{
    return QStringLiteral("Some lines are only on this computer until the server answers.");
}

QString recovered()
{
    return QStringLiteral("Lines typed on this computer that had not reached the server are "
                          "back. They are being saved now.");
}

QString recoveredSaved()
{
    return QStringLiteral(
        "Lines typed on this computer that had not reached the server are back and saved.");
}

QString unknownKind(const QString &kind)
{
    return QStringLiteral("“%1” is not a kind of remark.").arg(kind);
}

QString slashHintImg()
{
    return QStringLiteral("Find a picture of it");
}

QString slashHintGif()
{
    return QStringLiteral("Find one that moves");
}

QString slashHintConj()
{
    return QStringLiteral("Conjugate the verb");
}

QString slashHintMnemonic()
{
    return QStringLiteral("A hook to remember it by");
}

QString slashHintSay()
{
    return QStringLiteral("Hear it aloud");
}

QString slashFooter()
{
    return QStringLiteral("↑ ↓ to choose · ↩ to pick · esc to stop");
}

QString noSuchCommand()
{
    return QStringLiteral("No command by that name.");
}

QString sayWhichWord()
{
    return QStringLiteral(
        "Say which word — type it after the command, or put it on the line above.");
}

QString nothingCameBack(const QString &word)
{
    return QStringLiteral("Nothing came back for “") + word + QStringLiteral("”");
}

QString pickerFooter()
{
    return QStringLiteral("← → to choose · ↩ to place it · esc to stop");
}

QString typeWhatPicture()
{
    return QStringLiteral("Type what the picture should be of.");
}

QString nothingFound(const QString &query)
{
    return QStringLiteral("Nothing found for “") + query + QStringLiteral("”");
}

QString diagramsOnly()
{
    return QStringLiteral("Diagrams only — set TENOR_API_KEY or GIPHY_API_KEY for reactions.");
}

QString pictureFailed()
{
    return QStringLiteral("That picture could not be loaded.");
}

QString removePicture()
{
    return QStringLiteral("Remove");
}

QString yours()
{
    return QStringLiteral("Yours");
}

QString pictureOf(const QString &word)
{
    return QStringLiteral("Picture of ") + word;
}

} // namespace orvel::notetexts
