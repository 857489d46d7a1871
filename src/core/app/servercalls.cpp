#include "app/servercalls.h"

namespace orvel {

void ServerCalls::setTrouble(const QString &trouble)
{
    if (m_trouble == trouble)
        return;
    m_trouble = trouble;
    m_troubleChanged();
}

void ServerCalls::setRunning(int running)
{
    const bool was = working();
    m_running = running;
    if (was != working())
        m_workingChanged();
}

quint64 ServerCalls::begin(const CallOptions &options)
{
    if (options.clearsTrouble)
        setTrouble({});
    quint64 ticket = 0;
    if (options.latestOnly) {
        ticket = ++m_latest;
        // A latest-only call replacing one still running keeps the one "working" it held.
        if (m_latestRunning)
            return ticket;
        if (options.showsWorking)
            m_latestRunning = true;
        else
            return ticket;
    }
    if (options.showsWorking)
        setRunning(m_running + 1);
    return ticket;
}

bool ServerCalls::end(const CallOptions &options, quint64 ticket, bool failed,
                      const QString &failure)
{
    if (options.latestOnly) {
        if (ticket != m_latest)
            return false;
        if (m_latestRunning) {
            m_latestRunning = false;
            setRunning(m_running - 1);
        }
    } else if (options.showsWorking) {
        setRunning(m_running - 1);
    }
    if (failed && options.showsFailure)
        setTrouble(failure);
    return true;
}

void ServerCalls::abandonLatest()
{
    ++m_latest;
    if (m_latestRunning) {
        m_latestRunning = false;
        setRunning(m_running - 1);
    }
}

} // namespace orvel
