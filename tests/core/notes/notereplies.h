#pragma once

// Note records as the server sends them, for tests that script its replies.
#include <QByteArray>
#include <QList>
#include <QString>

namespace notereplies {

struct Line {
    int id = 0;
    QString text;
    QByteArray annotations = "[]";
    QString annotatedText = {};
};

inline QByteArray quoted(const QString &text)
{
    QByteArray out = "\"";
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\')
            out += '\\';
        out += QString(c).toUtf8();
    }
    return out + '"';
}

inline QByteArray lineJson(int noteId, int ordinal, const Line &line)
{
    const bool blank = line.annotations == "[]" && line.annotatedText.isEmpty();
    const QByteArray state = blank                             ? "blank"
                             : line.annotatedText != line.text ? "stale"
                                                               : "annotated";
    return "{\"id\":" + QByteArray::number(line.id) + ",\"note_id\":" + QByteArray::number(noteId) +
           ",\"ordinal\":" + QByteArray::number(ordinal) + ",\"text\":" + quoted(line.text) +
           ",\"media\":null,\"source\":\"\",\"kind\":\"\",\"annotations\":" + line.annotations +
           ",\"annotated_text\":" + quoted(line.annotatedText) + ",\"state\":\"" + state +
           "\",\"card_id\":null,\"created_at\":\"2026-11-24\"}";
}

inline QByteArray noteJson(int id, const QString &title, const QList<Line> &lines)
{
    QByteArray out = "{\"id\":" + QByteArray::number(id) +
                     ",\"deck_id\":3,\"title\":" + quoted(title) +
                     ",\"created_at\":\"2026-11-24\",\"updated_at\":\"2026-11-24\",\"lines\":[";
    for (int i = 0; i < lines.size(); ++i)
        out += (i ? "," : "") + lineJson(id, i, lines[i]);
    return out + "]}";
}

// One remark, with the deeper levels already written (bodies; the last one may end them).
inline QByteArray remarkJson(const QString &kind, const QString &body, const QString &term = {},
                             const QStringList &deeper = {}, bool lastEnds = false,
                             bool edited = false)
{
    QByteArray levels = "[";
    for (int i = 0; i < deeper.size(); ++i)
        levels += QByteArray(i ? "," : "") + "{\"level\":" + QByteArray::number(i + 1) +
                  ",\"body\":" + quoted(deeper[i]) +
                  ",\"last\":" + (lastEnds && i == deeper.size() - 1 ? "true" : "false") + "}";
    levels += "]";
    return "{\"kind\":" + quoted(kind) + ",\"span\":\"\",\"body\":" + quoted(body) +
           ",\"term\":" + quoted(term) + ",\"edited\":" + (edited ? "true" : "false") +
           ",\"deeper\":" + levels + "}";
}

inline QByteArray sse(const QByteArray &json)
{
    return "data: " + json + "\n\n";
}

} // namespace notereplies
