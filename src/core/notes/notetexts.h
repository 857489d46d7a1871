#pragma once

#include <QString>

namespace orvel {

// The note editor's and the margin's own texts, each built in one place.
namespace notetexts {

// "Untitled note": the title field while the note has no title.
QString untitled();
// "A phrase you heard — or / for more": an empty line's placeholder.
QString linePlaceholder();
// "Its one line goes too. This cannot be undone." or "Its 3 lines go too. …".
QString deleteQuestion(int lines);
// "Ask for the margin on this line" (one pending) or "… on these lines" (several).
QString askText(int pending);
// "Annotate 1 line", "Annotate 3 lines".
QString askTitle(int pending);
// "Every line already has a margin. Write them again from the ⋯ menu."
QString allAnnotated();
// "Ctrl+↩ asks for the margin on this line." or "… on 3 lines.".
QString hint(int pending);
// "Reading 2 of 5".
QString reading(int done, int total);
// "1 line annotated.", "3 lines annotated.".
QString annotated(int lines);
// "This line changed since the margin was written."
QString stale();
// "Clear it to remove this remark": the hint of a remark being edited.
QString remarkHint();
// "Translation", "Gloss", "Note", "Caution"; the raw kind itself when it is not one of them.
QString kindLabel(const QString &kind);
// The offer under a remark: "Deeper. …" with no level unfolded, "Even deeper. …" after one.
QString deeper(int unfolded);
// "Less deep. Fold the last answer away — it is kept, not thrown out".
QString lessDeep();
// "Make a card from this line".
QString makeCard();
// "Hund is now a card." or "Hund was already in the deck.".
QString cardMade(const QString &term, bool already);
// "Some lines are only on this computer until the server answers."
QString localOnly();
// "Lines typed on this computer that had not reached the server are back. …"
QString recovered();
// "Lines typed on this computer that had not reached the server are back and saved."
QString recoveredSaved();
// "“x” is not a kind of remark.": a kind the margin does not know.
QString unknownKind(const QString &kind);

// Slash commands.
QString slashHintImg();
QString slashHintGif();
QString slashHintConj();
QString slashHintMnemonic();
QString slashHintSay();
// "↑ ↓ to choose · ↩ to pick · esc to stop"
QString slashFooter();
QString noSuchCommand();
QString sayWhichWord();
// "Nothing came back for “word”"
QString nothingCameBack(const QString &word);

// Pictures.
QString pickerFooter();
QString typeWhatPicture();
// "Nothing found for “query”"
QString nothingFound(const QString &query);
QString diagramsOnly();
QString pictureFailed();
QString removePicture();
QString yours();
QString pictureOf(const QString &word);

} // namespace notetexts
} // namespace orvel
