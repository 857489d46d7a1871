#include "http/eventstream.h"

#include "http/call.h"
#include "http/streamchannel.h"

#include <QJsonDocument>

namespace cardserver {

bool EventStream::send(const QJsonObject &event)
{
    std::string line = "data: ";
    line += QJsonDocument(event).toJson(QJsonDocument::Compact).toStdString();
    line += "\n\n";
    return m_channel->push(std::move(line));
}

bool EventStream::open() const
{
    return !m_channel->isClosed();
}

void EventStream::start(Call &call, std::function<void(EventStream &)> job)
{
    HttpResponse &res = call.res;
    res.status = 200;
    res.contentType = "text/event-stream";
    res.setHeader("Cache-Control", "no-store");
    res.setHeader("X-Accel-Buffering", "no");
    res.streamJob = std::move(job);
}

} // namespace cardserver
