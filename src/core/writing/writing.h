#pragma once

#include "server/events/cardevent.h"

#include <optional>
#include <QObject>
#include <QString>

namespace orvel {

// The live progress of one card being written: what the learner typed and each part of the card
// as the server's events bring it. Shown by the writing view; a value, copied freely.
struct Writing {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString input MEMBER input)
    Q_PROPERTY(QString term MEMBER term)
    Q_PROPERTY(QString translation MEMBER translation)
    Q_PROPERTY(QString definition MEMBER definition)
    Q_PROPERTY(QString usage MEMBER usage)
    Q_PROPERTY(int examples MEMBER examples)
    Q_PROPERTY(int conjugations MEMBER conjugations)
    Q_PROPERTY(bool failed READ failed)
    Q_PROPERTY(bool written MEMBER written)
    Q_PROPERTY(QString trouble READ troubleText)
public:
    QString id{};
    QString input{};
    QString term{};
    QString translation{};
    QString definition{};
    QString usage{};
    int examples = 0;
    int conjugations = 0;
    std::optional<QString> trouble{};
    // The card arrived: parts still empty will not come.
    bool written = false;

    // A fresh record for the trimmed input, with a new UUID and nothing written yet.
    static Writing begin(const QString &input);

    bool failed() const { return trouble.has_value(); }
    QString troubleText() const { return trouble.value_or(QString()); }

    // Takes one progress event: a text event for term, translation, definition or usage_notes
    // sets that part; a count event for examples or conjugations sets that count; a failed event
    // sets the trouble; the card event marks it written. Anything else changes nothing. True when
    // the record changed.
    bool take(const CardEvent &event);

    // The line a screen reader announces for a progress event ("translation: dog",
    // "examples: 3"); nothing for the other kinds.
    static std::optional<QString> narrationFor(const CardEvent &event);

    bool operator==(const Writing &) const = default;
};

} // namespace orvel
