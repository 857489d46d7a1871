#pragma once

#include <QString>

namespace orvel {

// The daily reminder's own texts, each built in one place.
namespace remindertexts {

// "Reminder": the pane's title.
QString paneTitle();
// "Remind me daily": the switch.
QString remindDaily();
// "At", before the hour picker, whose own name is "Hour".
QString at();
QString hour();
// "orvel": the notification's title.
QString title();
// "A few minutes on your cards.": the notification's body.
QString body();
// "07:00": an hour as the picker shows it.
QString hourLabel(int hour);
// "Notifications are off on this desktop: …": no notification server to show the reminder.
QString refused();
// "Scheduled on this computer. Nothing about your decks leaves it."
QString local();
// "Daily reminders need a systemd user session, …": nothing on this computer can keep the timer.
QString noTimer();

} // namespace remindertexts

} // namespace orvel
