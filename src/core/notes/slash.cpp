#include "notes/slash.h"

#include "library/learnerinput.h"
#include "notes/notetexts.h"

#include <QRegularExpression>

namespace orvel {

bool Slash::Command::isNamed(const QString &word) const
{
    return name == word || aliases.contains(word);
}

bool Slash::Command::startsWith(const QString &word) const
{
    if (name.startsWith(word))
        return true;
    return std::any_of(aliases.cbegin(), aliases.cend(),
                       [&](const QString &alias) { return alias.startsWith(word); });
}

const QList<Slash::Command> &Slash::all()
{
    static const QList<Command> table = {
        {QStringLiteral("img"),
         {QStringLiteral("image"), QStringLiteral("pic")},
         notetexts::slashHintImg(),
         false},
        {QStringLiteral("gif"), {}, notetexts::slashHintGif(), false},
        {QStringLiteral("conj"), {QStringLiteral("conjugate")}, notetexts::slashHintConj(), true},
        {QStringLiteral("mnemonic"), {QStringLiteral("mem")}, notetexts::slashHintMnemonic(), true},
        {QStringLiteral("say"), {QStringLiteral("speak")}, notetexts::slashHintSay(), true},
    };
    return table;
}

std::optional<Slash::Command> Slash::named(const QString &name)
{
    for (const Command &command : all())
        if (command.name == name)
            return command;
    return std::nullopt;
}

std::optional<Slash::Reading> Slash::read(const QString &line)
{
    // Spaces and tabs at either end go; then the whole line must be "/", letters, and either
    // nothing more or spaces and the rest: "/1" and "/img/x" are ordinary lines, since a verb is
    // letters only and ends where the line or a space does.
    static const QRegularExpression pattern(QStringLiteral("^/([a-z]*)(?:\\s+(.*))?$"),
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = pattern.match(trimSpacesAndTabs(line));
    if (!match.hasMatch())
        return std::nullopt;

    Reading reading;
    reading.verb = match.captured(1).toLower();
    reading.arg = match.captured(2).trimmed();
    for (const Command &command : all()) {
        if (!reading.command && command.isNamed(reading.verb))
            reading.command = command;
        if (command.startsWith(reading.verb))
            reading.offered.append(command);
    }
    return reading;
}

} // namespace orvel
