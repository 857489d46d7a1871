#pragma once
#include <functional>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <stdexcept>

namespace cardserver {

// What a writer failed with, worded for the learner. status is the HTTP status the server answers
// with when the failure happens before a stream starts (422 bad input, 503 writer unavailable).
class WriterError : public std::runtime_error {
public:
    WriterError(const QString &message, int status = 503)
        : std::runtime_error(message.toStdString()), m_status(status)
    {}
    int status() const { return m_status; }
    QString message() const { return QString::fromStdString(what()); }

private:
    int m_status;
};

struct Languages {
    QString language;       // code of the language studied, e.g. "de"
    QString nativeLanguage; // code of the learner's language, e.g. "en"
};

// Progress of one card: a text field written (wire key, e.g. "translation", "reading", "gender",
// "part_of_speech", "definition", "usage_notes", "term") or a list field's item count
// ("examples", "related", "conjugations").
struct CardProgress {
    std::function<void(const QString &field, const QString &value)> text;
    std::function<void(const QString &field, int count)> count;
};

// A written card in wire form (snake_case keys): term, reading, part_of_speech, gender,
// translation, definition, usage_notes, examples [{sentence, translation, note}],
// related [{word, translation, relation}], conjugations [{tense, note, forms [{label, form}]}].
// The server adds id, deck_id, seen, known, streak, last_reviewed, created_at.
using WrittenCard = QJsonObject;

class Writer {
public:
    virtual ~Writer() = default;
    virtual QString name() const = 0; // "dictionary" or "llm"

    // All calls block and may run on any worker thread concurrently; they throw WriterError.
    virtual WrittenCard writeCard(const Languages &langs, const QString &input,
                                  const CardProgress &progress) = 0;
    // Candidate words of a text: each {term, seen_as, gloss, sentence, level}; onWord is called per
    // candidate as found.
    virtual QJsonArray extract(const Languages &langs, const QString &text,
                               const std::function<void(const QJsonObject &candidate)> &onWord) = 0;
    // A short lesson: {title, gist, explain, phrases [{phrase, reading, meaning, when}], pattern,
    // correction {wrong, right}, remember}.
    virtual QJsonObject byte(const Languages &langs, const QString &topic) = 0;
    // The margin of one line: a list of annotations {kind: translation|gloss|note|caution, span,
    // body, term}.
    virtual QJsonArray annotateLine(const Languages &langs, const QString &line,
                                    const QStringList &context) = 0;
    // The next deeper level of one remark: {level, body, last}.
    virtual QJsonObject deepen(const Languages &langs, const QString &line,
                               const QJsonObject &annotation, int level) = 0;
    // Lines for a slash command: kind "conj" (a conjugation table as lines) or "mnemonic" (a memory
    // hook).
    virtual QStringList compose(const Languages &langs, const QString &kind,
                                const QString &term) = 0;
};

} // namespace cardserver
