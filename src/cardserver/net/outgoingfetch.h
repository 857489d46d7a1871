#pragma once
#include "net/addresspolicy.h"

#include <QByteArray>
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

    static constexpr int MaxRedirects = 3;

    OutgoingFetch(AddressPolicy policy, qint64 maxBytes, int timeoutMs);

    Result get(const QString &url) const;

private:
    AddressPolicy m_policy;
    qint64 m_maxBytes;
    int m_timeoutMs;
};

} // namespace cardserver
