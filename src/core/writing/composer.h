#pragma once

#include "app/servercalls.h"
#include "library/cardlist.h"
#include "records/byte.h"
#include "records/card.h"
#include "records/landed.h"
#include "records/notesummary.h"
#include "writing/bytesheet.h"
#include "writing/importsheet.h"
#include "writing/writing.h"
#include "writing/writingsheet.h"

#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class Services;
class CardWriter;

// The input line at the head of an open deck's card list. Return writes a card from the typed
// word while the writing view shows its parts arriving; Ctrl+Return asks for a short lesson on
// the typed topic and offers it in a lesson sheet. Finished cards are handed to the list
// (cardWritten, cardsLanded) to go at its front.
class Composer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int deckId READ deckId WRITE setDeckId NOTIFY deckChanged)
    Q_PROPERTY(QString language READ language WRITE setLanguage NOTIFY deckChanged)
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY inputChanged)
    Q_PROPERTY(bool adding READ adding NOTIFY addingChanged)
    Q_PROPERTY(bool hasWriting READ hasWriting NOTIFY writingChanged)
    Q_PROPERTY(orvel::Writing writing READ writingOrEmpty NOTIFY writingChanged)
    Q_PROPERTY(bool showsWriting READ showsWriting NOTIFY writingChanged)
    Q_PROPERTY(orvel::WritingSheet *progress READ progress CONSTANT)
    Q_PROPERTY(QString narration READ narration NOTIFY narrationChanged)
    Q_PROPERTY(QString refused READ refused NOTIFY refusedChanged)
    Q_PROPERTY(bool asking READ asking NOTIFY askingChanged)
    Q_PROPERTY(QString topicAsked READ topicAsked NOTIFY askingChanged)
    Q_PROPERTY(QString askingText READ askingText NOTIFY askingChanged)
    Q_PROPERTY(orvel::ByteSheet *offer READ offer NOTIFY offerChanged)
    Q_PROPERTY(QList<orvel::NoteSummary> deckNotes READ deckNotes NOTIFY offerChanged)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString addHelp READ addHelp CONSTANT)
    Q_PROPERTY(QString teachHelp READ teachHelp CONSTANT)
    Q_PROPERTY(QString fromText READ fromText CONSTANT)
    Q_PROPERTY(QString fromTextHelp READ fromTextHelp CONSTANT)
    Q_PROPERTY(orvel::ImportSheet *importing READ importing NOTIFY importingChanged)
    Q_PROPERTY(orvel::CardList *cards READ cards WRITE setCards NOTIFY cardsChanged)
public:
    // On the shared client (QML); tests give their own.
    explicit Composer(QObject *parent = nullptr);
    ~Composer() override;

    int deckId() const { return m_deckId; }
    // The deck cards and lessons go to. A card still being written for the previous deck keeps
    // going and is still reported (with its deck's id).
    void setDeckId(int deckId);
    QString language() const { return m_language; }
    void setLanguage(const QString &language);
    // The open deck's list: each finished card (and each card a kept lesson wrote) goes to its
    // front when it belongs to the deck the list shows.
    CardList *cards() const { return m_cards; }
    void setCards(CardList *cards);

    QString input() const { return m_input; }
    void setInput(const QString &input);
    bool adding() const;
    bool hasWriting() const { return m_writing.has_value(); }
    const std::optional<Writing> &writing() const { return m_writing; }
    bool showsWriting() const { return m_writing.has_value() && m_writingShown; }
    WritingSheet *progress() const { return m_progress; }
    QString narration() const { return m_narration; }
    QString refused() const { return m_calls.trouble(); }
    bool asking() const { return m_calls.working(); }
    QString topicAsked() const { return m_topicAsked; }
    // "Writing a byte on “topic”" while a lesson is asked for, else empty.
    QString askingText() const;
    ByteSheet *offer() const { return m_offer; }
    const QList<NoteSummary> &deckNotes() const { return m_deckNotes; }

    QString placeholder() const;
    QString addHelp() const;
    QString teachHelp() const;
    QString fromText() const;
    QString fromTextHelp() const;
    ImportSheet *importing() const { return m_import; }

    // Return: writes a card from the trimmed input. Nothing happens for an empty input or while
    // a card is being written.
    Q_INVOKABLE void add();
    // Ctrl+Return: asks for a short lesson on the trimmed input, then offers it.
    Q_INVOKABLE void askForByte();
    QCoro::Task<> askForByteTask();
    // Closes the writing view; a card still being written keeps going.
    Q_INVOKABLE void hideWriting();
    // Forgets the finished (or failed) writing.
    Q_INVOKABLE void dismissWriting();
    // Closes the lesson sheet without keeping anything.
    Q_INVOKABLE void closeOffer();
    // "or add from text…" (or text dropped on the deck): opens the import sheet for this deck,
    // starting with `seed`. A sheet already open takes the seed when it is still at its text.
    Q_INVOKABLE void addFromText(const QString &seed = QString());

signals:
    void deckChanged();
    void cardsChanged();
    void inputChanged();
    void addingChanged();
    void writingChanged();
    void narrationChanged();
    void refusedChanged();
    void askingChanged();
    void offerChanged();
    void importingChanged();
    // A finished card for the front of its deck's list.
    void cardWritten(const orvel::Card &card);
    // Cards a kept lesson wrote, in order, for the front of their deck's list.
    void cardsLanded(const QList<orvel::Card> &cards);

private:
    // A short lesson on the topic, with the deck's notes it could be kept into. (Not in an
    // anonymous namespace: a coroutine frame holding it must have linkage.)
    struct LessonOffer {
        Byte byte;
        QList<NoteSummary> notes;
    };
    static QCoro::Task<LessonOffer> lessonOffer(APIClient &api, int deckId, QString topic);

    Writing writingOrEmpty() const { return m_writing.value_or(Writing{}); }
    void setNarration(const QString &narration);
    void setOffer(ByteSheet *offer);
    void takeWriting();
    void putFirst(const QList<Card> &cards);

    Services &m_services;
    CardWriter *m_writer = nullptr;
    WritingSheet *m_progress = nullptr;
    int m_deckId = 0;
    QString m_language;
    QPointer<CardList> m_cards;
    QString m_input;
    std::optional<Writing> m_writing;
    bool m_writingShown = false;
    QString m_narration;
    QString m_topicAsked;
    QPointer<ByteSheet> m_offer;
    QPointer<ImportSheet> m_import;
    QList<NoteSummary> m_deckNotes;
    // Asking for a short lesson is this screen's call; its failure reads as `refused`, like a
    // card the writer refused.
    ServerCalls m_calls{this, &Composer::askingChanged, &Composer::refusedChanged};
};

} // namespace orvel
