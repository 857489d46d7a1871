#pragma once

// Replies of the library calls as the server sends them (snake_case keys), for scripted tests.
#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace replies {

inline QJsonObject summary(int id, const QString &name, std::optional<int> folder = std::nullopt,
                           int cards = 0, int notes = 0)
{
    return QJsonObject{{"id", id},
                       {"name", name},
                       {"description", ""},
                       {"language", "de"},
                       {"native_language", "en"},
                       {"created_at", "2026-11-01"},
                       {"card_count", cards},
                       {"known_count", 0},
                       {"note_count", notes},
                       {"folder_id", folder ? QJsonValue(*folder) : QJsonValue()}};
}

inline QJsonObject folder(int id, const QString &name, int decks = 0)
{
    return QJsonObject{{"id", id}, {"name", name}, {"deck_count", decks}};
}

inline QJsonObject card(int id, int deck, const QString &term, const QString &pos = "noun",
                        int streak = 0, const QString &translation = "x")
{
    return QJsonObject{{"id", id},
                       {"deck_id", deck},
                       {"term", term},
                       {"reading", ""},
                       {"part_of_speech", pos},
                       {"gender", ""},
                       {"translation", translation},
                       {"definition", ""},
                       {"usage_notes", ""},
                       {"examples", QJsonArray{}},
                       {"related", QJsonArray{}},
                       {"conjugations", QJsonArray{}},
                       {"seen", streak},
                       {"known", streak},
                       {"streak", streak},
                       {"last_reviewed", QJsonValue()},
                       {"created_at", "2026-11-01"}};
}

inline QJsonObject deck(int id, const QString &name, const QJsonArray &cards)
{
    return QJsonObject{{"id", id},
                       {"name", name},
                       {"description", ""},
                       {"language", "de"},
                       {"native_language", "en"},
                       {"created_at", "2026-11-01"},
                       {"cards", cards}};
}

inline QByteArray bytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

inline QByteArray bytes(const QJsonArray &array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

inline QJsonObject body(const QByteArray &bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

} // namespace replies
