#pragma once

#include "app/servercalls.h"
#include "records/card.h"
#include "records/decksummary.h"
#include "records/folder.h"

#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;
class Services;
class CardWriter;

// "Add to a deck": writes one card into a deck the learner picks, from anywhere in the app (the
// home screen with no deck open, the quickAdd command, the palette). It shows only the
// narration while the card is written; on success it reports the deck and the card and closes,
// on failure it stays open with its text so the learner can change the word or the deck.
class QuickAddSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int deckId READ deckIdOrZero WRITE setDeckId NOTIFY deckIdChanged)
    Q_PROPERTY(QVariantList deckChoices READ deckChoices NOTIFY choicesChanged)
    Q_PROPERTY(int chosenIndex READ chosenIndex NOTIFY deckIdChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString narration READ narration NOTIFY narrationChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(bool canWrite READ canWrite NOTIFY canWriteChanged)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString deckLabel READ deckLabel CONSTANT)
    Q_PROPERTY(QString writeLabel READ writeLabel CONSTANT)
    Q_PROPERTY(QString cancelLabel READ cancelLabel CONSTANT)
public:
    // On the shared client (QML); tests give their own.
    explicit QuickAddSheet(QObject *parent = nullptr);
    ~QuickAddSheet() override;

    QString text() const { return m_text; }
    void setText(const QString &text);

    const QList<DeckSummary> &decks() const { return m_decks; }
    const QList<Folder> &folders() const { return m_folders; }
    // The decks to choose from and the folders that group them. A chosen deck that is no longer
    // among them is forgotten.
    void setDecks(const QList<DeckSummary> &decks, const QList<Folder> &folders);
    // Fetches the decks and folders from the server; a failure shows its message.
    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    std::optional<int> deckId() const { return m_deckId; }
    int deckIdOrZero() const { return m_deckId.value_or(0); }
    // 0, or an id that is none of the decks, chooses none.
    void setDeckId(int deckId);

    // The chooser's entries in order: "Pick one" (id 0), the decks in no folder, then one section
    // per folder (a heading entry with section true, then its decks). Each entry is
    // {id, name, section, indent}.
    QVariantList deckChoices() const;
    // The entry of deckChoices that holds the chosen deck ("Pick one" when none).
    int chosenIndex() const;

    bool loading() const { return m_calls.working(); }
    bool working() const;
    QString narration() const { return m_narration; }
    QString trouble() const { return m_calls.trouble(); }
    // A deck is chosen, there is a word, and no card is being written.
    bool canWrite() const;

    QString title() const;
    QString deckLabel() const;
    QString writeLabel() const;
    QString cancelLabel() const;

    // "Write the card". With no deck chosen, an empty word, or a card on its way: nothing.
    Q_INVOKABLE void add();
    // "Cancel": closes the sheet.
    Q_INVOKABLE void cancel();

signals:
    void textChanged();
    void deckIdChanged();
    void choicesChanged();
    void loadingChanged();
    void workingChanged();
    void narrationChanged();
    void troubleChanged();
    void canWriteChanged();
    // The card was written into the deck.
    void added(const orvel::DeckSummary &deck, const orvel::Card &card);
    // The sheet is done (written, or cancelled).
    void closed();

private:
    Services &m_services;
    CardWriter *m_writer = nullptr;
    QString m_text;
    QList<DeckSummary> m_decks;
    QList<Folder> m_folders;
    std::optional<int> m_deckId;
    QString m_narration;
    // The deck the card on its way goes to.
    DeckSummary m_writingInto;
    ServerCalls m_calls{this, &QuickAddSheet::loadingChanged, &QuickAddSheet::troubleChanged};
};

} // namespace orvel
