#include "palette/palettestages.h"

#include "library/shelftexts.h"
#include "palette/palettequery.h"
#include "palette/palettetexts.h"
#include "records/wordtype.h"

namespace orvel {

namespace {

PaletteStage stageOf(const QString &title, std::function<QList<PaletteSection>()> all)
{
    return {title, [all = std::move(all)](const QString &query) {
                return PaletteStages::filtered(all(), query);
            }};
}

} // namespace

PaletteStages::PaletteStages(std::shared_ptr<const PaletteContext> context)
    : m_context(std::move(context))
{}

QList<PaletteSection> PaletteStages::filtered(const QList<PaletteSection> &sections,
                                              const QString &query)
{
    const PaletteQuery matcher(query);
    QList<PaletteSection> kept;
    for (const PaletteSection &section : sections) {
        PaletteSection matching{section.title, section.note, {}};
        for (const PaletteItem &item : section.items)
            if (matcher.matches(item.title))
                matching.items.append(item);
        if (!matching.items.isEmpty())
            kept.append(std::move(matching));
    }
    return kept;
}

QString PaletteStages::cardTitle(const Card &card)
{
    const QString article = card.article();
    if (article.isEmpty())
        return card.term;
    QString title;
    title.reserve(article.size() + 1 + card.term.size());
    return title.append(article).append(u' ').append(card.term);
}

PaletteRecent PaletteStages::cardRecent(const Card &card)
{
    return PaletteRecent::card({card.deckId, card.id, card.term, card.translation,
                                wordTypeRawValue(wordTypeFromPartOfSpeech(card.partOfSpeech))});
}

PaletteStage PaletteStages::card(const DeckSummary &deck, const Card &card) const
{
    const auto context = m_context;
    return stageOf(palettetexts::whatToDo(), [context, deck, card] {
        PaletteItem open =
            PaletteItem::action(QStringLiteral("c-open"), QStringLiteral("arrow.up.forward.square"),
                                palettetexts::openCard(), [context, deck, card] {
                                    paletteCall(context->openCard, deck, card);
                                    return PaletteOutcome::Close;
                                });
        open.recent = cardRecent(card);
        PaletteItem hear =
            PaletteItem::action(QStringLiteral("c-hear"), QStringLiteral("speaker.wave.2"),
                                palettetexts::hearIt(), [context, deck, card] {
                                    paletteCall(context->hear, card.term, deck.language);
                                    return PaletteOutcome::Stay;
                                });
        PaletteItem rewrite = PaletteItem::action(QStringLiteral("c-rewrite"),
                                                  QStringLiteral("arrow.triangle.2.circlepath"),
                                                  palettetexts::rewriteCard(), [context, card] {
                                                      paletteCall(context->rewrite, card);
                                                      return PaletteOutcome::Close;
                                                  });
        PaletteItem remove =
            PaletteItem::action(QStringLiteral("c-delete"), QStringLiteral("trash"),
                                palettetexts::deleteCard(), [context, card] {
                                    paletteCall(context->deleteCard, card);
                                    return PaletteOutcome::Close;
                                });
        remove.destructive = true;
        remove.confirm = true;
        return QList<PaletteSection>{{cardTitle(card), {}, {open, hear, rewrite, remove}}};
    });
}

PaletteStage PaletteStages::deck(const DeckSummary &deck) const
{
    const auto context = m_context;
    return stageOf(palettetexts::whatToDo(), [context, deck] {
        PaletteItem open =
            PaletteItem::action(QStringLiteral("d-open"), QStringLiteral("arrow.up.forward.square"),
                                palettetexts::openDeck(deck.name), [context, deck] {
                                    paletteCall(context->openDeck, deck);
                                    return PaletteOutcome::Close;
                                });
        open.recent = PaletteRecent::deck(deck.id);
        const PaletteItem study =
            PaletteItem::action(QStringLiteral("d-study"), QStringLiteral("play.fill"),
                                palettetexts::study(deck.name), [context, deck] {
                                    paletteCall(context->study, deck);
                                    return PaletteOutcome::Close;
                                });
        const PaletteItem import =
            PaletteItem::action(QStringLiteral("d-import"), QStringLiteral("doc.on.clipboard"),
                                palettetexts::addFromText(), [context, deck] {
                                    paletteCall(context->addFromText, deck);
                                    return PaletteOutcome::Close;
                                });
        return QList<PaletteSection>{{deck.name, {}, {open, study, import}}};
    });
}

PaletteStage PaletteStages::folder(const Folder &folder) const
{
    const auto context = m_context;
    return stageOf(palettetexts::whatToDo(), [context, folder] {
        QList<PaletteItem> items;
        // A folder with no cards in it has nothing to study: no row that would do nothing.
        if (context->canStudyFolder && context->canStudyFolder(folder))
            items.append(PaletteItem::action(QStringLiteral("f-study"), QStringLiteral("play.fill"),
                                             palettetexts::studyAll(), [context, folder] {
                                                 paletteCall(context->studyFolder, folder);
                                                 return PaletteOutcome::Close;
                                             }));
        items.append(PaletteItem::action(QStringLiteral("f-reveal"), QStringLiteral("sidebar.left"),
                                         palettetexts::showInSidebar(), [context, folder] {
                                             paletteCall(context->revealFolder, folder);
                                             return PaletteOutcome::Close;
                                         }));
        return QList<PaletteSection>{{folder.name, {}, items}};
    });
}

PaletteStage PaletteStages::folderPicker(const DeckSummary &deck) const
{
    const auto context = m_context;
    return stageOf(palettetexts::whichFolder(), [context, deck] {
        QList<PaletteItem> items;
        // The deck's own folder, and "No Folder" for a loose deck, would move nothing.
        for (const Folder &folder : context->folders) {
            if (deck.folderId == folder.id)
                continue;
            items.append(PaletteItem::action(QStringLiteral("fp-") + QString::number(folder.id),
                                             QStringLiteral("folder"), folder.name,
                                             [context, deck, folder] {
                                                 paletteCall(context->move, deck, folder.id);
                                                 return PaletteOutcome::Close;
                                             }));
        }
        if (deck.folderId)
            items.append(PaletteItem::action(QStringLiteral("fp-none"),
                                             QStringLiteral("rectangle.portrait.and.arrow.right"),
                                             palettetexts::noFolder(), [context, deck] {
                                                 paletteCall(context->move, deck, std::nullopt);
                                                 return PaletteOutcome::Close;
                                             }));
        items.append(PaletteItem::action(QStringLiteral("fp-new"),
                                         QStringLiteral("folder.badge.plus"),
                                         palettetexts::newFolder(), [context, deck] {
                                             paletteCall(context->newFolder, deck);
                                             return PaletteOutcome::Close;
                                         }));
        return QList<PaletteSection>{{palettetexts::folders(), {}, items}};
    });
}

PaletteStage PaletteStages::deckPicker(const QString &term) const
{
    const auto context = m_context;
    return stageOf(palettetexts::whichDeck(), [context, term] {
        QList<PaletteItem> same;
        QList<PaletteItem> other;
        for (const DeckSummary &deck : context->decks) {
            if (context->deck && context->deck->id == deck.id)
                continue;
            PaletteItem item =
                PaletteItem::action(QStringLiteral("pick-") + QString::number(deck.id),
                                    QStringLiteral("deck"), deck.name, [context, term, deck] {
                                        paletteCall(context->writeCard, term, deck);
                                        return PaletteOutcome::Close;
                                    });
            item.meta = palettetexts::cardCount(deck.cardCount);
            (context->deck && context->deck->language == deck.language ? same : other).append(item);
        }
        // With no deck open there is no language to compare with: one list of decks.
        if (!context->deck)
            return QList<PaletteSection>{{palettetexts::decks(), {}, other}};
        return QList<PaletteSection>{{palettetexts::sameLanguage(), {}, same},
                                     {palettetexts::otherLanguages(), {}, other}};
    });
}

PaletteStage PaletteStages::studyPicker() const
{
    const auto context = m_context;
    return stageOf(palettetexts::whichDeck(), [context] {
        QList<PaletteItem> items;
        for (const DeckSummary &deck : context->decks) {
            if (deck.cardCount < 1)
                continue;
            PaletteItem item =
                PaletteItem::action(QStringLiteral("study-") + QString::number(deck.id),
                                    QStringLiteral("play.fill"), deck.name, [context, deck] {
                                        paletteCall(context->study, deck);
                                        return PaletteOutcome::Close;
                                    });
            item.meta = palettetexts::cardCount(deck.cardCount);
            items.append(item);
        }
        return QList<PaletteSection>{{palettetexts::decks(), {}, items}};
    });
}

} // namespace orvel
