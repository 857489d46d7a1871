#include "http/eventstream.h"

#include "http/call.h"

#include <QDebug>
#include <QJsonDocument>

namespace cardserver {

bool EventStream::send(const QJsonObject &event)
{
    std::string line = "data: ";
    line += QJsonDocument(event).toJson(QJsonDocument::Compact).toStdString();
    line += "\n\n";
    std::lock_guard lock(m_lock);
    if (!m_open)
        return false;
    if (!m_sink.write(line.data(), line.size()))
        m_open = false;
    return m_open;
}

void EventStream::start(Call &call, std::function<void(EventStream &)> job)
{
    httplib::Response &res = call.res;
    res.status = 200;
    res.set_header("Cache-Control", "no-store");
    res.set_header("X-Accel-Buffering", "no");
    res.set_chunked_content_provider(
        "text/event-stream", [job = std::move(job)](size_t, httplib::DataSink &sink) {
            EventStream stream(sink);
            try {
                job(stream);
            } catch (const std::exception &e) {
                // The job reports its own failures as events; anything escaping is a fault.
                qWarning().noquote() << "stream job failed:" << e.what();
                stream.send(QJsonObject{{"type", "error"},
                                        {"error", "The server ran into a problem while "
                                                  "writing. Try again."}});
            }
            sink.done();
            return true;
        });
}

} // namespace cardserver
