#pragma once

#include "app/servercalls.h"
#include "library/cardfilter.h"
#include "records/card.h"
#include "records/deck.h"

#include <optional>
#include <QAbstractListModel>
#include <qcoro/qcorotask.h>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;

// The cards of the open deck as the list shows them: the deck loaded from the server, narrowed by
// kind, by a search word and by the learned filter, with the chosen card. Rows are the shown
// cards in deck order. Changes to a card (a rewrite, an answer) and deletions go through it so the
// list, its filters and the selection stay in step.
class CardList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The card list belongs to HomeView")
    Q_PROPERTY(int deckId READ deckId NOTIFY deckChanged)
    Q_PROPERTY(bool hasDeck READ hasDeck NOTIFY deckChanged)
    Q_PROPERTY(QString deckName READ deckName NOTIFY deckChanged)
    Q_PROPERTY(QString language READ language NOTIFY deckChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(int total READ total NOTIFY cardsChanged)
    Q_PROPERTY(int learnedCount READ learnedCount NOTIFY cardsChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY cardsChanged)
    Q_PROPERTY(QVariantList kindOptions READ kindOptions NOTIFY cardsChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY kindChanged)
    Q_PROPERTY(QString kindLabel READ kindLabel NOTIFY kindChanged)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(LearnedFilter learned READ learned WRITE setLearned NOTIFY learnedChanged)
    Q_PROPERTY(int selectedCardId READ selectedCardId WRITE select NOTIFY selectionChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)
    Q_PROPERTY(orvel::Card selectedCard READ selectedCard NOTIFY selectionChanged)
public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        TermRole,
        ArticleRole,
        TranslationRole,
        ReadingRole,
        KindRole, // raw WordType value, "noun"
        BadgeRole,
        LearnedRole,
    };
    Q_ENUM(Role)
    // "Learned" / "Not learned yet", or none.
    enum class LearnedFilter { Any, Learned, NotLearned };
    Q_ENUM(LearnedFilter)

    explicit CardList(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Loads the deck (the list shows nothing of the previous deck meanwhile); a failure leaves
    // no deck and the error's message in trouble. A later load supersedes an earlier one still
    // on its way.
    QCoro::Task<> load(int deckId);
    Q_INVOKABLE void open(int deckId);
    // Shows no deck.
    Q_INVOKABLE void close();

    int deckId() const { return m_deck ? m_deck->id : m_loadingId; }
    bool hasDeck() const { return m_deck.has_value(); }
    const std::optional<Deck> &deck() const { return m_deck; }
    QString deckName() const { return m_deck ? m_deck->name : QString(); }
    QString language() const { return m_deck ? m_deck->language : QString(); }
    bool loading() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }
    int total() const { return m_deck ? int(m_deck->cards.size()) : 0; }
    int learnedCount() const;
    // "42 cards · 17 learned".
    QString summary() const;
    // The kind menu: "All kinds" (value "") and one entry per kind among the cards, in kind
    // order, labelled in the plural. Each entry is {value, label}.
    QVariantList kindOptions() const;
    int count() const { return int(m_shown.size()); }

    QString kind() const;
    // "" for all kinds, else a raw kind ("noun"); an unknown text means all kinds.
    void setKind(const QString &kind);
    QString kindLabel() const;
    QString query() const { return m_query; }
    void setQuery(const QString &query);
    LearnedFilter learned() const { return m_learned; }
    void setLearned(LearnedFilter learned);

    int selectedCardId() const { return m_selection.value_or(0); }
    bool hasSelection() const { return m_selection.has_value(); }
    // Chooses a card by id; an id not in the deck (0 included) clears the selection.
    void select(int cardId);
    Q_INVOKABLE void clearSelection() { select(0); }
    Card selectedCard() const;

    // Row of the shown cards holding the card, or -1.
    Q_INVOKABLE int rowOf(int cardId) const;
    // The card at a shown row (the first of the shown cards is row 0).
    Card cardAt(int row) const;
    // Its id, or 0 outside the shown rows.
    Q_INVOKABLE int cardIdAt(int row) const { return cardAt(row).id; }

    // Puts the server's new version of a card in place of the old one (a rewrite, an answer).
    // Cards of another deck, or no longer in the list, are ignored.
    Q_INVOKABLE void replaceCard(const orvel::Card &card);
    // Takes the card out of the deck's list, keeping the order of the others, and clears the
    // selection if it was this card. Gives the card and the index it had in the deck.
    std::optional<std::pair<Card, qsizetype>> takeCard(int cardId);
    // Puts a card back into its deck's list at the index, or at the end when the list has since
    // become shorter. Nothing happens when another deck is open or the card is there already.
    bool restoreCard(const Card &card, qsizetype index);

signals:
    void deckChanged();
    void loadingChanged();
    void troubleChanged();
    void cardsChanged();
    void countChanged();
    void kindChanged();
    void queryChanged();
    void learnedChanged();
    void selectionChanged();
    // A deck finished loading into the list.
    void deckLoaded(int deckId);
    // A card of the open deck changed (the new version is in the list).
    void cardReplaced(const orvel::Card &card);

private:
    void setDeck(std::optional<Deck> deck);
    // Recomputes the shown rows after a filter or the deck changed.
    void refilter();
    qsizetype deckIndexOf(int cardId) const;

    APIClient &m_api;
    ServerCalls m_calls;
    std::optional<Deck> m_deck;
    int m_loadingId = 0;
    CardFilter m_filter;
    std::optional<WordType> m_kind;
    QString m_query;
    LearnedFilter m_learned = LearnedFilter::Any;
    std::optional<int> m_selection;
    // Deck indexes of the shown cards.
    QList<qsizetype> m_shown;
};

} // namespace orvel
