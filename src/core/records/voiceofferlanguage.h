#pragma once

#include "records/field.h"
#include "records/voice.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// One language of the voice catalogue: its voices, the one in use (`selected`), or an
// `error` shown in place of the voices.
struct VoiceOfferLanguage {
    Q_GADGET
    Q_PROPERTY(QString code MEMBER code)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString locale MEMBER locale)
    Q_PROPERTY(QString selected MEMBER selected)
    Q_PROPERTY(QList<Voice> voices MEMBER voices)
    Q_PROPERTY(std::optional<QString> error MEMBER error)
public:
    QString code{};
    QString name{};
    QString locale{};
    QString selected{};
    QList<Voice> voices{};
    std::optional<QString> error{};

    bool operator==(const VoiceOfferLanguage &) const = default;

    static constexpr auto fields =
        std::make_tuple(json::field("code", &VoiceOfferLanguage::code),
                        json::field("name", &VoiceOfferLanguage::name),
                        json::field("locale", &VoiceOfferLanguage::locale),
                        json::field("selected", &VoiceOfferLanguage::selected),
                        json::field("voices", &VoiceOfferLanguage::voices),
                        json::field("error", &VoiceOfferLanguage::error));
};

} // namespace orvel
