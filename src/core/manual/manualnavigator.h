#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqml.h>

namespace orvel {

// Where the manual window is: the current page, with back and forward lists like a browser's.
// One per process; the current page is remembered across runs ("zelon.manual.page"), the
// history is not.
class ManualNavigator : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString current READ current NOTIFY currentChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY currentChanged)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY currentChanged)
public:
    // Starts at the stored page when it names one of the manual's, else at the first page.
    explicit ManualNavigator(QObject *parent);
    static ManualNavigator &shared();
    static ManualNavigator *create(QQmlEngine *, QJSEngine *);

    QString current() const { return m_current; }
    const QStringList &back() const { return m_back; }
    const QStringList &forward() const { return m_forward; }
    bool canGoBack() const { return !m_back.isEmpty(); }
    bool canGoForward() const { return !m_forward.isEmpty(); }

    // Opens a page; the page already shown, or an id that names no page, changes nothing.
    Q_INVOKABLE void go(const QString &id);
    Q_INVOKABLE void goBack();
    Q_INVOKABLE void goForward();

signals:
    void currentChanged();

private:
    void setCurrent(const QString &id);

    QString m_current;
    QStringList m_back;
    QStringList m_forward;
};

} // namespace orvel
