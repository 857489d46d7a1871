#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>
#include <QVariantMap>

namespace orvel {

class ManualNavigator;

// The manual window: the chapters and their pages beside the page shown, a search over every
// page, and the page itself as blocks to draw. A "see" link or a search result opens its page
// through the shared navigator; a "try" button runs the app command it names.
class ManualView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(bool searching READ searching NOTIFY queryChanged)
    Q_PROPERTY(QVariantList results READ results NOTIFY queryChanged)
    Q_PROPERTY(QVariantList chapters READ chapters NOTIFY pageChanged)
    Q_PROPERTY(QString pageId READ pageId NOTIFY pageChanged)
    Q_PROPERTY(QString pageTitle READ pageTitle NOTIFY pageChanged)
    Q_PROPERTY(QString chapterTitle READ chapterTitle NOTIFY pageChanged)
    Q_PROPERTY(QVariantList blocks READ blocks NOTIFY pageChanged)
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)
public:
    explicit ManualView(QObject *parent = nullptr);

    QString query() const { return m_query; }
    void setQuery(const QString &query);
    // Whether the page list gives way to the search's results.
    bool searching() const;
    // The pages found for the query, in chapter order: {id, title, question, chapter}.
    QVariantList results() const;
    // {title, pages: [{id, title, current}]} for each chapter.
    QVariantList chapters() const;
    QString pageId() const;
    QString pageTitle() const;
    QString chapterTitle() const;
    // The page's blocks, read from its file each time the page changes.
    QVariantList blocks() const { return m_blocks; }
    QVariantMap texts() const;

    Q_INVOKABLE void open(const QString &id);
    // Runs a "try" button's action; false when it names none.
    Q_INVOKABLE bool tryIt(const QString &action);
    // The title of the page a link names ("" for none), for links without a label.
    Q_INVOKABLE QString titleOf(const QString &id) const;

signals:
    void queryChanged();
    void pageChanged();

private:
    void readPage();

    ManualNavigator &m_navigator;
    QString m_query;
    QVariantList m_blocks;
};

} // namespace orvel
