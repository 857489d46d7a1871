#pragma once

#include "app/servercalls.h"
#include "records/decksummary.h"

#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class APIClient;
class HomeView;

// The rename sheet: one name field and "Save". The deck keeps its description; the renamed deck
// the server returns takes the old one's place on the shelf.
class RenameDeckSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::HomeView *home READ home WRITE setHome NOTIFY homeChanged)
    Q_PROPERTY(int deckId READ deckId WRITE setDeckId NOTIFY deckIdChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY nameChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
public:
    explicit RenameDeckSheet(QObject *parent = nullptr);

    HomeView *home() const { return m_home; }
    void setHome(HomeView *home);
    int deckId() const { return m_deckId; }
    // Chooses the deck and fills the field with its name.
    void setDeckId(int deckId);
    QString name() const { return m_name; }
    void setName(const QString &name);
    // A name that is not blank (after trimming spaces and tabs), and not working.
    bool canSave() const;
    bool working() const { return m_calls.working(); }
    QString trouble() const { return m_calls.trouble(); }

    QCoro::Task<std::optional<DeckSummary>> save();
    Q_INVOKABLE void requestSave();

signals:
    void homeChanged();
    void deckIdChanged();
    void nameChanged();
    void workingChanged();
    void troubleChanged();
    // The deck was renamed (the sheet closes).
    void saved(const orvel::DeckSummary &deck);

private:
    APIClient &m_api;
    QPointer<HomeView> m_home;
    int m_deckId = 0;
    QString m_name;
    QString m_description;
    ServerCalls m_calls{this, &RenameDeckSheet::workingChanged, &RenameDeckSheet::troubleChanged};
};

} // namespace orvel
