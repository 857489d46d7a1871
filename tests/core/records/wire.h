#pragma once

// Reply objects as the server sends them (snake_case keys), for tests to decode whole or after
// removing or changing one key.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace wire {

inline QJsonObject card(int id = 7)
{
    return QJsonObject{
        {"id", id},
        {"deck_id", 3},
        {"term", "Hund"},
        {"reading", "hʊnt"},
        {"part_of_speech", "noun"},
        {"gender", "der"},
        {"translation", "dog"},
        {"definition", "a domesticated canine"},
        {"usage_notes", "common"},
        {"examples",
         QJsonArray{QJsonObject{
             {"sentence", "Der Hund bellt."}, {"translation", "The dog barks."}, {"note", ""}}}},
        {"related", QJsonArray{QJsonObject{
                        {"word", "Welpe"}, {"translation", "puppy"}, {"relation", "young of"}}}},
        {"conjugations",
         QJsonArray{
             QJsonObject{{"tense", "Plural"},
                         {"note", ""},
                         {"forms", QJsonArray{QJsonObject{{"label", "pl"}, {"form", "Hunde"}}}}}}},
        {"seen", 4},
        {"known", 3},
        {"streak", 2},
        {"last_reviewed", "2024-05-01T10:00:00Z"},
        {"created_at", "2024-04-01T09:00:00Z"},
    };
}

inline QJsonObject deckSummary()
{
    return QJsonObject{
        {"id", 12},         {"name", "German"},        {"description", "A1"},
        {"language", "de"}, {"native_language", "en"}, {"created_at", "2024-01-01"},
        {"card_count", 40}, {"known_count", 10},       {"last_studied", "2024-02-01"},
        {"note_count", 2},  {"folder_id", 5},
    };
}

inline QJsonObject media()
{
    return QJsonObject{
        {"id", 9},         {"url", "/media/9.jpg"}, {"width", 640},
        {"height", 480},   {"origin", "upload"},    {"source_url", ""},
        {"author", "Ann"}, {"licence", "CC BY"},    {"title", "A dog"},
    };
}

inline QJsonObject noteLine(int id = 1)
{
    return QJsonObject{
        {"id", id},
        {"note_id", 4},
        {"ordinal", id},
        {"text", "der Hund"},
        {"media", media()},
        {"source", "typed"},
        {"kind", "phrase"},
        {"annotations",
         QJsonArray{QJsonObject{
             {"kind", "gloss"},
             {"span", "Hund"},
             {"body", "dog"},
             {"term", "Hund"},
             {"edited", true},
             {"deeper", QJsonArray{QJsonObject{{"level", 2}, {"body", "more"}, {"last", true}}}}}}},
        {"annotated_text", "der Hund"},
        {"state", "annotated"},
        {"card_id", 7},
        {"created_at", "2024-03-01"},
    };
}

inline QJsonObject note()
{
    return QJsonObject{
        {"id", 4},
        {"deck_id", 3},
        {"title", "Park"},
        {"created_at", "2024-03-01"},
        {"updated_at", "2024-03-02"},
        {"lines", QJsonArray{noteLine(1), noteLine(2)}},
    };
}

inline QJsonObject candidate()
{
    return QJsonObject{{"term", "gehen"},
                       {"seen_as", "ging"},
                       {"gloss", "to go"},
                       {"sentence", "Er ging."},
                       {"level", "A1"}};
}

inline QJsonObject preferences()
{
    return QJsonObject{
        {"voices", QJsonObject{{"de", "de-DE-1"}, {"pt_BR", "pt-voice"}, {"zhHans", "zh-v"}}},
        {"rate", 0.9},
        {"gain", 3},
        {"hear_on_flip", true},
        {"skin", "paper"},
        {"margin_as_you_go", false},
    };
}

inline QByteArray bytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

inline QJsonObject without(QJsonObject object, const QString &key)
{
    object.remove(key);
    return object;
}

inline QJsonObject with(QJsonObject object, const QString &key, const QJsonValue &value)
{
    object.insert(key, value);
    return object;
}

} // namespace wire
