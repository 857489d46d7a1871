#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

namespace orvel {

// One entry of a deck's note list.
struct NoteSummary {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
    Q_PROPERTY(QString updatedAt MEMBER updatedAt)
    Q_PROPERTY(int lineCount MEMBER lineCount)
    Q_PROPERTY(int pendingCount MEMBER pendingCount)
public:
    int id = 0;
    QString title{};
    QString createdAt{};
    QString updatedAt{};
    int lineCount = 0;
    int pendingCount = 0;

    bool operator==(const NoteSummary &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &NoteSummary::id), json::field("title", &NoteSummary::title),
        json::field("createdAt", &NoteSummary::createdAt),
        json::field("updatedAt", &NoteSummary::updatedAt),
        json::field("lineCount", &NoteSummary::lineCount),
        json::field("pendingCount", &NoteSummary::pendingCount));
};

} // namespace orvel
