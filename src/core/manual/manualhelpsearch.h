#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>
#include <QVariantList>

namespace orvel {

// The search field of the Help menu: the manual pages matching what is typed, a few at most,
// and opening the one chosen in the manual window.
class ManualHelpSearch : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(QVariantList results READ results NOTIFY queryChanged)
    Q_PROPERTY(int limit READ limit WRITE setLimit NOTIFY queryChanged)
public:
    explicit ManualHelpSearch(QObject *parent = nullptr);

    QString query() const { return m_query; }
    void setQuery(const QString &query);
    int limit() const { return m_limit; }
    void setLimit(int limit);
    // {id, question} of each matching page, in chapter order; none for a blank query.
    QVariantList results() const;

    // Opens the manual window on a page.
    Q_INVOKABLE void open(const QString &id);

signals:
    void queryChanged();

private:
    QString m_query;
    int m_limit = 8;
};

} // namespace orvel
