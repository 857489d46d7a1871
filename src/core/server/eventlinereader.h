#pragma once

#include <QByteArray>
#include <QList>

namespace orvel {

// Turns the bytes of an event-stream reply into the payloads of its "data:" lines, in order.
// Bytes may arrive split anywhere. A carriage return is dropped wherever it occurs, a line feed
// ends a line; a line that begins with "data:" yields what follows it, less one optional space.
// Every other line (blank separators, "event:", "id:", comments) is ignored, and data lines are
// never joined: each one is one event.
class EventLineReader {
public:
    // Feeds the next bytes; returns the payloads of the data lines they completed.
    QList<QByteArray> feed(const QByteArray &bytes);
    // True when bytes of an unfinished line are waiting for their line feed. The server ends
    // every line it writes with one, so bytes still waiting when the body ends mean the body was
    // cut short; they are never delivered as an event.
    bool midLine() const { return !m_line.isEmpty(); }

private:
    void endLine(QList<QByteArray> &out);
    QByteArray m_line;
};

} // namespace orvel
