#include "app/skins.h"

#include <cmath>
#include <QColor>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace orvel;

namespace {

double channel(int value)
{
    const double c = value / 255.0;
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double luminance(const QString &hex)
{
    const QColor colour = QColor::fromString(hex);
    return 0.2126 * channel(colour.red()) + 0.7152 * channel(colour.green()) +
           0.0722 * channel(colour.blue());
}

double contrast(const QString &a, const QString &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace

class TestSkins : public QObject {
    Q_OBJECT

private slots:
    void catalogueHasBothFamilies()
    {
        QSet<QString> ids;
        int light = 0;
        int dark = 0;
        for (const Skin &skin : Skins::all()) {
            QVERIFY2(!ids.contains(skin.id), qPrintable(skin.id));
            ids.insert(skin.id);
            (skin.family == SkinFamily::dark ? dark : light)++;
            QCOMPARE(Skins::familyOf(skin.id), std::optional(skin.family));
        }
        QVERIFY(light >= 2);
        QVERIFY(dark >= 2);
        QCOMPARE(Skins::familyOf("light"), std::optional(SkinFamily::light));
        QCOMPARE(Skins::familyOf("dark"), std::optional(SkinFamily::dark));
        QCOMPARE(Skins::familyOf(""), std::nullopt);
        QCOMPARE(Skins::familyOf("Paper"), std::nullopt); // identifiers are exact
        QCOMPARE(Skins::familyOf(Skins::defaultFor(SkinFamily::dark)),
                 std::optional(SkinFamily::dark));
    }

    void theChosenSkinShowsOnlyInItsFamily()
    {
        QCOMPARE(Skins::effective("night", SkinFamily::dark), QStringLiteral("night"));
        QCOMPARE(Skins::effective("night", SkinFamily::light), QStringLiteral("paper"));
        QCOMPARE(Skins::effective("dark", SkinFamily::dark), QStringLiteral("ink"));
    }

    void everySkinDefinesEveryRoleReadably()
    {
        static const QRegularExpression hex("^#[0-9A-F]{6}$");
        for (const Skin &skin : Skins::all()) {
            for (const QString &role : Skin::roles())
                QVERIFY2(hex.match(skin.colours.value(role)).hasMatch(),
                         qPrintable(skin.id + " " + role));
            // Text on every background it is drawn on, and the accent's own text.
            const QList<std::pair<QString, QString>> pairs{
                {"text", "window"},           {"text", "surface"},
                {"text", "sidebar"},          {"text", "accentWash"},
                {"secondaryText", "window"},  {"secondaryText", "surface"},
                {"secondaryText", "sidebar"}, {"accentText", "accent"},
                {"accent", "window"},         {"danger", "surface"}};
            for (const auto &[front, back] : pairs) {
                const double ratio = contrast(skin.colours[front], skin.colours[back]);
                QVERIFY2(ratio >= 4.5, qPrintable(QStringLiteral("%1: %2 on %3 is %4:1")
                                                      .arg(skin.id, front, back)
                                                      .arg(ratio, 0, 'f', 2)));
            }
        }
    }

    void qmlSeesThePalettes()
    {
        Skins skins;
        QCOMPARE(skins.palette("unknown").value("window").toString(),
                 skins.palette("paper").value("window").toString());
        QVERIFY(skins.isDark("night"));
        QVERIFY(!skins.isDark("sage"));
    }
};

QTEST_GUILESS_MAIN(TestSkins)
#include "tst_skins.moc"
