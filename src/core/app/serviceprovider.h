#pragma once

#include <QObject>
#include <QString>

namespace orvel {

class AppCommands;

// The "add to Orvel" entry that other applications reach through `orvel --add` and
// `orvel --add-selection`: a non-empty word brings the window forward and opens quick add with it.
class ServiceProvider : public QObject {
    Q_OBJECT

public:
    explicit ServiceProvider(AppCommands &commands, QObject *parent = nullptr);

    // Trims white space and line breaks from both ends; an empty result does nothing. Returns
    // whether the word was posted.
    bool addToOrvel(const QString &text);

signals:
    // The window should come to the front (emitted before the quick-add command is posted).
    void activationRequested();

private:
    AppCommands &m_commands;
};

} // namespace orvel
