#include "partialjson.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace cardserver {

namespace {

// Parses one JSON value of any kind (QJsonDocument only takes objects and arrays).
bool parseValue(const QString &text, QJsonValue &out)
{
    QJsonParseError error{};
    const QJsonDocument doc =
        QJsonDocument::fromJson(QByteArray("[") + text.toUtf8() + QByteArray("]"), &error);
    if (error.error != QJsonParseError::NoError || doc.array().size() != 1)
        return false;
    out = doc.array().first();
    return true;
}

} // namespace

void PartialJson::emitMember(qsizetype end)
{
    QJsonValue value;
    if (m_valueStart >= 0 && parseValue(m_buf.mid(m_valueStart, end - m_valueStart), value) &&
        onMember)
        onMember(m_key, value);
    m_valueStart = -1;
}

void PartialJson::emitElement(qsizetype end)
{
    const QString text = m_buf.mid(m_elementStart, end - m_elementStart).trimmed();
    QJsonValue value;
    if (!text.isEmpty() && parseValue(text, value) && onElement)
        onElement(m_key, value);
}

void PartialJson::feed(const QString &piece)
{
    m_buf += piece;
    for (; m_pos < m_buf.size() && !m_finished; ++m_pos) {
        const QChar c = m_buf[m_pos];
        if (m_inString) {
            if (m_escape) {
                m_escape = false;
            } else if (c == u'\\') {
                m_escape = true;
            } else if (c == u'"') {
                m_inString = false;
                if (m_depth == 1 && m_expect == Expect::Key) {
                    QJsonValue key;
                    parseValue(m_buf.mid(m_keyStart, m_pos + 1 - m_keyStart), key);
                    m_key = key.toString();
                    m_expect = Expect::Colon;
                } else if (m_depth == 1 && m_expect == Expect::Value) {
                    emitMember(m_pos + 1); // a string member is complete at its closing quote
                    m_expect = Expect::After;
                }
            }
            continue;
        }
        if (m_expect == Expect::Object) {
            if (c == u'{') {
                m_depth = 1;
                m_expect = Expect::Key;
            }
            continue;
        }
        if (c.isSpace())
            continue;
        switch (c.unicode()) {
        case u'"':
            m_inString = true;
            if (m_depth == 1 && m_expect == Expect::Key)
                m_keyStart = m_pos;
            else if (m_depth == 1 && m_expect == Expect::Value)
                m_valueStart = m_pos;
            break;
        case u'{':
        case u'[':
            if (m_depth == 1 && m_expect == Expect::Value) {
                m_valueStart = m_pos;
                m_valueIsArray = c == u'[';
                m_elementStart = m_pos + 1;
            }
            ++m_depth;
            break;
        case u'}':
        case u']':
            if (m_depth == 2 && m_valueIsArray && c == u']')
                emitElement(m_pos);
            if (m_depth == 1 && m_expect == Expect::Scalar)
                emitMember(m_pos);
            --m_depth;
            if (m_depth == 1 && m_expect == Expect::Value) {
                emitMember(m_pos + 1);
                m_valueIsArray = false;
                m_expect = Expect::After;
            } else if (m_depth <= 0) {
                m_finished = true;
            }
            break;
        case u',':
            if (m_depth == 1) {
                if (m_expect == Expect::Scalar)
                    emitMember(m_pos);
                m_expect = Expect::Key;
            } else if (m_depth == 2 && m_valueIsArray) {
                emitElement(m_pos);
                m_elementStart = m_pos + 1;
            }
            break;
        case u':':
            if (m_depth == 1 && m_expect == Expect::Colon)
                m_expect = Expect::Value;
            break;
        default:
            if (m_depth == 1 && m_expect == Expect::Value) {
                m_valueStart = m_pos; // a number, true, false or null
                m_expect = Expect::Scalar;
            }
            break;
        }
    }
}

} // namespace cardserver
