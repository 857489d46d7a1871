#pragma once

#include "records/field.h"
#include "records/noteline.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// A note: a page of lines with their margin, in page order.
struct Note {
    Q_GADGET
    Q_PROPERTY(int id MEMBER id)
    Q_PROPERTY(int deckId MEMBER deckId)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString createdAt MEMBER createdAt)
    Q_PROPERTY(QString updatedAt MEMBER updatedAt)
    Q_PROPERTY(QList<NoteLine> lines MEMBER lines)
public:
    int id = 0;
    int deckId = 0;
    QString title{};
    QString createdAt{};
    QString updatedAt{};
    QList<NoteLine> lines{};

    bool operator==(const Note &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("id", &Note::id), json::field("deckId", &Note::deckId),
        json::field("title", &Note::title), json::field("createdAt", &Note::createdAt),
        json::field("updatedAt", &Note::updatedAt), json::field("lines", &Note::lines));
};

} // namespace orvel
