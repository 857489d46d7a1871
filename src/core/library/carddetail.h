#pragma once

#include "app/servercalls.h"
#include "records/card.h"

#include <qcoro/qcorotask.h>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;
class CardBin;
class CardList;

// The chosen card of the open deck, read for the detail column: its kind line, its fields
// grouped for their headings, the foot with its counts, and the card's actions. A rewrite or an
// answer puts the card the server returns in place of the old one in the list.
class CardDetail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The card detail belongs to HomeView")
    Q_PROPERTY(bool hasCard READ hasCard NOTIFY cardChanged)
    Q_PROPERTY(orvel::Card card READ card NOTIFY cardChanged)
    Q_PROPERTY(QString heading READ heading NOTIFY cardChanged)
    Q_PROPERTY(QString reading READ reading NOTIFY cardChanged)
    Q_PROPERTY(QString translation READ translation NOTIFY cardChanged)
    Q_PROPERTY(QString definition READ definition NOTIFY cardChanged)
    Q_PROPERTY(QString usageNotes READ usageNotes NOTIFY cardChanged)
    Q_PROPERTY(QString kindLine READ kindLine NOTIFY cardChanged)
    Q_PROPERTY(QVariantList examples READ examples NOTIFY cardChanged)
    Q_PROPERTY(QVariantList nearby READ nearby NOTIFY cardChanged)
    Q_PROPERTY(QVariantList forms READ forms NOTIFY cardChanged)
    Q_PROPERTY(QString foot READ foot NOTIFY cardChanged)
    Q_PROPERTY(int footMinimumWidth READ footMinimumWidth CONSTANT)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
public:
    CardDetail(CardList &list, CardBin &bin, QObject *parent = nullptr);

    bool hasCard() const;
    Card card() const;
    // The term with its article when the card has one: "der Hund".
    QString heading() const;
    QString reading() const { return card().reading; }
    QString translation() const { return card().translation; }
    QString definition() const { return card().definition; }
    QString usageNotes() const { return card().usageNotes; }
    // The part of speech, then the gender when it names one: "noun · masculine".
    QString kindLine() const;
    // "feminine", "masculine", or empty: what the gender text says, whether as a word
    // ("feminine", "Maskulinum"), an abbreviation ("fem.", "masc.") or a one-letter code (f, m).
    static QString genderWord(const QString &gender);
    static QString kindLine(const Card &card);
    // [{sentence, translation, note}] in server order.
    QVariantList examples() const;
    // [{word, translation, relation, text}] in server order; text is "bellen · to bark".
    QVariantList nearby() const;
    // [{tense, note, forms: [{label, form}]}].
    QVariantList forms() const;
    // "seen 6 · 5 right · streak 3".
    QString foot() const;
    static QString foot(const Card &card);
    // The foot shows only when the detail is at least this wide (points).
    static constexpr int footWidth = 480;
    int footMinimumWidth() const { return footWidth; }
    bool working() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }

    // "rewrite": the server writes the card again.
    QCoro::Task<> rewrite();
    // "Knew it" (true) and "Didn't know it" (false).
    QCoro::Task<> answer(bool known);
    Q_INVOKABLE void requestRewrite();
    Q_INVOKABLE void requestAnswer(bool known);
    // "Delete card": the card goes to the undoable bin.
    Q_INVOKABLE void remove();

signals:
    void cardChanged();
    void workingChanged();
    void troubleChanged();

private:
    QCoro::Task<> run(QCoro::Task<Card> call);

    APIClient &m_api;
    CardList &m_list;
    CardBin &m_bin;
    ServerCalls m_calls{this, &CardDetail::workingChanged, &CardDetail::troubleChanged};
    int m_shownId = 0;
};

} // namespace orvel
