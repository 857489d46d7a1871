#pragma once

#include <optional>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

namespace orvel {

// Whether the desktop shows a dark appearance, kept up to date. It reads the freedesktop
// appearance setting through the desktop portal (org.freedesktop.appearance color-scheme:
// 1 = prefer dark, 2 = prefer light) and listens for its changes; without a portal, or when the
// desktop states no preference, it judges the application palette's window colour.
class ColourScheme : public QObject {
    Q_OBJECT

public:
    // Asks the portal on the session bus.
    explicit ColourScheme(QObject *parent = nullptr);
    // Asks the portal on the given bus (a private one in tests).
    explicit ColourScheme(const QDBusConnection &bus, QObject *parent = nullptr);

    bool dark() const { return m_dark; }
    // Whether the portal answered (the palette is the fallback otherwise).
    bool fromPortal() const { return m_portalValue.has_value(); }

signals:
    void darkChanged(bool dark);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void portalSettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void readPortal(const QDBusConnection &bus);
    void update();
    static bool paletteIsDark();

    std::optional<uint> m_portalValue;
    bool m_dark = false;
};

} // namespace orvel
