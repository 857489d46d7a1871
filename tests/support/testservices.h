#pragma once

#include "app/appstate.h"
#include "app/services.h"
#include "fakenotificationcentre.h"
#include "reminders/reminder.h"
#include "server/apiclient.h"
#include "sound/silentoutput.h"
#include "sound/speech.h"

#include <QDir>

namespace testsupport {

// The services a test's screens reach: its own client (on a scripted or real server), an app
// state over that client, a silent speech player and a reminder kept by a notification centre in
// memory, installed for as long as this lives. Declare it before the screens it serves, so they
// go first.
class TestServices {
public:
    explicit TestServices(orvel::APIClient &api, orvel::AudioOutput *output = nullptr,
                          const QString &clipDir = QDir::tempPath())
        : m_state(api), m_speech(api, output ? *output : m_silent, clipDir),
          m_reminder(m_notifications), m_services(api, m_state, m_speech, &m_reminder)
    {}

    orvel::AppState &state() { return m_state; }
    orvel::Speech &speech() { return m_speech; }
    FakeNotificationCentre &notifications() { return m_notifications; }
    orvel::Reminder &reminder() { return m_reminder; }

private:
    orvel::AppState m_state;
    orvel::SilentOutput m_silent;
    orvel::Speech m_speech;
    FakeNotificationCentre m_notifications;
    orvel::Reminder m_reminder;
    orvel::Services m_services;
};

} // namespace testsupport
