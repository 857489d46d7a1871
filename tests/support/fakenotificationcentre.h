#pragma once

#include "reminders/notificationcentre.h"

#include <chrono>
#include <qcoro/qcorotimer.h>
#include <QMap>
#include <QStringList>

namespace testsupport {

// A notification centre in memory that writes down what it was asked, in order. Each operation
// can take a while (`delay`), as a real one's round trip does, so that calls overlap as they do
// in the app. Like a real centre, it keeps one pending request per identifier.
class FakeNotificationCentre : public orvel::NotificationCentre {
public:
    Authorization status = Authorization::NotDetermined;
    bool grants = true;      // the answer to a request for authorization
    bool schedulable = true; // whether the computer can keep requests
    std::chrono::milliseconds delay{0};

    QStringList log; // "authorization", "request", "remove zelon.daily", "add zelon.daily 19:00"
    QMap<QString, orvel::NotificationRequest> pending;

    QCoro::Task<Authorization> authorization() override
    {
        co_await pause();
        log.append(QStringLiteral("authorization"));
        co_return status;
    }

    QCoro::Task<bool> requestAuthorization() override
    {
        co_await pause();
        log.append(QStringLiteral("request"));
        if (status == Authorization::NotDetermined)
            status = grants ? Authorization::Authorized : Authorization::Denied;
        co_return status == Authorization::Authorized || status == Authorization::Provisional;
    }

    QCoro::Task<> removePending(QStringList identifiers) override
    {
        co_await pause();
        for (const QString &identifier : identifiers) {
            log.append(QStringLiteral("remove ") + identifier);
            pending.remove(identifier);
        }
    }

    QCoro::Task<bool> add(orvel::NotificationRequest request) override
    {
        co_await pause();
        log.append(QStringLiteral("add %1 %2:%3")
                       .arg(request.identifier)
                       .arg(request.hour, 2, 10, QLatin1Char('0'))
                       .arg(request.minute, 2, 10, QLatin1Char('0')));
        if (!schedulable)
            co_return false;
        pending.insert(request.identifier, request);
        co_return true;
    }

    QCoro::Task<bool> canSchedule() override
    {
        co_await pause();
        co_return schedulable;
    }

private:
    QCoro::Task<> pause()
    {
        if (delay.count() > 0)
            co_await QCoro::sleepFor(delay);
    }
};

} // namespace testsupport
