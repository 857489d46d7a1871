#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// One entry of the deck list. Identified by `id`; a reply without the note count
// counts no notes, one without a folder is unfiled.
struct DeckSummary {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString description MEMBER description)
    Q_PROPERTY(QString language MEMBER language)
    Q_PROPERTY(QString nativeLanguage MEMBER nativeLanguage)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
    Q_PROPERTY(int cardCount MEMBER cardCount)
    Q_PROPERTY(int knownCount MEMBER knownCount)
    Q_PROPERTY(std::optional<QString> lastStudied MEMBER lastStudied)
    Q_PROPERTY(int noteCount MEMBER noteCount)
    Q_PROPERTY(std::optional<int> folderId MEMBER folderId)
    Q_PROPERTY(QString sidebarKey READ sidebarKey)
public:
    int id = 0;
    QString name{};
    QString description{};
    QString language{};
    QString nativeLanguage{};
    QString createdAt{};
    int cardCount = 0;
    int knownCount = 0;
    std::optional<QString> lastStudied{};
    int noteCount = 0;
    std::optional<int> folderId{};

    // The side-list row key, "deck-12": never the same as a folder's key for the same id.
    QString sidebarKey() const;

    bool operator==(const DeckSummary &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &DeckSummary::id), json::field("name", &DeckSummary::name),
        json::field("description", &DeckSummary::description),
        json::field("language", &DeckSummary::language),
        json::field("nativeLanguage", &DeckSummary::nativeLanguage),
        json::field("createdAt", &DeckSummary::createdAt),
        json::field("cardCount", &DeckSummary::cardCount),
        json::field("knownCount", &DeckSummary::knownCount),
        json::field("lastStudied", &DeckSummary::lastStudied),
        json::defaulted("noteCount", &DeckSummary::noteCount),
        json::field("folderId", &DeckSummary::folderId));
};

} // namespace orvel
