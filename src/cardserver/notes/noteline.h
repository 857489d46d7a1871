#pragma once
#include <QJsonArray>
#include <QString>

namespace cardserver {

// One stored line of a note, as the margin code needs it.
struct NoteLine {
    qint64 id = 0;
    qint64 noteId = 0;
    QString text;
    QJsonArray annotations;
    QString annotatedText;

    // "blank" when no margin was ever written, "stale" when the text changed since it was,
    // "annotated" when the margin is current.
    static QString state(const QString &text, const QJsonArray &annotations,
                         const QString &annotatedText)
    {
        if (annotations.isEmpty() && annotatedText.isEmpty())
            return QStringLiteral("blank");
        if (annotatedText != text)
            return QStringLiteral("stale");
        return QStringLiteral("annotated");
    }
    QString state() const { return state(text, annotations, annotatedText); }
    // A line that wants a margin: it has words, and its margin is missing or out of date.
    bool pending() const { return !text.trimmed().isEmpty() && state() != "annotated"; }
};

} // namespace cardserver
