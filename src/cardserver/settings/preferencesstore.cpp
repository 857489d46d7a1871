#include "settings/preferencesstore.h"

#include "http/apierror.h"
#include "store/database.h"
#include "store/sql.h"

#include <QJsonDocument>

namespace cardserver {

namespace {

QJsonObject defaults()
{
    return {{"voices", QJsonObject()}, {"rate", 1.0}, {"gain", 1.0},
            {"hear_on_flip", false},   {"skin", ""},  {"margin_as_you_go", false}};
}

} // namespace

QJsonObject PreferencesStore::stored(qint64 userId)
{
    QJsonObject prefs = defaults();
    Sql q(m_db, "SELECT body FROM preferences WHERE user_id = ?");
    q.bind(userId).exec();
    if (q.next()) {
        const QJsonObject saved = QJsonDocument::fromJson(q.text(0).toUtf8()).object();
        for (auto it = saved.begin(); it != saved.end(); ++it)
            if (prefs.contains(it.key()))
                prefs.insert(it.key(), it.value());
    }
    return prefs;
}

QJsonObject PreferencesStore::withServerFacts(QJsonObject prefs) const
{
    prefs.insert("audio", m_audio);
    prefs.insert("provider", m_audio ? QJsonValue("espeak-ng") : QJsonValue());
    return prefs;
}

QJsonObject PreferencesStore::get(qint64 userId)
{
    return withServerFacts(stored(userId));
}

QJsonObject PreferencesStore::update(qint64 userId, const QJsonObject &change)
{
    auto number = [&](const char *key, double low, double high) {
        const QJsonValue v = change.value(key);
        if (!v.isDouble())
            throw ApiError::badRequest(QStringLiteral("“%1” must be a number.").arg(key));
        const double d = v.toDouble();
        if (d < low || d > high)
            throw ApiError::invalid(
                QStringLiteral("“%1” must be between %2 and %3.").arg(key).arg(low).arg(high));
        return d;
    };
    auto flag = [&](const char *key) {
        const QJsonValue v = change.value(key);
        if (!v.isBool())
            throw ApiError::badRequest(QStringLiteral("“%1” must be true or false.").arg(key));
        return v.toBool();
    };

    QJsonObject result;
    m_db.write([&] {
        QJsonObject prefs = stored(userId);
        if (change.contains("rate"))
            prefs.insert("rate", number("rate", 0.25, 4.0));
        if (change.contains("gain"))
            prefs.insert("gain", number("gain", 0.0, 100.0));
        if (change.contains("hearOnFlip"))
            prefs.insert("hear_on_flip", flag("hearOnFlip"));
        if (change.contains("marginAsYouGo"))
            prefs.insert("margin_as_you_go", flag("marginAsYouGo"));
        if (change.contains("skin")) {
            const QJsonValue v = change.value("skin");
            if (!v.isString())
                throw ApiError::badRequest(QStringLiteral("“skin” must be text."));
            if (v.toString().size() > 100)
                throw ApiError::invalid(QStringLiteral("That skin name is too long."));
            prefs.insert("skin", v.toString());
        }
        if (change.contains("voices")) {
            const QJsonValue v = change.value("voices");
            if (!v.isObject())
                throw ApiError::badRequest(
                    QStringLiteral("“voices” must be an object from language code to voice."));
            // The given languages change; a null or empty voice goes back to the default.
            QJsonObject voices = prefs.value("voices").toObject();
            const QJsonObject given = v.toObject();
            for (auto it = given.begin(); it != given.end(); ++it) {
                if (it.value().isNull() || it.value().toString().isEmpty()) {
                    if (!it.value().isNull() && !it.value().isString())
                        throw ApiError::badRequest(QStringLiteral("A voice must be text."));
                    voices.remove(it.key());
                } else if (!it.value().isString()) {
                    throw ApiError::badRequest(QStringLiteral("A voice must be text."));
                } else {
                    voices.insert(it.key(), it.value());
                }
            }
            prefs.insert("voices", voices);
        }
        Sql(m_db, "INSERT INTO preferences (user_id, body) VALUES (?, ?) ON CONFLICT(user_id) "
                  "DO UPDATE SET body = excluded.body")
            .bind(userId)
            .bind(QString::fromUtf8(QJsonDocument(prefs).toJson(QJsonDocument::Compact)))
            .exec();
        result = prefs;
    });
    return withServerFacts(result);
}

} // namespace cardserver
