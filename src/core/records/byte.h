#pragma once

#include "records/correction.h"
#include "records/field.h"
#include "records/phrase.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// A short lesson on a topic. Sent back whole when the learner keeps parts of it.
struct Byte {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString gist MEMBER gist)
    Q_PROPERTY(QString explain MEMBER explain)
    Q_PROPERTY(QList<Phrase> phrases MEMBER phrases)
    Q_PROPERTY(QString pattern MEMBER pattern)
    Q_PROPERTY(Correction correction MEMBER correction)
    Q_PROPERTY(QString remember MEMBER remember)
public:
    QString title{};
    QString gist{};
    QString explain{};
    QList<Phrase> phrases{};
    QString pattern{};
    Correction correction{};
    QString remember{};

    // Every key may be missing or null; the member initialisers are the defaults.
    static constexpr bool lenient = true;

    bool operator==(const Byte &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("title", &Byte::title), json::field("gist", &Byte::gist),
        json::field("explain", &Byte::explain), json::field("phrases", &Byte::phrases),
        json::field("pattern", &Byte::pattern), json::field("correction", &Byte::correction),
        json::field("remember", &Byte::remember));
};

} // namespace orvel
