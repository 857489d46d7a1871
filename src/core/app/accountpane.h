#pragma once

#include "app/servercalls.h"
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class AppState;

// The account pane of the settings window: who is signed in, changing the password (current,
// new, and the new one again), and signing out.
class AccountPane : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(QString replacement READ replacement WRITE setReplacement NOTIFY replacementChanged)
    Q_PROPERTY(
        QString confirmation READ confirmation WRITE setConfirmation NOTIFY confirmationChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(bool changed READ changed NOTIFY changedChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)

public:
    explicit AccountPane(QObject *parent = nullptr);

    QString current() const { return m_current; }
    void setCurrent(const QString &text);
    QString replacement() const { return m_replacement; }
    void setReplacement(const QString &text);
    QString confirmation() const { return m_confirmation; }
    void setConfirmation(const QString &text);
    QString trouble() const { return m_calls.trouble(); }
    // True after the server took the new password (until the next edit).
    bool changed() const { return m_changed; }
    bool working() const { return m_calls.working(); }

    QCoro::Task<> changingPassword();
    Q_INVOKABLE void changePassword();
    Q_INVOKABLE void signOut();

signals:
    void currentChanged();
    void replacementChanged();
    void confirmationChanged();
    void troubleChanged();
    void changedChanged();
    void workingChanged();

private:
    void setChanged(bool changed);

    AppState &m_state;
    QString m_current;
    QString m_replacement;
    QString m_confirmation;
    ServerCalls m_calls{this, &AccountPane::workingChanged, &AccountPane::troubleChanged};
    bool m_changed = false;
};

} // namespace orvel
