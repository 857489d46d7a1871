#pragma once
#include <functional>
#include <QJsonValue>
#include <QString>

namespace cardserver {

// Reads a JSON object as it arrives in pieces and reports each top-level member the moment its
// value is complete ("translation" as soon as its closing quote arrives), and each element of a
// top-level array as soon as that element is complete. Text before the first "{" (a stray
// "```json" fence) is skipped.
class PartialJson {
public:
    std::function<void(const QString &key, const QJsonValue &value)> onMember;
    std::function<void(const QString &key, const QJsonValue &element)> onElement;

    void feed(const QString &piece);
    // The whole text fed so far.
    const QString &text() const { return m_buf; }
    // The top-level object has been closed.
    bool finished() const { return m_finished; }

private:
    enum class Expect { Object, Key, Colon, Value, Scalar, After };
    void emitMember(qsizetype end);
    void emitElement(qsizetype end);

    QString m_buf;
    qsizetype m_pos = 0;
    int m_depth = 0;
    bool m_inString = false;
    bool m_escape = false;
    bool m_finished = false;
    Expect m_expect = Expect::Object;
    QString m_key;
    qsizetype m_keyStart = -1;
    qsizetype m_valueStart = -1;
    bool m_valueIsArray = false;
    qsizetype m_elementStart = -1;
};

} // namespace cardserver
