#pragma once

#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class Shelf;

// What the sidebar and the deck's column do with a whole deck: delete it (with its
// confirmation) and study it.
class DeckActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The deck actions belong to HomeView")
public:
    explicit DeckActions(Shelf &shelf, QObject *parent = nullptr);

    // The deck menu's delete confirmation and its action: the deck goes with its cards and notes.
    Q_INVOKABLE QString deleteQuestion(int deckId) const;
    Q_INVOKABLE QString deleteDetail(int deckId) const;
    QCoro::Task<> remove(int deckId);
    Q_INVOKABLE void requestRemove(int deckId);

    // Posts the study command for the deck. The command's text is the ids of the decks to
    // study in sidebar order, joined with commas ("12", "3,5,9").
    Q_INVOKABLE void study(int deckId);
    static QString studyText(const QList<int> &deckIds);
    // "Study this deck (Ctrl+R)" with the key as the desktop names it.
    Q_INVOKABLE QString studyButtonText(const QString &keyName) const;

    // What an empty deck shows in place of its list, with the lesson key as the desktop names it.
    Q_INVOKABLE QString emptyDeckGuidance(const QString &lessonKeyName) const;

private:
    Shelf &m_shelf;
};

} // namespace orvel
