#include "palette/palettecommands.h"

#include "library/shelftexts.h"
#include "manual/manualbook.h"
#include "palette/palettekeys.h"
#include "palette/palettequery.h"
#include "palette/palettetexts.h"

namespace orvel {

namespace {

// Collects the commands of one list whose titles match.
class CommandList {
public:
    explicit CommandList(const PaletteQuery &query) : m_query(query) {}

    // Adds the command made by `make` when its title matches.
    template <typename Make> void offer(const QString &title, Make make)
    {
        if (!m_query.matches(title))
            return;
        PaletteItem item = make();
        item.title = title;
        m_items.append(std::move(item));
    }
    QList<PaletteItem> take() { return std::move(m_items); }

private:
    const PaletteQuery &m_query;
    QList<PaletteItem> m_items;
};

PaletteItem command(const QString &id, const QString &glyph, std::function<PaletteOutcome()> run,
                    const QString &shortcut = {})
{
    PaletteItem item;
    item.id = id;
    item.glyph = glyph;
    item.run = std::move(run);
    item.shortcut = shortcut;
    return item;
}

} // namespace

QList<PaletteItem> PaletteCommands::matching(const PaletteQuery &query) const
{
    const PaletteContext &context = m_items.context();
    // The actions hold the context for as long as their rows live.
    const std::shared_ptr<const PaletteContext> ctx = m_items.sharedContext();
    const PaletteStages &stages = m_items.stages();
    const std::optional<DeckSummary> &open = context.deck;
    const auto closing = [](auto action) {
        return [action] {
            action();
            return PaletteOutcome::Close;
        };
    };
    CommandList list(query);

    std::optional<Folder> openFolder;
    if (open && open->folderId)
        for (const Folder &folder : context.folders)
            if (folder.id == *open->folderId)
                openFolder = folder;

    if (open) {
        const DeckSummary deck = *open;
        list.offer(palettetexts::study(deck.name), [&] {
            PaletteItem item = command(
                QStringLiteral("cmd-study-here"), QStringLiteral("play.fill"),
                closing([ctx, deck] { paletteCall(ctx->study, deck); }), palettekeys::study());
            item.meta = palettetexts::cardCount(deck.cardCount);
            return item;
        });
    }
    if (openFolder && context.canStudyFolder && context.canStudyFolder(*openFolder)) {
        const Folder folder = *openFolder;
        list.offer(palettetexts::studyFolder(folder.name), [&] {
            return command(QStringLiteral("cmd-study-folder-") + QString::number(folder.id),
                           QStringLiteral("play.fill"),
                           closing([ctx, folder] { paletteCall(ctx->studyFolder, folder); }));
        });
    }
    for (const DeckSummary &deck : context.decks) {
        if ((open && open->id == deck.id) || deck.cardCount < 1)
            continue;
        list.offer(palettetexts::study(deck.name), [&] {
            PaletteItem item = command(QStringLiteral("cmd-study-") + QString::number(deck.id),
                                       QStringLiteral("play.fill"),
                                       closing([ctx, deck] { paletteCall(ctx->study, deck); }));
            item.meta = palettetexts::cardCount(deck.cardCount);
            return item;
        });
    }
    list.offer(palettetexts::studyPick(), [&] {
        PaletteItem item =
            command(QStringLiteral("cmd-study-pick"), QStringLiteral("play.fill"), {});
        item.stage = [stages] { return stages.studyPicker(); };
        return item;
    });

    if (open) {
        const DeckSummary deck = *open;
        const QString id = QString::number(deck.id);
        list.offer(palettetexts::moveTo(deck.name), [&] {
            PaletteItem item =
                command(QStringLiteral("mv-pick-") + id, QStringLiteral("folder"), {});
            item.stage = [stages, deck] { return stages.folderPicker(deck); };
            return item;
        });
        for (const Folder &folder : context.folders) {
            if (deck.folderId == folder.id)
                continue;
            list.offer(palettetexts::moveInto(deck.name, folder.name), [&] {
                return command(QStringLiteral("mv-") + QString::number(folder.id) + u'-' + id,
                               QStringLiteral("folder"), closing([ctx, deck, to = folder.id] {
                                   paletteCall(ctx->move, deck, to);
                               }));
            });
        }
        if (openFolder)
            list.offer(palettetexts::moveOut(deck.name, openFolder->name), [&] {
                return command(
                    QStringLiteral("mv-out-") + id,
                    QStringLiteral("rectangle.portrait.and.arrow.right"),
                    closing([ctx, deck] { paletteCall(ctx->move, deck, std::nullopt); }));
            });
        list.offer(shelftexts::newFolderWith(deck.name), [&] {
            return command(QStringLiteral("mv-new-") + id, QStringLiteral("folder.badge.plus"),
                           closing([ctx, deck] { paletteCall(ctx->newFolder, deck); }));
        });
    }

    list.offer(palettetexts::newFolder(), [&] {
        return command(QStringLiteral("cmd-newfolder"), QStringLiteral("folder.badge.plus"),
                       closing([ctx] { paletteCall(ctx->newFolder, std::nullopt); }),
                       palettekeys::newFolder());
    });
    list.offer(palettetexts::newDeck(), [&] {
        return command(QStringLiteral("cmd-newdeck"), QStringLiteral("plus.rectangle.on.rectangle"),
                       closing([ctx] { paletteCall(ctx->newDeck); }), palettekeys::newDeck());
    });
    if (open) {
        const DeckSummary deck = *open;
        list.offer(palettetexts::newNote(), [&] {
            return command(QStringLiteral("cmd-newnote"), QStringLiteral("doc.badge.plus"),
                           closing([ctx, deck] { paletteCall(ctx->newNote, deck); }),
                           palettekeys::newNote());
        });
        list.offer(palettetexts::addFromText(), [&] {
            return command(QStringLiteral("cmd-import"), QStringLiteral("doc.on.clipboard"),
                           closing([ctx, deck] { paletteCall(ctx->addFromText, deck); }));
        });
    }
    static const std::pair<const char16_t *, const char16_t *> modes[] = {
        {u"dark", u"moon"}, {u"light", u"sun.max"}, {u"system", u"circle.lefthalf.filled"}};
    for (const auto &pair : modes) {
        // Named copies: clang 14 cannot capture a structured binding in the lambda below.
        const QString mode = QString::fromUtf16(pair.first);
        const QString glyph = QString::fromUtf16(pair.second);
        // Choosing the appearance already in force would change nothing.
        if (mode == context.appearance)
            continue;
        list.offer(palettetexts::appearance(mode), [&] {
            return command(QStringLiteral("cmd-appearance-") + mode, glyph,
                           closing([ctx, mode] { paletteCall(ctx->chooseAppearance, mode); }));
        });
    }
    list.offer(palettetexts::settings(), [&] {
        return command(QStringLiteral("cmd-settings"), QStringLiteral("gearshape"),
                       closing([ctx] { paletteCall(ctx->openSettings); }), palettekeys::settings());
    });
    list.offer(palettetexts::orvelManual(), [&] {
        return command(QStringLiteral("cmd-manual"), QStringLiteral("book.closed"), closing([ctx] {
                           paletteCall(ctx->openManual, ManualBook::firstPage(), QString());
                       }));
    });
    list.offer(palettetexts::help(), [&] {
        PaletteItem item = command(
            QStringLiteral("cmd-help"), QStringLiteral("questionmark.circle"),
            closing([ctx] { paletteCall(ctx->openManual, ManualBook::helpPage(), QString()); }));
        item.subtitle = palettetexts::helpSubtitle();
        return item;
    });
    return list.take();
}

} // namespace orvel
