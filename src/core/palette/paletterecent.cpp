#include "palette/paletterecent.h"

#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <cmath>
#include <limits>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace orvel {

namespace {

// Thrown inside decode() and turned into its `error`.
struct RecentDecodeFailure {
    QString reason;
};

int recentInteger(const QJsonObject &object, const QString &key)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined())
        throw RecentDecodeFailure{QStringLiteral("No value for key “%1”.").arg(key)};
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (!value.isDouble() || std::floor(number) != number ||
        number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        throw RecentDecodeFailure{QStringLiteral("“%1” is not a whole number.").arg(key)};
    return int(number);
}

QString recentText(const QJsonObject &object, const QString &key)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined())
        throw RecentDecodeFailure{QStringLiteral("No value for key “%1”.").arg(key)};
    if (!value.isString())
        throw RecentDecodeFailure{QStringLiteral("“%1” is not a text.").arg(key)};
    return value.toString();
}

QJsonObject recentCase(const QJsonValue &value)
{
    if (!value.isObject())
        throw RecentDecodeFailure{QStringLiteral("An entry is not an object.")};
    return value.toObject();
}

// A JSON string literal for `text`, quotes included.
QByteArray recentString(const QString &text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

} // namespace

PaletteRecent PaletteRecent::deck(int deckId)
{
    return PaletteRecent(deckId);
}

PaletteRecent PaletteRecent::card(const Card &card)
{
    return PaletteRecent(card);
}

int PaletteRecent::deckId() const
{
    if (const auto *deck = std::get_if<int>(&m_value))
        return *deck;
    return std::get<Card>(m_value).deckId;
}

std::optional<PaletteRecent::Card> PaletteRecent::card() const
{
    if (const auto *card = std::get_if<Card>(&m_value))
        return *card;
    return std::nullopt;
}

QString PaletteRecent::key() const
{
    if (const auto *deck = std::get_if<int>(&m_value))
        return QStringLiteral("deck-") + QString::number(*deck);
    return QStringLiteral("card-") + QString::number(std::get<Card>(m_value).cardId);
}

QByteArray PaletteRecent::encode(const QList<PaletteRecent> &recents)
{
    // Written by hand: QJsonObject sorts its keys, and a card's keys keep their field order.
    QByteArray out = "[";
    for (qsizetype i = 0; i < recents.size(); ++i) {
        if (i > 0)
            out += ',';
        if (recents[i].isDeck()) {
            out += "{\"deck\":{\"_0\":" + QByteArray::number(recents[i].deckId()) + "}}";
            continue;
        }
        const Card card = *recents[i].card();
        out += "{\"card\":{\"deckId\":" + QByteArray::number(card.deckId) +
               ",\"cardId\":" + QByteArray::number(card.cardId) +
               ",\"term\":" + recentString(card.term) +
               ",\"translation\":" + recentString(card.translation) +
               ",\"kind\":" + recentString(card.kind) + "}}";
    }
    out += ']';
    return out;
}

std::optional<QList<PaletteRecent>> PaletteRecent::decode(const QByteArray &data, QString *error)
{
    const auto fail = [error](const QString &reason) {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(data, &parse);
    if (parse.error != QJsonParseError::NoError)
        return fail(parse.errorString());
    if (!document.isArray())
        return fail(QStringLiteral("The list is not an array."));
    QList<PaletteRecent> recents;
    try {
        for (const QJsonValue &element : document.array()) {
            const QJsonObject entry = recentCase(element);
            if (entry.size() != 1)
                throw RecentDecodeFailure{
                    QStringLiteral("Invalid number of keys found, expected one.")};
            const QString which = entry.constBegin().key();
            const QJsonObject fields = recentCase(entry.constBegin().value());
            if (which == QLatin1String("deck")) {
                recents.append(deck(recentInteger(fields, QStringLiteral("_0"))));
            } else if (which == QLatin1String("card")) {
                Card card;
                card.deckId = recentInteger(fields, QStringLiteral("deckId"));
                card.cardId = recentInteger(fields, QStringLiteral("cardId"));
                card.term = recentText(fields, QStringLiteral("term"));
                card.translation = recentText(fields, QStringLiteral("translation"));
                card.kind = recentText(fields, QStringLiteral("kind"));
                recents.append(PaletteRecent::card(card));
            } else {
                throw RecentDecodeFailure{QStringLiteral("Unknown case “%1”.").arg(which)};
            }
        }
    } catch (const RecentDecodeFailure &failure) {
        return fail(failure.reason);
    }
    return recents;
}

QList<PaletteRecent> PaletteRecent::load()
{
    const QVariant stored = LocalSettings::store().value(settingskeys::paletteRecents());
    if (!stored.isValid())
        return {};
    return decode(stored.toByteArray()).value_or(QList<PaletteRecent>{});
}

void PaletteRecent::note(const PaletteRecent &recent)
{
    QList<PaletteRecent> recents = load();
    const QString key = recent.key();
    recents.removeIf([&key](const PaletteRecent &entry) { return entry.key() == key; });
    recents.prepend(recent);
    if (recents.size() > kept)
        recents = recents.first(kept);
    LocalSettings::store().setValue(settingskeys::paletteRecents(), encode(recents));
}

} // namespace orvel
