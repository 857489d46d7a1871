#pragma once

// Decks, folders and cards for palette tests, and a context whose actions write what they were
// asked to do into a log.
#include "palette/palettecontext.h"
#include "palette/palettesection.h"

#include <memory>
#include <QStringList>

namespace palettefixtures {

inline orvel::DeckSummary deck(int id, const QString &name, int cards = 0, int known = 0,
                               std::optional<int> folder = std::nullopt,
                               const QString &language = QStringLiteral("de"))
{
    orvel::DeckSummary deck;
    deck.id = id;
    deck.name = name;
    deck.cardCount = cards;
    deck.knownCount = known;
    deck.folderId = folder;
    deck.language = language;
    return deck;
}

inline orvel::Folder folder(int id, const QString &name, int decks = 0)
{
    orvel::Folder folder;
    folder.id = id;
    folder.name = name;
    folder.deckCount = decks;
    return folder;
}

inline orvel::Card card(int id, int deckId, const QString &term,
                        const QString &partOfSpeech = QStringLiteral("noun"),
                        const QString &gender = {}, const QString &translation = {})
{
    orvel::Card card;
    card.id = id;
    card.deckId = deckId;
    card.term = term;
    card.partOfSpeech = partOfSpeech;
    card.gender = gender;
    card.translation = translation;
    return card;
}

// A context with every action set, each appending a line such as "study 3" to `log`.
inline orvel::PaletteContext recordingContext(std::shared_ptr<QStringList> log)
{
    using namespace orvel;
    const auto put = [log](const QString &line) { log->append(line); };
    const auto n = [](int value) { return QString::number(value); };
    PaletteContext context;
    context.appearance = QStringLiteral("system");
    context.openDeck = [=](const DeckSummary &d) { put("openDeck " + n(d.id)); };
    context.openCard = [=](const DeckSummary &d, const Card &c) {
        put("openCard " + n(d.id) + " " + n(c.id));
    };
    context.openCardID = [=](const DeckSummary &d, int cardId) {
        put("openCardID " + n(d.id) + " " + n(cardId));
    };
    context.openNote = [=](const DeckSummary &d, int noteId) {
        put("openNote " + n(d.id) + " " + n(noteId));
    };
    context.revealFolder = [=](const Folder &f) { put("revealFolder " + n(f.id)); };
    context.writeCard = [=](const QString &term, const DeckSummary &d) {
        put("writeCard " + term + " " + n(d.id));
    };
    context.addFromText = [=](const DeckSummary &d) { put("addFromText " + n(d.id)); };
    context.newNote = [=](const DeckSummary &d) { put("newNote " + n(d.id)); };
    context.newDeck = [=] { put("newDeck"); };
    context.study = [=](const DeckSummary &d) { put("study " + n(d.id)); };
    context.studyFolder = [=](const Folder &f) { put("studyFolder " + n(f.id)); };
    context.canStudyFolder = [](const Folder &f) { return f.deckCount > 0; };
    context.move = [=](const DeckSummary &d, std::optional<int> to) {
        put("move " + n(d.id) + " " + (to ? n(*to) : QStringLiteral("out")));
    };
    context.newFolder = [=](const std::optional<DeckSummary> &d) {
        put("newFolder " + (d ? n(d->id) : QStringLiteral("none")));
    };
    context.hear = [=](const QString &text, const QString &language) {
        put("hear " + text + " " + language);
    };
    context.rewrite = [=](const Card &c) { put("rewrite " + n(c.id)); };
    context.deleteCard = [=](const Card &c) { put("deleteCard " + n(c.id)); };
    context.openManual = [=](const QString &page, const QString &anchor) {
        put("openManual " + page + (anchor.isEmpty() ? QString() : "#" + anchor));
    };
    context.chooseAppearance = [=](const QString &mode) { put("appearance " + mode); };
    context.openSettings = [=] { put("settings"); };
    return context;
}

inline QStringList titlesOf(const QList<orvel::PaletteSection> &sections)
{
    QStringList titles;
    for (const orvel::PaletteSection &section : sections)
        titles.append(section.title);
    return titles;
}

inline QStringList idsOf(const QList<orvel::PaletteItem> &items)
{
    QStringList ids;
    for (const orvel::PaletteItem &item : items)
        ids.append(item.id);
    return ids;
}

inline QStringList idsOf(const orvel::PaletteSection &section)
{
    return idsOf(section.items);
}

// The section with this title (the first one), or an empty one.
inline orvel::PaletteSection sectionTitled(const QList<orvel::PaletteSection> &sections,
                                           const QString &title)
{
    for (const orvel::PaletteSection &section : sections)
        if (section.title == title)
            return section;
    return {};
}

} // namespace palettefixtures
