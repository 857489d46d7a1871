#pragma once
#include <QString>
#include <string>

namespace cardserver {

// Writes JSON text straight into a buffer, for the replies that list many records (the deck
// list is asked for on every screen): building QJsonObjects first costs several times more.
// Commas are placed by the writer; callers pair begin and end calls.
class JsonWriter {
public:
    JsonWriter &beginObject();
    JsonWriter &endObject();
    JsonWriter &beginArray();
    JsonWriter &endArray();
    JsonWriter &key(const char *name);

    JsonWriter &value(const QString &text);
    JsonWriter &value(qint64 number);
    JsonWriter &value(bool flag);
    JsonWriter &null();
    // A value that is JSON text already (a stored list), copied as it is.
    JsonWriter &raw(const QString &json);
    JsonWriter &raw(const std::string &json);

    const std::string &text() const { return m_out; }
    std::string take() { return std::move(m_out); }

private:
    void separate();

    std::string m_out;
    bool m_first = true;
};

} // namespace cardserver
