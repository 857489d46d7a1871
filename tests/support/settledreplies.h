#pragma once

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTest>

// Counts a client's replies that are over: answered, handed to the code that asked, and deleted.
// APIClient deletes a reply only once the call that made it has returned to its caller, so when
// the count is reached, whatever awaited those calls has run. Tests use it to show that nothing
// happened after an answer came, without waiting for a while.
class SettledReplies : public QObject {
public:
    explicit SettledReplies(QNetworkAccessManager *network)
    {
        connect(network, &QNetworkAccessManager::finished, this, [this](QNetworkReply *reply) {
            connect(reply, &QObject::destroyed, this, [this] { ++m_count; });
        });
    }

    int count() const { return m_count; }
    // Waits until `n` replies are over; false if they were not within the timeout.
    bool waitFor(int n, int timeoutMs = 10000)
    {
        return QTest::qWaitFor([&] { return m_count >= n; }, timeoutMs);
    }

private:
    int m_count = 0;
};
