#pragma once
#include "writer.h"

#include <QJsonObject>
#include <QString>

namespace cardserver {

// The messages the llm writer sends: one system message naming the two languages, and per call
// a user message that asks for exactly the JSON object the call returns, keys in the order the
// learner sees them arrive.
class LlmPrompts {
public:
    static QString system(const Languages &langs);
    static QString card(const Languages &langs, const QString &input);
    static QString extract(const Languages &langs, const QString &text);
    static QString byte(const Languages &langs, const QString &topic);
    static QString annotate(const Languages &langs, const QString &line,
                            const QStringList &context);
    static QString deepen(const Languages &langs, const QString &line,
                          const QJsonObject &annotation, int level);
    static QString compose(const Languages &langs, const QString &kind, const QString &term);
};

} // namespace cardserver
