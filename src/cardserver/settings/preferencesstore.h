#pragma once
#include <QJsonObject>

namespace cardserver {

class Database;

// The account's Preferences: voices per language, rate, gain, hear on flip, skin and
// margin as you go, stored as one JSON object with snake_case keys. `audio` and
// `provider` are not stored: they say what this server can speak with.
class PreferencesStore {
public:
    PreferencesStore(Database &db, bool audio) : m_db(db), m_audio(audio) {}

    QJsonObject get(qint64 userId);
    // Applies a literal-keyed change ("rate", "gain", "hearOnFlip", "voices", "skin",
    // "marginAsYouGo"); only given keys change. Throws ApiError 400/422 on bad values.
    QJsonObject update(qint64 userId, const QJsonObject &change);

private:
    QJsonObject stored(qint64 userId);
    QJsonObject withServerFacts(QJsonObject prefs) const;

    Database &m_db;
    bool m_audio;
};

} // namespace cardserver
