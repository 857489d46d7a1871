#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <QStringList>

namespace orvel {

// A note line that begins with "/" is a command: "/img cat", "/conj laufen", "/say". This reads
// such a line and holds the table of commands.
class Slash {
public:
    struct Command {
        QString name;         // the word typed after "/"
        QStringList aliases;  // other words taken for it
        QString hint;         // what the menu says it does
        bool onReturn = true; // Return runs it at once; false: it opens the picture picker

        bool operator==(const Command &) const = default;
        // Whether the word names this command, or begins its name or one of its aliases.
        bool isNamed(const QString &word) const;
        bool startsWith(const QString &word) const;
    };

    struct Reading {
        QString verb; // the word after "/", lower-cased (may be empty)
        QString arg;  // the rest of the line, trimmed
        std::optional<Command> command;
        QList<Command> offered; // what the menu lists, in table order

        bool operator==(const Reading &) const = default;
    };

    // img, gif, conj, mnemonic, say: the menu lists them in this order.
    static const QList<Command> &all();
    // The command named `name` (not an alias), if any.
    static std::optional<Command> named(const QString &name);
    // The line's reading, or none when the line is no command ("/1" is not: a verb is letters).
    static std::optional<Reading> read(const QString &line);
};

} // namespace orvel
