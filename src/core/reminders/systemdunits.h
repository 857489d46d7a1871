#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace orvel {

// The text of the systemd user units that keep the daily reminder on Linux: a timer that fires
// every day at a whole hour and the one-shot service it starts, which runs `orvel --remind`.
// Pure text, so that what is written to ~/.config/systemd/user is checked without systemd.
namespace systemdunits {

// The timer unit firing every day at hour:00:00, local time, starting `service` (a unit file
// name such as "orvel-reminder.service"). A missed time is not made up later (Persistent=false):
// a reminder hours late helps nobody. None for an hour outside 0–23, which no day has.
std::optional<QString> timer(int hour, const QString &service);

// The service unit running `program --remind` once. None unless `program` is an absolute path
// that fits on one line.
std::optional<QString> service(const QString &program);

// One word of an ExecStart= line: `%` and `$` escaped (systemd expands both), and in double
// quotes with backslash escapes when it holds a blank, a quote or a backslash.
QString execWord(const QString &word);

// Whether `systemctl --user is-system-running` printed the state of a running user manager
// ("running", "degraded", …) rather than "offline" or nothing (no manager to talk to).
bool managerRunning(const QByteArray &isSystemRunningOutput);

} // namespace systemdunits

} // namespace orvel
