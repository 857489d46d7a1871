#include "palette/palettebuilder.h"

#include "palette/palettequery.h"
#include "palette/paletteshortcuts.h"
#include "palette/palettetexts.h"

#include <QSet>

namespace orvel {

namespace {

void appendSection(QList<PaletteSection> &sections, const QString &title, QList<PaletteItem> items,
                   const QString &note = {})
{
    if (!items.isEmpty())
        sections.append({title, note, std::move(items)});
}

} // namespace

PaletteBuilder::PaletteBuilder(PaletteContext context, QList<ManualPage> manual,
                               std::optional<SearchResults> reply)
    : m_items(std::make_shared<const PaletteContext>(std::move(context))), m_commands(m_items),
      m_manual(std::move(manual))
{
    setReply(std::move(reply));
}

void PaletteBuilder::setReply(std::optional<SearchResults> reply)
{
    m_reply = std::move(reply);
    m_cards.clear();
    m_notes.clear();
    m_lines.clear();
    QSet<int> decks;
    if (m_reply) {
        for (const Card &card : m_reply->cards) {
            m_cards.append(m_items.card(card));
            decks.insert(card.deckId);
        }
        for (const NoteHit &note : m_reply->notes)
            m_notes.append(m_items.note(note));
        for (const LineHit &line : m_reply->lines)
            m_lines.append(m_items.line(line));
    }
    m_cardDecks = int(decks.size());
}

QString PaletteBuilder::trimmed(const QString &query)
{
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype begin = 0;
    qsizetype end = query.size();
    while (begin < end && blank(query.at(begin)))
        ++begin;
    while (end > begin && blank(query.at(end - 1)))
        --end;
    return query.sliced(begin, end - begin);
}

QList<PaletteItem> PaletteBuilder::commands() const
{
    return m_commands.matching(PaletteQuery(QString()));
}

QList<PaletteSection> PaletteBuilder::startingPoint() const
{
    const PaletteContext &context = m_items.context();
    const auto shared = m_items.sharedContext();
    QList<PaletteSection> sections;
    if (context.deck) {
        const DeckSummary deck = *context.deck;
        PaletteItem write = PaletteItem::action(
            QStringLiteral("write-empty"), QStringLiteral("pencil"), palettetexts::writeEmpty(),
            // The palette stays, its field ready for the word.
            [] { return PaletteOutcome::Stay; });
        write.subtitle = palettetexts::writeEmptySubtitle();
        PaletteItem study =
            PaletteItem::action(QStringLiteral("study-here"), QStringLiteral("play.fill"),
                                palettetexts::study(deck.name), [shared, deck] {
                                    paletteCall(shared->study, deck);
                                    return PaletteOutcome::Close;
                                });
        study.meta = palettetexts::cardCount(deck.cardCount);
        sections.append(
            {palettetexts::inDeck(deck.name),
             {},
             {write,
              PaletteItem::action(QStringLiteral("import"), QStringLiteral("doc.on.clipboard"),
                                  palettetexts::addFromText(),
                                  [shared, deck] {
                                      paletteCall(shared->addFromText, deck);
                                      return PaletteOutcome::Close;
                                  }),
              PaletteItem::action(QStringLiteral("newnote"), QStringLiteral("doc.badge.plus"),
                                  palettetexts::newNote(),
                                  [shared, deck] {
                                      paletteCall(shared->newNote, deck);
                                      return PaletteOutcome::Close;
                                  }),
              study}});
    } else {
        sections.append(
            {palettetexts::start(),
             {},
             {PaletteItem::action(QStringLiteral("newdeck"),
                                  QStringLiteral("plus.rectangle.on.rectangle"),
                                  palettetexts::newDeck(),
                                  [shared] {
                                      paletteCall(shared->newDeck);
                                      return PaletteOutcome::Close;
                                  }),
              PaletteItem::action(QStringLiteral("newfolder"), QStringLiteral("folder.badge.plus"),
                                  palettetexts::newFolder(), [shared] {
                                      paletteCall(shared->newFolder, std::nullopt);
                                      return PaletteOutcome::Close;
                                  })}});
    }
    QList<PaletteItem> recents;
    for (const PaletteRecent &recent : context.recents) {
        if (recents.size() == recentsShown)
            break;
        if (std::optional<PaletteItem> item = m_items.recent(recent))
            recents.append(std::move(*item));
    }
    appendSection(sections, palettetexts::jumpBackTo(), std::move(recents));
    return sections;
}

QList<PaletteSection> PaletteBuilder::sections(const QString &typed) const
{
    const QString query = trimmed(typed);
    if (query.isEmpty())
        return startingPoint();
    if (query == QLatin1String("?"))
        return PaletteShortcuts::sections();

    const PaletteContext &context = m_items.context();
    const PaletteQuery matcher(query);

    QList<PaletteItem> leadingCommands;
    QList<PaletteItem> trailingCommands;
    for (PaletteItem &command : m_commands.matching(matcher))
        (matcher.leads(command.title) ? leadingCommands : trailingCommands)
            .append(std::move(command));

    QList<PaletteItem> leadingPages;
    QList<PaletteItem> trailingPages;
    for (const ManualPage &page : m_manual) {
        if (!matcher.matches(page.question + u' ' + page.title))
            continue;
        (matcher.leads(page.question) ? leadingPages : trailingPages)
            .append(m_items.manualPage(page));
    }

    // Is some found card's term the query itself (case and accents aside)?
    bool exactCard = false;
    const QString foldedQuery = paletteFold(query);
    if (m_reply)
        for (const Card &card : m_reply->cards)
            if (paletteFold(card.term) == foldedQuery) {
                exactCard = true;
                break;
            }

    QList<PaletteItem> folders;
    for (const Folder &folder : context.folders)
        if (matcher.matches(folder.name))
            folders.append(m_items.folder(folder));
    QList<PaletteItem> decks;
    for (const DeckSummary &deck : context.decks)
        if (matcher.matches(deck.name))
            decks.append(m_items.deck(deck));

    const bool foundNothing = leadingCommands.isEmpty() && trailingCommands.isEmpty() &&
                              m_cards.isEmpty() && m_notes.isEmpty() && m_lines.isEmpty() &&
                              decks.isEmpty() && folders.isEmpty();
    QList<PaletteItem> writing = m_items.writing(query);

    QList<PaletteSection> sections;
    const bool leadingShown = !leadingCommands.isEmpty();
    appendSection(sections, palettetexts::commands(), std::move(leadingCommands));
    appendSection(sections, palettetexts::manual(), std::move(leadingPages));
    if (foundNothing)
        appendSection(sections, palettetexts::notInAnyDeck(), writing);
    appendSection(sections, palettetexts::cards(), m_cards,
                  palettetexts::cardsFound(int(m_cards.size()), m_cardDecks));
    appendSection(sections, palettetexts::decks(), std::move(decks));
    appendSection(sections, palettetexts::folders(), std::move(folders));
    appendSection(sections, palettetexts::notes(), m_notes);
    appendSection(sections, palettetexts::lines(), m_lines);
    appendSection(sections, leadingShown ? palettetexts::moreCommands() : palettetexts::commands(),
                  std::move(trailingCommands));
    appendSection(sections, palettetexts::manual(), std::move(trailingPages));
    if (!foundNothing && !exactCard)
        appendSection(sections, palettetexts::doSection(), std::move(writing));
    return sections;
}

} // namespace orvel
