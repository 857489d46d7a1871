#pragma once

#include <QObject>
#include <QtQml/qqml.h>

namespace orvel {

// The one-time welcome on the home screen. It is offered until it has been shown once
// ("zelon.welcomed"); its buttons open the manual or the new-deck sheet, or put it away.
class WelcomeSheet : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool due READ due NOTIFY dueChanged)

public:
    explicit WelcomeSheet(QObject *parent = nullptr);

    // Whether the sheet is still to be shown.
    bool due() const;
    // The sheet is on screen: it will not be offered again.
    Q_INVOKABLE void markShown();

    // The three buttons; each closes the sheet (the view hides it when due turns false).
    Q_INVOKABLE void openManual();
    Q_INVOKABLE void later();
    Q_INVOKABLE void startDeck();

signals:
    void dueChanged();
};

} // namespace orvel
