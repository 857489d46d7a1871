#pragma once

#include "palette/paletterecent.h"
#include "records/card.h"
#include "records/decksummary.h"
#include "records/folder.h"

#include <functional>
#include <optional>
#include <QList>
#include <QString>
#include <utility>

namespace orvel {

// The palette's view of the app: the learner's decks and folders, the open deck, the recents,
// and the actions its rows run. The palette changes nothing itself; it calls these, and the home
// screen that builds the context decides how each is done. An action left unset does nothing.
struct PaletteContext {
    QList<DeckSummary> decks;
    QList<Folder> folders;
    std::optional<DeckSummary> deck;
    QList<PaletteRecent> recents;
    // The appearance in force: "system", "light" or "dark" (its command is not offered).
    QString appearance;

    std::function<void(const DeckSummary &deck)> openDeck;
    std::function<void(const DeckSummary &deck, const Card &card)> openCard;
    std::function<void(const DeckSummary &deck, int cardId)> openCardID;
    std::function<void(const DeckSummary &deck, int noteId)> openNote;
    std::function<void(const Folder &folder)> revealFolder;
    std::function<void(const QString &term, const DeckSummary &deck)> writeCard;
    std::function<void(const DeckSummary &deck)> addFromText;
    std::function<void(const DeckSummary &deck)> newNote;
    std::function<void()> newDeck;
    std::function<void(const DeckSummary &deck)> study;
    std::function<void(const Folder &folder)> studyFolder;
    std::function<bool(const Folder &folder)> canStudyFolder;
    std::function<void(const DeckSummary &deck, std::optional<int> folderId)> move;
    std::function<void(const std::optional<DeckSummary> &deck)> newFolder;
    std::function<void(const QString &text, const QString &language)> hear;
    std::function<void(const Card &card)> rewrite;
    std::function<void(const Card &card)> deleteCard;
    std::function<void(const QString &pageId, const QString &anchor)> openManual;
    // The appearance commands and "Settings…".
    std::function<void(const QString &mode)> chooseAppearance;
    std::function<void()> openSettings;
};

// Runs one of the context's actions, when it is set.
template <typename... Args, typename... Given>
void paletteCall(const std::function<void(Args...)> &action, Given &&...given)
{
    if (action)
        action(std::forward<Given>(given)...);
}

} // namespace orvel
