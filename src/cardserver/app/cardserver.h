#pragma once
#include "app/serveroptions.h"

#include <memory>

namespace cardserver {

class AccountStore;
class CallRate;
class ClientAddress;
class ExpiryPurge;
class PasswordHasher;
class StreamSlots;
class CardStore;
class Database;
class DeckStore;
class HttpServer;
class LoginThrottle;
class MediaStore;
class NoteStore;
class Outbox;
class PreferencesStore;
class SpeechRenderer;
class Writer;
struct Services;

// The whole server: the store, the accounts, the writer, speech, and the HTTP routes.
class CardServer {
public:
    static constexpr int AcceptBacklog = 1024;

    explicit CardServer(ServerOptions options);
    ~CardServer();
    CardServer(const CardServer &) = delete;
    CardServer &operator=(const CardServer &) = delete;

    // Prepares the data folder, opens the store, makes the writer and the routes, and binds
    // the listening socket. Throws std::runtime_error with a one-line reason.
    void start();
    int port() const { return m_port; }
    QString host() const { return m_options.host; }
    // Serves until stop() is called.
    void serve();
    void stop();

private:
    void installRoutes();

    ServerOptions m_options;
    int m_port = 0;
    std::unique_ptr<Database> m_db;
    std::unique_ptr<AccountStore> m_accounts;
    std::unique_ptr<LoginThrottle> m_throttle;
    std::unique_ptr<Outbox> m_outbox;
    std::unique_ptr<DeckStore> m_decks;
    std::unique_ptr<CardStore> m_cards;
    std::unique_ptr<NoteStore> m_notes;
    std::unique_ptr<MediaStore> m_media;
    std::unique_ptr<PreferencesStore> m_preferences;
    std::unique_ptr<Writer> m_writer;
    std::unique_ptr<SpeechRenderer> m_speech;
    std::unique_ptr<PasswordHasher> m_hasher;
    std::unique_ptr<ClientAddress> m_clientAddress;
    std::unique_ptr<StreamSlots> m_streams;
    std::unique_ptr<CallRate> m_modelCalls;
    std::unique_ptr<ExpiryPurge> m_purge;
    std::unique_ptr<Services> m_services;
    std::unique_ptr<HttpServer> m_http;
};

} // namespace cardserver
