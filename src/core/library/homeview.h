#pragma once

#include "library/cardbin.h"
#include "library/carddetail.h"
#include "library/cardlist.h"
#include "library/deckactions.h"
#include "library/folderactions.h"
#include "library/shelf.h"
#include "notes/notespanel.h"
#include "palette/commandpalette.h"
#include "records/decksummary.h"

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class CardOpener;

// The home screen: the shelf with its folder and deck actions, the chosen deck with its card
// list, card detail and undoable card deletion. It keeps which deck is open and holds the
// pieces in step (a deck that leaves the shelf closes; a card that goes or comes back counts
// on its deck's row at once).
class HomeView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::Shelf *shelf READ shelf CONSTANT)
    Q_PROPERTY(orvel::FolderActions *folderActions READ folderActions CONSTANT)
    Q_PROPERTY(orvel::DeckActions *deckActions READ deckActions CONSTANT)
    Q_PROPERTY(orvel::CardList *cards READ cards CONSTANT)
    Q_PROPERTY(orvel::CardDetail *detail READ detail CONSTANT)
    Q_PROPERTY(orvel::CardBin *bin READ bin CONSTANT)
    Q_PROPERTY(int selectedDeckId READ selectedDeckId WRITE selectDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(bool hasSelectedDeck READ hasSelectedDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(orvel::DeckSummary selectedDeck READ selectedDeck NOTIFY selectedDeckChanged)
    Q_PROPERTY(QString selectedDeckName READ selectedDeckName NOTIFY selectedDeckChanged)
    Q_PROPERTY(orvel::NotesPanel *notes READ notes CONSTANT)
    Q_PROPERTY(bool notesShown READ notesShown WRITE showNotes NOTIFY notesShownChanged)
    Q_PROPERTY(orvel::CommandPalette *palette READ palette CONSTANT)
public:
    explicit HomeView(QObject *parent = nullptr);
    ~HomeView() override;

    Shelf *shelf() const { return m_shelf; }
    FolderActions *folderActions() const { return m_folderActions; }
    DeckActions *deckActions() const { return m_deckActions; }
    CardList *cards() const { return m_cards; }
    CardDetail *detail() const { return m_detail; }
    CardBin *bin() const { return m_bin; }
    NotesPanel *notes() const { return m_notes; }
    // "Find or Do", reading the shelf and the open deck through HomePalette.
    CommandPalette *palette() const { return m_palette; }

    // Whether the open deck shows its notes instead of its cards; one choice for every deck,
    // remembered across starts.
    bool notesShown() const { return m_notesShown; }
    void showNotes(bool shown);

    int selectedDeckId() const { return m_selectedDeck; }
    bool hasSelectedDeck() const { return m_shelf->deckById(m_selectedDeck).has_value(); }
    DeckSummary selectedDeck() const;
    QString selectedDeckName() const { return selectedDeck().name; }
    // Opens a deck in the card list (0, or a deck not on the shelf, opens none).
    void selectDeck(int deckId);
    // Opens the deck that Ctrl+<n> names; false when there is none.
    Q_INVOKABLE bool openShortcut(int n);

    // Text dropped on a deck: opens that deck's cards and asks its composer to start an import
    // sheet with the text. False (nothing opened) for blank text or a deck not on the shelf.
    Q_INVOKABLE bool importInto(int deckId, const QString &text);

    // What the palette opens and does, each in the deck it belongs to (opened first when
    // another is open). A card is selected once its deck's cards are in; rewriting or deleting
    // it then goes through the card detail and the undoable bin. False for a deck not on the
    // shelf.
    bool openCard(int deckId, int cardId);
    bool rewriteCard(int deckId, int cardId);
    bool deleteCard(int deckId, int cardId);
    // Shows the deck's notes with this note open.
    bool openNote(int deckId, int noteId);
    // Shows the deck's notes and starts a new one.
    bool newNoteIn(int deckId);
    // Opens the deck's cards with an empty import sheet (importAsked with no text).
    bool addFromText(int deckId);
    // Opens the deck's cards and has its composer write a card for the term (writeAsked).
    bool writeCard(int deckId, const QString &term);
    // Opens a folder in the sidebar and says so (folderRevealed), for the sidebar to show it.
    bool revealFolder(int folderId);

    // A deck the new-deck sheet made: it joins the shelf and opens.
    Q_INVOKABLE void adopt(const orvel::DeckSummary &deck);
    // Cards written into a deck (from its composer or a kept lesson) count on its shelf row at
    // once, without waiting for the next listing.
    Q_INVOKABLE void countNewCards(int deckId, int count)
    {
        m_shelf->adjustCardCount(deckId, count);
    }

signals:
    void selectedDeckChanged();
    void notesShownChanged();
    // The open deck's composer opens an import sheet with this text.
    void importAsked(const QString &text);
    // The open deck's composer writes a card for this term.
    void writeAsked(const QString &term);
    // The sidebar brings this folder into view.
    void folderRevealed(int folderId);

private:
    CardList *m_cards = nullptr;
    CardBin *m_bin = nullptr;
    CardDetail *m_detail = nullptr;
    Shelf *m_shelf = nullptr;
    FolderActions *m_folderActions = nullptr;
    DeckActions *m_deckActions = nullptr;
    NotesPanel *m_notes = nullptr;
    CardOpener *m_opener = nullptr;
    CommandPalette *m_palette = nullptr;
    int m_selectedDeck = 0;
    bool m_notesShown = false;
};

} // namespace orvel
