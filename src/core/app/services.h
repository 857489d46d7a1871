#pragma once

namespace orvel {

class APIClient;
class AppState;
class Reminder;
class Speech;

// What the app's screens reach the world through: the server client, the app's state, the
// speech player and the daily reminder. Exactly one set is installed at a time: main() installs
// the app's for the life of the window, a test installs its own around a scripted server. Every
// screen takes the installed set when it is made, whether QML or C++ makes it, so there is no
// other way in.
class Services {
public:
    // Installs this set until it is destroyed; the set it replaced comes back then. A set
    // without a reminder serves every screen but the reminder's pane.
    Services(APIClient &api, AppState &state, Speech &speech, Reminder *reminder = nullptr);
    ~Services();
    Services(const Services &) = delete;
    Services &operator=(const Services &) = delete;

    // The installed set. Making a screen with none installed is a programming fault: the
    // process stops with a message saying so.
    static Services &current();
    static bool installed();

    APIClient &api() const { return m_api; }
    AppState &state() const { return m_state; }
    Speech &speech() const { return m_speech; }
    // Asking a set without one is a programming fault, like making a screen with no set.
    Reminder &reminder() const;

private:
    APIClient &m_api;
    AppState &m_state;
    Speech &m_speech;
    Reminder *m_reminder;
    Services *m_previous;
};

} // namespace orvel
