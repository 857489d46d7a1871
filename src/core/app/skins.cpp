#include "skins.h"

namespace orvel {

namespace {

Skin make(QString id, QString name, SkinFamily family, const QStringList &values)
{
    Skin skin{std::move(id), std::move(name), family, {}};
    const QStringList roles = Skin::roles();
    for (qsizetype i = 0; i < roles.size(); ++i)
        skin.colours.insert(roles[i], values.value(i));
    return skin;
}

} // namespace

Skins::Skins(QObject *parent) : QObject(parent) {}

const QList<Skin> &Skins::all()
{
    // window, surface, sidebar, text, secondaryText, accent, accentText, accentWash, line, good,
    // danger
    static const QList<Skin> skins{
        make("paper", "Paper", SkinFamily::light,
             {"#FBF8F3", "#FFFFFF", "#F3EEE6", "#1F1B16", "#6B6259", "#B4532A", "#FFFFFF",
              "#F6E4D9", "#E6DED2", "#3C7A4E", "#B3261E"}),
        make("sage", "Sage", SkinFamily::light,
             {"#F5F7F2", "#FFFFFF", "#EAEFE5", "#18201A", "#5A6A5D", "#2F6B4F", "#FFFFFF",
              "#DDEBE2", "#DCE3D6", "#2F6B4F", "#B3261E"}),
        make("ink", "Ink", SkinFamily::dark,
             {"#16171B", "#1F2127", "#121317", "#ECE8E1", "#A39E95", "#E08A5B", "#16171B",
              "#3A2A22", "#2E3139", "#7CC48F", "#F2867E"}),
        make("night", "Night", SkinFamily::dark,
             {"#0F1419", "#172029", "#0B1015", "#E3EAF0", "#93A4B3", "#6CB4E4", "#0F1419",
              "#1D3344", "#243241", "#7CC48F", "#F2867E"}),
    };
    return skins;
}

const Skin *Skins::find(const QString &id)
{
    for (const Skin &skin : all())
        if (skin.id == id)
            return &skin;
    return nullptr;
}

std::optional<SkinFamily> Skins::familyOf(const QString &id)
{
    if (id == QLatin1String("light"))
        return SkinFamily::light;
    if (id == QLatin1String("dark"))
        return SkinFamily::dark;
    if (const Skin *skin = find(id))
        return skin->family;
    return std::nullopt;
}

QString Skins::defaultFor(SkinFamily family)
{
    return family == SkinFamily::dark ? QStringLiteral("ink") : QStringLiteral("paper");
}

QString Skins::effective(const QString &chosen, SkinFamily shown)
{
    const Skin *skin = find(chosen);
    return skin && skin->family == shown ? skin->id : defaultFor(shown);
}

QVariantMap Skins::palette(const QString &id) const
{
    const Skin *skin = find(id);
    if (!skin)
        skin = find(defaultFor(SkinFamily::light));
    QVariantMap map;
    for (auto it = skin->colours.cbegin(); it != skin->colours.cend(); ++it)
        map.insert(it.key(), it.value());
    return map;
}

bool Skins::isDark(const QString &id) const
{
    return familyOf(id) == SkinFamily::dark;
}

QVariantList Skins::allForQml() const
{
    QVariantList list;
    for (const Skin &skin : all())
        list.append(QVariantMap{{"id", skin.id},
                                {"name", skin.name},
                                {"dark", skin.family == SkinFamily::dark},
                                {"window", skin.colours.value("window")},
                                {"surface", skin.colours.value("surface")},
                                {"accent", skin.colours.value("accent")},
                                {"text", skin.colours.value("text")}});
    return list;
}

} // namespace orvel
