#pragma once

#include "records/field.h"

#include <QMap>
#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// The account's settings kept on the server. `voices` maps a language code to a voice
// id; its keys are data and are never case-converted.
struct Preferences {
    Q_GADGET
    Q_PROPERTY(QMap<QString, QString> voices MEMBER voices)
    Q_PROPERTY(double rate MEMBER rate)
    Q_PROPERTY(double gain MEMBER gain)
    Q_PROPERTY(bool hearOnFlip MEMBER hearOnFlip)
    Q_PROPERTY(QString skin MEMBER skin)
    Q_PROPERTY(std::optional<bool> marginAsYouGo MEMBER marginAsYouGo)
    Q_PROPERTY(std::optional<bool> audio MEMBER audio)
    Q_PROPERTY(std::optional<QString> provider MEMBER provider)
public:
    QMap<QString, QString> voices{};
    double rate = 0.0;
    double gain = 0.0;
    bool hearOnFlip = false;
    QString skin{};
    std::optional<bool> marginAsYouGo{};
    std::optional<bool> audio{};
    std::optional<QString> provider{};

    bool operator==(const Preferences &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("voices", &Preferences::voices), json::field("rate", &Preferences::rate),
        json::field("gain", &Preferences::gain),
        json::field("hearOnFlip", &Preferences::hearOnFlip),
        json::field("skin", &Preferences::skin),
        json::field("marginAsYouGo", &Preferences::marginAsYouGo),
        json::field("audio", &Preferences::audio), json::field("provider", &Preferences::provider));
};

} // namespace orvel
