#pragma once

#include "app/servercalls.h"
#include "records/card.h"
#include "records/decksummary.h"
#include "records/folder.h"
#include "study/studyset.h"

#include <functional>
#include <qcoro/qcorotask.h>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;
class Speech;

// One study session: the cards of a deck (or of every deck in a folder) one at a time, word side
// first. The learner turns the card over, may open the rest of it, and says whether they knew
// it; each answer goes to the server in the background and the updated card is handed to the
// opener. The session ends with a tally.
class StudyView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(int index READ index NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(bool flipped READ flipped NOTIFY changed)
    Q_PROPERTY(bool expanded READ expanded NOTIFY changed)
    Q_PROPERTY(bool finished READ finished NOTIFY changed)
    Q_PROPERTY(bool hasCard READ hasCard NOTIFY changed)
    Q_PROPERTY(orvel::Card card READ card NOTIFY changed)
    Q_PROPERTY(QString language READ language NOTIFY changed)
    Q_PROPERTY(QString word READ word NOTIFY changed)
    Q_PROPERTY(QString kindLine READ kindLine NOTIFY changed)
    Q_PROPERTY(QString example READ example NOTIFY changed)
    Q_PROPERTY(QVariantList rest READ rest NOTIFY changed)
    Q_PROPERTY(int knew READ knew NOTIFY changed)
    Q_PROPERTY(int missed READ missed NOTIFY changed)
    Q_PROPERTY(QString progress READ progress NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
    Q_PROPERTY(QString moreLabel READ moreLabel NOTIFY changed)
    Q_PROPERTY(QString tally READ tally NOTIFY changed)
    Q_PROPERTY(QString trouble READ trouble NOTIFY changed)
    Q_PROPERTY(bool hearOnFlip READ hearOnFlip NOTIFY hearOnFlipChanged)
    Q_PROPERTY(bool listening READ listening WRITE setListening NOTIFY listeningChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyLine READ emptyLine CONSTANT)
    Q_PROPERTY(QString closeLabel READ closeLabel CONSTANT)
    Q_PROPERTY(QString didntKnowLabel READ didntKnowLabel CONSTANT)
    Q_PROPERTY(QString knewLabel READ knewLabel CONSTANT)

public:
    // Loading: the cards are on their way. Failed: they could not be loaded (see trouble).
    enum class State { Loading, Failed, Empty, Front, Back, Done };
    Q_ENUM(State)

    // A view on the shared client and speech player (what QML creates).
    explicit StudyView(QObject *parent = nullptr);
    ~StudyView() override;

    // Starts a session over a deck's cards as the opener holds them.
    void start(const DeckSummary &deck, const QList<Card> &cards);
    // Starts a session over a gathered set (a folder's decks).
    void start(const StudySet &set);
    // Loads the deck's cards, then starts.
    Q_INVOKABLE void studyDeck(const orvel::DeckSummary &deck);
    // The study command's way in: loads the decks whose ids the command carries ("12",
    // "3,5,9"), then starts one session over all their cards. False (and nothing changes) when
    // the text names no deck.
    Q_INVOKABLE bool studyDecks(const QString &deckIds);
    // Loads the cards of every deck filed in `folder` (out of `decks`), then starts.
    Q_INVOKABLE void studyFolder(const orvel::Folder &folder,
                                 const QList<orvel::DeckSummary> &decks);

    // The three moves: turn the card over (space); answer (2 knew it, 1 didn't); step without
    // answering (left -1, right +1).
    Q_INVOKABLE void flip();
    Q_INVOKABLE void answer(bool known);
    Q_INVOKABLE void step(int by);
    // E: shows or hides the rest of a turned card.
    Q_INVOKABLE void toggleExpanded();
    // A click on the card: turns it over when it shows its face, else opens or closes the rest.
    Q_INVOKABLE void click();
    // Speaks the current card's word in its deck's language.
    Q_INVOKABLE void hear();
    // Keys go to the session again.
    Q_INVOKABLE void listen();

    State state() const;
    QString title() const { return m_title; }
    int index() const { return m_index; }
    int count() const { return int(m_queue.size()); }
    bool flipped() const { return m_flipped; }
    bool expanded() const { return m_expanded; }
    bool finished() const { return !m_queue.isEmpty() && m_index >= m_queue.size(); }
    bool hasCard() const { return m_index >= 0 && m_index < m_queue.size(); }
    Card card() const { return hasCard() ? m_queue[m_index] : Card{}; }
    QString language() const;
    // The current card as the study card shows it (see CardFace).
    QString word() const;
    QString kindLine() const;
    QString example() const;
    QVariantList rest() const;
    int knew() const;
    int missed() const;
    QString progress() const;
    QString hint() const;
    QString moreLabel() const;
    QString tally() const;
    QString trouble() const { return m_calls.trouble(); }
    bool hearOnFlip() const { return m_hearOnFlip; }
    bool listening() const { return m_listening; }
    void setListening(bool listening);
    const QList<Card> &queue() const { return m_queue; }
    // The answers given, by queue position (true = knew it).
    const QMap<int, bool> &said() const { return m_said; }

    static QString emptyTitle();
    static QString emptyLine();
    static QString closeLabel();
    static QString didntKnowLabel();
    static QString knewLabel();

signals:
    void changed();
    void hearOnFlipChanged();
    void listeningChanged();
    // The session wants the keyboard (after it starts and after each answer).
    void wantsKeys();

private:
    void begin(const QString &title, const QList<Card> &cards, const QHash<int, QString> &languages,
               const QString &fallbackLanguage);
    // Empties the session for the cards on their way.
    void reset(const QString &title);
    void moveTo(qsizetype index);
    QCoro::Task<> loadDeck(DeckSummary deck);
    QCoro::Task<> loadSet(QCoro::Task<StudySet> gathering);
    QCoro::Task<> readSettings();
    QCoro::Task<> sendReview(Card card, bool known);

    APIClient &m_api;
    Speech &m_speech;
    QString m_title;
    QList<Card> m_queue;
    QHash<int, QString> m_languages;
    QString m_fallbackLanguage;
    qsizetype m_index = 0;
    bool m_flipped = false;
    bool m_expanded = false;
    QMap<int, bool> m_said;
    bool m_hearOnFlip = false;
    bool m_listening = false;
    // Bumped by every start and load, so a load that was overtaken by a newer one is dropped.
    // Loading the cards is the latest-only call: a new session drops the one still loading.
    ServerCalls m_calls{this, &StudyView::changed, &StudyView::changed};
};

} // namespace orvel
