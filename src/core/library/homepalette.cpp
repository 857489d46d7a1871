#include "library/homepalette.h"

#include "app/appcommands.h"
#include "app/appstate.h"
#include "app/services.h"
#include "library/homeview.h"
#include "sound/speech.h"

namespace orvel {

PaletteContext HomePalette::context(HomeView &home)
{
    HomeView *view = &home;
    Services &services = Services::current();
    AppState *state = &services.state();
    Speech *speech = &services.speech();

    PaletteContext context;
    context.decks = home.shelf()->decks();
    context.folders = home.shelf()->folders();
    if (home.hasSelectedDeck())
        context.deck = home.selectedDeck();
    context.recents = PaletteRecent::load();
    context.appearance = AppState::appearanceText(state->appearance());

    context.openDeck = [view](const DeckSummary &deck) {
        view->showNotes(false);
        view->selectDeck(deck.id);
    };
    context.openCard = [view](const DeckSummary &deck, const Card &card) {
        view->openCard(deck.id, card.id);
    };
    context.openCardID = [view](const DeckSummary &deck, int cardId) {
        view->openCard(deck.id, cardId);
    };
    context.openNote = [view](const DeckSummary &deck, int noteId) {
        view->openNote(deck.id, noteId);
    };
    context.revealFolder = [view](const Folder &folder) { view->revealFolder(folder.id); };
    context.writeCard = [view](const QString &term, const DeckSummary &deck) {
        view->writeCard(deck.id, term);
    };
    context.addFromText = [view](const DeckSummary &deck) { view->addFromText(deck.id); };
    context.newNote = [view](const DeckSummary &deck) { view->newNoteIn(deck.id); };
    context.newDeck = [] { AppCommands::shared().post(AppCommand::NewDeck); };
    context.study = [view](const DeckSummary &deck) { view->deckActions()->study(deck.id); };
    context.studyFolder = [view](const Folder &folder) {
        view->folderActions()->studyAll(folder.id);
    };
    context.canStudyFolder = [view](const Folder &folder) {
        return !view->folderActions()->studyAllDecks(folder.id).isEmpty();
    };
    context.move = [view](const DeckSummary &deck, std::optional<int> folderId) {
        view->folderActions()->file(QList<int>{deck.id}, folderId);
    };
    context.newFolder = [view](const std::optional<DeckSummary> &deck) {
        view->folderActions()->requestNewFolder(deck ? deck->id : 0);
    };
    context.hear = [speech](const QString &text, const QString &language) {
        speech->say(text, language);
    };
    context.rewrite = [view](const Card &card) { view->rewriteCard(card.deckId, card.id); };
    context.deleteCard = [view](const Card &card) { view->deleteCard(card.deckId, card.id); };
    context.openManual = [](const QString &pageId, const QString &) {
        // The manual window listens for the command, with the page as its text; its pages have
        // no places within them, so a page opens at its top.
        AppCommands::shared().post(AppCommand::Manual, pageId);
    };
    context.chooseAppearance = [state](const QString &mode) {
        for (const auto appearance : {AppState::Appearance::System, AppState::Appearance::Light,
                                      AppState::Appearance::Dark})
            if (AppState::appearanceText(appearance) == mode)
                state->choose(appearance);
    };
    context.openSettings = [] { AppCommands::shared().post(AppCommand::Settings); };
    return context;
}

} // namespace orvel
