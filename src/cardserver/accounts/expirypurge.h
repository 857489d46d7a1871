#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace cardserver {

class AccountStore;
class LoginThrottle;

// Drops expired sessions, links and sign-in codes and forgotten sign-in counters: once at
// start, then every `interval` on a thread of its own until it goes away.
class ExpiryPurge {
public:
    ExpiryPurge(AccountStore &accounts, LoginThrottle &throttle, std::chrono::seconds interval);
    ~ExpiryPurge();
    ExpiryPurge(const ExpiryPurge &) = delete;
    ExpiryPurge &operator=(const ExpiryPurge &) = delete;

    void runOnce();

private:
    AccountStore &m_accounts;
    LoginThrottle &m_throttle;
    const std::chrono::seconds m_interval;
    std::mutex m_lock;
    std::condition_variable m_wake;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace cardserver
