#pragma once
#include <QString>

namespace cardserver {

class AccountStore;
class CallRate;
class ClientAddress;
class PasswordHasher;
class StreamSlots;
class CardStore;
class Database;
class DeckStore;
class LoginThrottle;
class MediaStore;
class NoteStore;
class Outbox;
class PreferencesStore;
class SpeechRenderer;
class Writer;
struct ServerOptions;

// Everything the routes work with, owned by CardServer.
struct Services {
    const ServerOptions &options;
    Database &db;
    AccountStore &accounts;
    LoginThrottle &throttle;
    Outbox &outbox;
    DeckStore &decks;
    CardStore &cards;
    NoteStore &notes;
    MediaStore &media;
    PreferencesStore &preferences;
    Writer &writer;
    SpeechRenderer &speech;
    PasswordHasher &hasher;
    const ClientAddress &clientAddress; // who a request came from, for sign-in limits
    StreamSlots &streams;               // event streams each account runs at once
    CallRate &modelCalls;               // language-model calls each account makes a minute
    // Where learners reach this server, for links in mail: ORVEL_PUBLIC_URL when set (a
    // deployment behind a proxy), else the address it listens on. Never taken from a
    // request's Host header, which anyone can forge to steal a reset link.
    QString publicUrl;
};

} // namespace cardserver
