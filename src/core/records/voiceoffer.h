#pragma once

#include "records/field.h"
#include "records/voiceofferlanguage.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvel {

// The server's voice catalogue.
struct VoiceOffer {
    Q_GADGET
    Q_PROPERTY(bool audio MEMBER audio)
    Q_PROPERTY(QList<VoiceOfferLanguage> languages MEMBER languages)
public:
    bool audio = false;
    QList<VoiceOfferLanguage> languages{};

    using Language = VoiceOfferLanguage;

    bool operator==(const VoiceOffer &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("audio", &VoiceOffer::audio), json::field("languages", &VoiceOffer::languages));
};

} // namespace orvel
