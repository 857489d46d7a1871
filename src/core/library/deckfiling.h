#pragma once

#include "library/homeview.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

// What a deck's "Move to" menu offers: the folders, the folder the deck is in now, moving the
// deck into a folder or out of any ("No Folder"), and making a folder for it ("New Folder with
// “…”"). The menu creates one for its deck: DeckFiling { home: …; deckId: … }.
class DeckFiling : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(orvel::HomeView *home READ home WRITE setHome NOTIFY changed)
    Q_PROPERTY(int deckId READ deckId WRITE setDeckId NOTIFY changed)
    Q_PROPERTY(QVariantList folders READ folders NOTIFY changed)
    Q_PROPERTY(int current READ current NOTIFY changed)
    Q_PROPERTY(bool hasCurrent READ hasCurrent NOTIFY changed)
    Q_PROPERTY(QString newFolderText READ newFolderText NOTIFY changed)
public:
    explicit DeckFiling(QObject *parent = nullptr);

    HomeView *home() const { return m_home; }
    void setHome(HomeView *home);
    int deckId() const { return m_deckId; }
    void setDeckId(int deckId);

    // [{id, name}] in listing order.
    QVariantList folders() const;
    // The deck's folder now, or 0 when it is in none (or its folder is not in the listing).
    int current() const;
    bool hasCurrent() const { return current() != 0; }
    QString newFolderText() const;

    // Files the deck into the folder, or out of any folder for 0.
    Q_INVOKABLE bool move(int folderId);
    Q_INVOKABLE void newFolder();

signals:
    void changed();

private:
    QPointer<HomeView> m_home;
    QMetaObject::Connection m_shelf;
    int m_deckId = 0;
};

} // namespace orvel
