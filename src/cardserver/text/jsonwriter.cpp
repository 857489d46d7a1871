#include "text/jsonwriter.h"

namespace cardserver {

void JsonWriter::separate()
{
    if (!m_first)
        m_out += ',';
    m_first = false;
}

JsonWriter &JsonWriter::beginObject()
{
    separate();
    m_out += '{';
    m_first = true;
    return *this;
}

JsonWriter &JsonWriter::endObject()
{
    m_out += '}';
    m_first = false;
    return *this;
}

JsonWriter &JsonWriter::beginArray()
{
    separate();
    m_out += '[';
    m_first = true;
    return *this;
}

JsonWriter &JsonWriter::endArray()
{
    m_out += ']';
    m_first = false;
    return *this;
}

JsonWriter &JsonWriter::key(const char *name)
{
    separate();
    m_out += '"';
    m_out += name;
    m_out += "\":";
    m_first = true; // the value that follows takes no comma
    return *this;
}

JsonWriter &JsonWriter::value(const QString &text)
{
    separate();
    const QByteArray utf8 = text.toUtf8();
    m_out.reserve(m_out.size() + size_t(utf8.size()) + 2);
    m_out += '"';
    static const char hex[] = "0123456789abcdef";
    for (const char c : utf8) {
        const auto u = static_cast<unsigned char>(c);
        switch (c) {
        case '"':
            m_out += "\\\"";
            break;
        case '\\':
            m_out += "\\\\";
            break;
        case '\n':
            m_out += "\\n";
            break;
        case '\r':
            m_out += "\\r";
            break;
        case '\t':
            m_out += "\\t";
            break;
        default:
            if (u < 0x20) {
                m_out += "\\u00";
                m_out += hex[u >> 4];
                m_out += hex[u & 0xF];
            } else {
                m_out += c;
            }
        }
    }
    m_out += '"';
    return *this;
}

JsonWriter &JsonWriter::value(qint64 number)
{
    separate();
    m_out += std::to_string(number);
    return *this;
}

JsonWriter &JsonWriter::value(bool flag)
{
    separate();
    m_out += flag ? "true" : "false";
    return *this;
}

JsonWriter &JsonWriter::raw(const QString &json)
{
    separate();
    m_out += json.isEmpty() ? std::string("null") : json.toStdString();
    return *this;
}

JsonWriter &JsonWriter::raw(const std::string &json)
{
    separate();
    m_out += json.empty() ? std::string("null") : json;
    return *this;
}

JsonWriter &JsonWriter::null()
{
    separate();
    m_out += "null";
    return *this;
}

} // namespace cardserver
