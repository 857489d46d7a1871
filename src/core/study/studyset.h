#pragma once

#include "records/card.h"

#include <QHash>
#include <QList>
#include <QString>

namespace orvel {

// The cards a session studies, with the language each card is spoken in (by its deck id).
struct StudySet {
    QString title;
    QList<Card> cards;
    QHash<int, QString> languages;
};

} // namespace orvel
