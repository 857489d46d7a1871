#pragma once

#include "records/field.h"

#include <QObject>
#include <QString>

#include <optional>

namespace orvel {

// A language the server offers; `code` is its natural key for look-ups.
struct Language {
    Q_GADGET
    Q_PROPERTY(QString code MEMBER code)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString endonym MEMBER endonym)
    Q_PROPERTY(std::optional<QString> script MEMBER script)
    Q_PROPERTY(std::optional<QString> variety MEMBER variety)
public:
    QString code{};
    QString name{};
    QString endonym{};
    std::optional<QString> script{};
    std::optional<QString> variety{};

    bool operator==(const Language &) const = default;

    static constexpr auto fields = std::make_tuple(
        json::field("code", &Language::code), json::field("name", &Language::name),
        json::field("endonym", &Language::endonym), json::field("script", &Language::script),
        json::field("variety", &Language::variety));
};

} // namespace orvel
