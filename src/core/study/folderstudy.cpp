#include "study/folderstudy.h"

#include "server/apiclient.h"

namespace orvel {

QList<DeckSummary> FolderStudy::decksIn(const Folder &folder, const QList<DeckSummary> &decks)
{
    QList<DeckSummary> filed;
    for (const DeckSummary &deck : decks)
        if (deck.folderId == folder.id)
            filed.append(deck);
    return filed;
}

bool FolderStudy::canStudy(const Folder &folder, const QList<DeckSummary> &decks)
{
    const QList<DeckSummary> filed = decksIn(folder, decks);
    return std::any_of(filed.begin(), filed.end(),
                       [](const DeckSummary &deck) { return deck.cardCount > 0; });
}

QCoro::Task<StudySet> FolderStudy::gather(APIClient &api, Folder folder, QList<DeckSummary> decks)
{
    QList<int> ids;
    for (const DeckSummary &deck : decksIn(folder, decks))
        ids.append(deck.id);
    co_return co_await gather(api, folder.name, ids);
}

QCoro::Task<StudySet> FolderStudy::gather(APIClient &api, QString title, QList<int> deckIds)
{
    StudySet set;
    QStringList names;
    for (int id : deckIds) {
        const Deck deck = co_await api.deck(id);
        names.append(deck.name);
        set.languages.insert(deck.id, deck.language);
        for (Card card : deck.cards) {
            // The deck's id decides the card's language; make sure the card carries it.
            card.deckId = deck.id;
            set.cards.append(card);
        }
    }
    set.title = title.isEmpty() ? names.join(QStringLiteral(", ")) : title;
    co_return set;
}

QList<int> FolderStudy::parseIds(const QString &text)
{
    QList<int> ids;
    for (const QString &part : text.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int id = part.trimmed().toInt(&ok);
        if (ok && id > 0 && !ids.contains(id))
            ids.append(id);
    }
    return ids;
}

} // namespace orvel
