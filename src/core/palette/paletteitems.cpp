#include "palette/paletteitems.h"

#include "palette/palettetexts.h"
#include "records/wordtype.h"

#include <QTextBoundaryFinder>

namespace orvel {

PaletteItems::PaletteItems(std::shared_ptr<const PaletteContext> context)
    : m_context(std::move(context)), m_stages(m_context)
{
    m_deckIndex.reserve(m_context->decks.size());
    for (qsizetype i = 0; i < m_context->decks.size(); ++i)
        m_deckIndex.insert(m_context->decks[i].id, i);
}

std::optional<DeckSummary> PaletteItems::deckById(int id) const
{
    const auto found = m_deckIndex.constFind(id);
    if (found == m_deckIndex.constEnd())
        return std::nullopt;
    return m_context->decks[*found];
}

DeckSummary PaletteItems::deckOrStub(int id) const
{
    if (auto deck = deckById(id))
        return *deck;
    DeckSummary stub;
    stub.id = id;
    return stub;
}

PaletteItem PaletteItems::deck(const DeckSummary &deck) const
{
    const auto context = m_context;
    PaletteItem item;
    item.id = QStringLiteral("deck-") + QString::number(deck.id);
    item.glyph = QStringLiteral("deck");
    item.title = deck.name;
    item.meta = palettetexts::deckProgress(deck);
    item.run = [context, deck] {
        paletteCall(context->openDeck, deck);
        return PaletteOutcome::Close;
    };
    item.stage = [stages = m_stages, deck] { return stages.deck(deck); };
    item.recent = PaletteRecent::deck(deck.id);
    return item;
}

PaletteItem PaletteItems::folder(const Folder &folder) const
{
    const auto context = m_context;
    PaletteItem item;
    item.id = QStringLiteral("folder-") + QString::number(folder.id);
    item.glyph = QStringLiteral("folder");
    item.title = folder.name;
    item.meta = palettetexts::deckCount(folder.deckCount);
    item.run = [context, folder] {
        paletteCall(context->revealFolder, folder);
        return PaletteOutcome::Close;
    };
    item.stage = [stages = m_stages, folder] { return stages.folder(folder); };
    return item;
}

PaletteItem PaletteItems::card(const Card &card) const
{
    // The card and its deck are held once for both of the row's actions.
    struct Held {
        DeckSummary deck;
        Card card;
    };
    const auto held = std::make_shared<const Held>(Held{deckOrStub(card.deckId), card});
    const auto context = m_context;
    const WordType type = wordTypeFromPartOfSpeech(card.partOfSpeech);
    PaletteItem item;
    item.id = QStringLiteral("card-") + QString::number(card.id);
    item.glyph = QStringLiteral("card");
    item.title = PaletteStages::cardTitle(card);
    item.subtitle = palettetexts::cardKind(type, card.partOfSpeech);
    item.meta = held->deck.name;
    item.serif = true;
    item.run = [context, held] {
        paletteCall(context->openCard, held->deck, held->card);
        return PaletteOutcome::Close;
    };
    item.stage = [stages = m_stages, held] { return stages.card(held->deck, held->card); };
    item.recent = PaletteRecent::card(
        {card.deckId, card.id, card.term, card.translation, wordTypeRawValue(type)});
    return item;
}

PaletteItem PaletteItems::note(const NoteHit &note) const
{
    const auto context = m_context;
    const DeckSummary deck = deckOrStub(note.deckId);
    PaletteItem item;
    item.id = QStringLiteral("note-") + QString::number(note.id);
    item.glyph = QStringLiteral("doc.text");
    item.title = note.title.isEmpty() ? palettetexts::untitled() : note.title;
    item.meta = deck.name;
    item.run = [context, deck, noteId = note.id] {
        paletteCall(context->openNote, deck, noteId);
        return PaletteOutcome::Close;
    };
    return item;
}

PaletteItem PaletteItems::line(const LineHit &line) const
{
    const auto context = m_context;
    const DeckSummary deck = deckOrStub(line.deckId);
    PaletteItem item;
    item.id = QStringLiteral("line-") + QString::number(line.id);
    item.glyph = QStringLiteral("text.alignleft");
    item.title = line.text;
    item.subtitle = palettetexts::lineSubtitle(line.noteTitle, deck.name);
    item.run = [context, deck, noteId = line.noteId] {
        paletteCall(context->openNote, deck, noteId);
        return PaletteOutcome::Close;
    };
    return item;
}

PaletteItem PaletteItems::manualPage(const ManualPage &page) const
{
    const auto context = m_context;
    PaletteItem item;
    item.id = QStringLiteral("manual-") + page.id;
    item.glyph = QStringLiteral("book.closed");
    item.title = page.question;
    item.run = [context, pageId = page.id] {
        paletteCall(context->openManual, pageId, QString());
        return PaletteOutcome::Close;
    };
    return item;
}

std::optional<PaletteItem> PaletteItems::recent(const PaletteRecent &recent) const
{
    const std::optional<DeckSummary> deck = deckById(recent.deckId());
    if (!deck)
        return std::nullopt;
    const std::optional<PaletteRecent::Card> snapshot = recent.card();
    if (!snapshot) {
        if (m_context->deck && m_context->deck->id == deck->id)
            return std::nullopt;
        return this->deck(*deck);
    }
    // The card as far as the snapshot knows it: enough to open, hear, rewrite or delete it.
    Card card;
    card.id = snapshot->cardId;
    card.deckId = snapshot->deckId;
    card.term = snapshot->term;
    card.translation = snapshot->translation;
    const auto context = m_context;
    PaletteItem item;
    item.id = QStringLiteral("recent-card-") + QString::number(snapshot->cardId);
    item.glyph = QStringLiteral("card");
    item.title = snapshot->term;
    const QString kind =
        palettetexts::cardKind(wordTypeFromRawValue(snapshot->kind).value_or(WordType::Other));
    item.subtitle = kind.isEmpty() || snapshot->translation.isEmpty()
                        ? kind + snapshot->translation
                        : kind + QStringLiteral(" · ") + snapshot->translation;
    item.meta = deck->name;
    item.serif = true;
    item.run = [context, deck = *deck, cardId = snapshot->cardId] {
        paletteCall(context->openCardID, deck, cardId);
        return PaletteOutcome::Close;
    };
    item.stage = [stages = m_stages, deck = *deck, card] { return stages.card(deck, card); };
    item.recent = recent;
    return item;
}

qsizetype PaletteItems::characters(const QString &text)
{
    qsizetype count = 0;
    QTextBoundaryFinder clusters(QTextBoundaryFinder::Grapheme, text);
    while (clusters.toNextBoundary() > 0)
        ++count;
    return count;
}

QList<PaletteItem> PaletteItems::writing(const QString &query) const
{
    // Cheap bounds first: a cluster holds at least one UTF-16 unit.
    if (query.size() < 2)
        return {};
    const qsizetype length = characters(query);
    if (length < 2 || length > 200)
        return {};
    const auto context = m_context;
    PaletteItem elsewhere;
    elsewhere.id = QStringLiteral("write-elsewhere");
    elsewhere.glyph = QStringLiteral("pencil");
    elsewhere.stage = [stages = m_stages, query] { return stages.deckPicker(query); };
    if (!context->deck) {
        elsewhere.title = palettetexts::writeForIn(query);
        return {elsewhere};
    }
    const DeckSummary deck = *context->deck;
    elsewhere.title = palettetexts::writeElsewhere();
    PaletteItem write;
    write.id = QStringLiteral("write");
    write.glyph = QStringLiteral("pencil");
    write.title = palettetexts::writeFor(query);
    write.subtitle = palettetexts::writesItself(deck.name);
    write.run = [context, query, deck] {
        paletteCall(context->writeCard, query, deck);
        return PaletteOutcome::Close;
    };
    PaletteItem hear;
    hear.id = QStringLiteral("hear");
    hear.glyph = QStringLiteral("speaker.wave.2");
    hear.title = palettetexts::hear(query);
    hear.run = [context, query, language = deck.language] {
        paletteCall(context->hear, query, language);
        return PaletteOutcome::Stay;
    };
    return {write, elsewhere, hear};
}

} // namespace orvel
