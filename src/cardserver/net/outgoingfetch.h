#pragma once
#include "net/addresspolicy.h"

#include <functional>
#include <QByteArray>
#include <QList>
#include <QString>

namespace cardserver {

// One outgoing GET through libcurl, for addresses the server did not choose itself: only http
// and https, every connection (the first and each redirect's) checked against the address
// policy on the very address it connects to, at most three redirects, a total deadline and a
// cap on the body counted while it arrives. Proxies from the environment are not used, so the
// checked address is always the one connected to.
class OutgoingFetch {
public:
    enum class Outcome {
        Fetched,    // an answer arrived; see status
        NotAllowed, // a scheme other than http(s), or an address the policy refuses
        TooLarge,   // the body passed the cap; reading stopped there
        TimedOut,   // the deadline passed
        Failed,     // anything else: no such host, connection refused, a broken answer, …
    };

    struct Result {
        Outcome outcome = Outcome::Failed;
        int status = 0; // the last answer's HTTP status, when one arrived
        QByteArray body;
        QString contentType;
        QString detail; // for the log only: what went wrong, with addresses and curl's words
    };

    // A request other than a plain GET, or one whose answer is read as it arrives.
    struct Request {
        QByteArray method = "GET";
        QByteArray body;
        QList<QByteArray> headers; // "Name: value"
        bool followRedirects = true;
        // Given each piece of the body as it arrives, with the answer's status; false stops the
        // transfer (the outcome is then Failed). Without it the body is collected in the result.
        std::function<bool(int status, const QByteArray &piece)> onData;
    };

    static constexpr int MaxRedirects = 3;

    OutgoingFetch(AddressPolicy policy, qint64 maxBytes, int timeoutMs);

    // Gives up when nothing arrives for `seconds`, however long the whole may take.
    void setIdleTimeout(int seconds) { m_idleSeconds = seconds; }

    Result get(const QString &url) const { return send(url, Request()); }
    Result send(const QString &url, const Request &request) const;

private:
    AddressPolicy m_policy;
    qint64 m_maxBytes;
    int m_timeoutMs;
    int m_idleSeconds = 0;
};

} // namespace cardserver
