#include "library/homeview.h"

#include "library/cardchanges.h"
#include "library/cardopener.h"
#include "library/homepalette.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

namespace orvel {

HomeView::HomeView(QObject *parent)
    : QObject(parent), m_cards(new CardList(this)), m_bin(new CardBin(*m_cards, this)),
      m_detail(new CardDetail(*m_cards, *m_bin, this)), m_shelf(new Shelf(this)),
      m_folderActions(new FolderActions(*m_shelf, this)),
      m_deckActions(new DeckActions(*m_shelf, this)), m_notes(new NotesPanel(this)),
      m_opener(new CardOpener(*this)), m_palette(new CommandPalette(this)),
      m_notesShown(LocalSettings::store().value(settingskeys::deckPage()).toString() ==
                   QStringLiteral("notes"))
{
    // A card whose deletion is still pending is still counted by the server's listing.
    m_shelf->setPendingRemovals([this](int deckId) {
        const auto binned = m_bin->binnedCard();
        return binned && binned->deckId == deckId ? 1 : 0;
    });
    connect(m_bin, &CardBin::binned, this,
            [this](const Card &card) { m_shelf->adjustCardCount(card.deckId, -1); });
    connect(m_bin, &CardBin::restored, this,
            [this](const Card &card) { m_shelf->adjustCardCount(card.deckId, +1); });
    // A card made elsewhere (from a note's line) counts on its deck's row.
    connect(&CardChanges::shared(), &CardChanges::added, this,
            [this](const Card &card) { m_shelf->adjustCardCount(card.deckId, +1); });
    connect(m_shelf, &Shelf::changed, this, [this] {
        // The open deck may have gone, or been renamed.
        if (m_selectedDeck && !m_shelf->deckById(m_selectedDeck))
            selectDeck(0);
        else
            emit selectedDeckChanged();
    });
    m_palette->setContextSource([this] { return HomePalette::context(*this); });
    // An open palette follows the shelf and the open deck.
    connect(m_shelf, &Shelf::changed, m_palette, &CommandPalette::refresh);
    connect(this, &HomeView::selectedDeckChanged, m_palette, &CommandPalette::refresh);
}

HomeView::~HomeView() = default;

DeckSummary HomeView::selectedDeck() const
{
    return m_shelf->deckById(m_selectedDeck).value_or(DeckSummary{});
}

bool HomeView::importInto(int deckId, const QString &text)
{
    if (text.trimmed().isEmpty() || deckId == 0 || !m_shelf->deckById(deckId))
        return false;
    selectDeck(deckId);
    // The cards page is where the written cards arrive.
    showNotes(false);
    emit importAsked(text);
    return true;
}

void HomeView::selectDeck(int deckId)
{
    if (deckId != 0 && !m_shelf->deckById(deckId))
        deckId = 0;
    if (deckId == m_selectedDeck)
        return;
    m_selectedDeck = deckId;
    if (deckId)
        m_cards->open(deckId);
    else
        m_cards->close();
    if (deckId && m_notesShown)
        m_notes->openDeck(deckId, selectedDeck().language);
    emit selectedDeckChanged();
}

void HomeView::showNotes(bool shown)
{
    if (shown == m_notesShown)
        return;
    m_notesShown = shown;
    LocalSettings::store().setValue(settingskeys::deckPage(),
                                    shown ? QStringLiteral("notes") : QStringLiteral("cards"));
    // The list is read afresh each time the page comes up: lines kept from a short lesson land
    // in notes made elsewhere.
    if (shown && m_selectedDeck)
        m_notes->openDeck(m_selectedDeck, selectedDeck().language);
    emit notesShownChanged();
}

bool HomeView::openShortcut(int n)
{
    const int deckId = m_shelf->deckForShortcut(n);
    if (!deckId)
        return false;
    selectDeck(deckId);
    return true;
}

bool HomeView::openCard(int deckId, int cardId)
{
    return m_opener->open(deckId, cardId);
}

bool HomeView::rewriteCard(int deckId, int cardId)
{
    return m_opener->open(deckId, cardId, CardOpener::Then::Rewrite);
}

bool HomeView::deleteCard(int deckId, int cardId)
{
    return m_opener->open(deckId, cardId, CardOpener::Then::Delete);
}

bool HomeView::openNote(int deckId, int noteId)
{
    if (!m_shelf->deckById(deckId))
        return false;
    selectDeck(deckId);
    showNotes(true);
    m_notes->open(noteId);
    return true;
}

bool HomeView::newNoteIn(int deckId)
{
    if (!m_shelf->deckById(deckId))
        return false;
    selectDeck(deckId);
    showNotes(true);
    m_notes->newNote();
    return true;
}

bool HomeView::addFromText(int deckId)
{
    if (!m_shelf->deckById(deckId))
        return false;
    selectDeck(deckId);
    showNotes(false);
    emit importAsked(QString());
    return true;
}

bool HomeView::writeCard(int deckId, const QString &term)
{
    if (term.trimmed().isEmpty() || !m_shelf->deckById(deckId))
        return false;
    selectDeck(deckId);
    showNotes(false);
    emit writeAsked(term);
    return true;
}

bool HomeView::revealFolder(int folderId)
{
    if (!m_shelf->folderById(folderId))
        return false;
    m_shelf->setOpen(folderId, true);
    emit folderRevealed(folderId);
    return true;
}

void HomeView::adopt(const DeckSummary &deck)
{
    m_shelf->addDeck(deck);
    selectDeck(deck.id);
}

} // namespace orvel
