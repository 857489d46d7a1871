#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// A folder of decks. Identified by `id`.
struct Folder {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(int deckCount MEMBER deckCount)
    Q_PROPERTY(QString sidebarKey READ sidebarKey)
public:
    int id = 0;
    QString name{};
    int deckCount = 0;

    // The side-list row key, "folder-3": never the same as a deck's key for the same id.
    QString sidebarKey() const;

    bool operator==(const Folder &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("id", &Folder::id), json::field("name", &Folder::name),
                        json::field("deckCount", &Folder::deckCount));
};

} // namespace orvel
