#pragma once

#include "app/servercalls.h"
#include "manual/manualpage.h"
#include "palette/palettebuilder.h"
#include "palette/palettecontext.h"
#include "palette/palettelistmodel.h"
#include "palette/palettestage.h"
#include "records/searchresults.h"

#include <functional>
#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

class APIClient;

// "Find or Do": one field over a list of sections. It keeps what is typed, the selected row,
// the row waiting for its second ↩, the stages stepped into (with the query each was entered
// from) and the latest search reply, and answers the palette's keys: ↑/↓ move with
// wrap-around, ↩ runs the row (or steps in when it only has a stage), ⇥ steps into its stage,
// ⌫ in an empty field steps back out, Esc closes. While a query is typed outside any stage it
// asks the server for cards, notes and lines once typing pauses; only the newest reply counts.
class CommandPalette : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The palette belongs to HomeView")
    Q_PROPERTY(bool opened READ opened NOTIFY openedChanged)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(orvel::PaletteListModel *list READ list CONSTANT)
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY selectionChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(QString armedId READ armedId NOTIFY armedChanged)
    Q_PROPERTY(bool inStage READ inStage NOTIFY stageChanged)
    Q_PROPERTY(QString stageTitle READ stageTitle NOTIFY stageChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY listChanged)
    Q_PROPERTY(QVariantList hints READ hints NOTIFY hintsChanged)
    Q_PROPERTY(bool searching READ searching NOTIFY searchingChanged)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
public:
    explicit CommandPalette(QObject *parent = nullptr);
    ~CommandPalette() override;

    // Where the palette reads the app: asked each time it opens, when refresh() says the app
    // changed, and after a row ran with the palette staying open.
    void setContextSource(std::function<PaletteContext()> source);
    // The manual's pages to search (the manual's own table unless a test gives others).
    void setManual(QList<ManualPage> pages);

    bool opened() const { return m_opened; }
    QString query() const { return m_query; }
    // Typing: the first row is selected, nothing is armed, and outside a stage a search starts
    // once typing pauses.
    void setQuery(const QString &query);
    PaletteListModel *list() const { return m_list; }
    const QList<PaletteSection> &sections() const { return m_list->sections(); }
    // The selected item's index in the flat list, -1 when the list is empty.
    int selectedIndex() const { return m_selected; }
    int selectedRow() const { return m_list->rowOfItem(m_selected); }
    std::optional<PaletteItem> selectedItem() const;
    QString armedId() const { return m_armed; }
    bool inStage() const { return !m_stages.isEmpty(); }
    QString stageTitle() const { return m_stages.isEmpty() ? QString() : m_stages.last().title; }
    // "Nothing matches." or "Nothing to show yet." for an empty list, else empty.
    QString emptyText() const;
    // The footer's key hints, [{keys: ["↩"], label: "Open"}, …].
    QVariantList hints() const;
    bool searching() const { return m_calls.working(); }
    QString placeholder() const;
    QString name() const;
    const std::optional<SearchResults> &reply() const { return m_builder->reply(); }

    // Opens with an empty query, the first row selected, no stage and nothing armed.
    Q_INVOKABLE void open();
    Q_INVOKABLE void close();
    // The app changed (decks, the open deck): the list is made again, keeping the selection.
    Q_INVOKABLE void refresh();

    // The keys; each says whether it was handled (an ignored ⌫ or ⇥ is the field's). A closed
    // palette handles none, so a second click on a row as it fades out does nothing.
    Q_INVOKABLE bool move(int step);
    Q_INVOKABLE bool perform();
    Q_INVOKABLE bool deeper();
    Q_INVOKABLE bool back();
    Q_INVOKABLE bool escape();
    // A click on a row: selects its item and does what ↩ does.
    Q_INVOKABLE bool choose(int row);

    // Searches the library for the text now; the reply replaces the previous one unless a newer
    // search has started meanwhile. A failure keeps the previous reply.
    QCoro::Task<> search(QString text);

signals:
    void openedChanged();
    void queryChanged();
    void selectionChanged();
    void armedChanged();
    void stageChanged();
    void listChanged();
    void hintsChanged();
    void searchingChanged();
    void troubleChanged();
    // The field takes the focus back: a row ran and the palette stays open, or the palette was
    // asked to open while it was open.
    void focusWanted();

private:
    // Makes the list again for the query and the open stage. Keeping the selection keeps the
    // selected and armed rows where they still are; otherwise the first row is selected.
    void rebuild(bool keepSelection);
    void replaceBuilder();
    void setSelected(int index);
    void setArmed(const QString &id);
    void setQueryText(const QString &query);
    // Starts (or stops) the pause before a search for the current query.
    void scheduleSearch();

    APIClient &m_api;
    std::function<PaletteContext()> m_source;
    QList<ManualPage> m_manual;
    std::unique_ptr<PaletteBuilder> m_builder;
    PaletteListModel *m_list = nullptr;
    bool m_opened = false;
    QString m_query;
    int m_selected = -1;
    QString m_armed;
    QList<PaletteStage> m_stages;
    QStringList m_savedQueries;
    // The query the held reply (or the search on its way) is for.
    QString m_searchedFor;
    QTimer m_searchPause;
    ServerCalls m_calls{this, &CommandPalette::searchingChanged, &CommandPalette::troubleChanged};
};

} // namespace orvel
