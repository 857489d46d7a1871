#include "colourscheme.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDebug>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace orvel {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString colourSchemeKey = QStringLiteral("color-scheme");

// The portal wraps the value in one or two variants depending on its version.
std::optional<uint> unwrap(QVariant value)
{
    for (int depth = 0; depth < 3; ++depth) {
        if (value.canConvert<QDBusVariant>() && value.userType() == qMetaTypeId<QDBusVariant>())
            value = value.value<QDBusVariant>().variant();
        else if (value.userType() == qMetaTypeId<QDBusArgument>()) {
            QDBusVariant inner;
            value.value<QDBusArgument>() >> inner;
            value = inner.variant();
        } else
            break;
    }
    bool ok = false;
    const uint number = value.toUInt(&ok);
    return ok ? std::optional<uint>(number) : std::nullopt;
}

} // namespace

ColourScheme::ColourScheme(QObject *parent) : ColourScheme(QDBusConnection::sessionBus(), parent) {}

ColourScheme::ColourScheme(const QDBusConnection &connection, QObject *parent) : QObject(parent)
{
    QDBusConnection bus = connection;
    if (bus.isConnected()) {
        // QtDBus finds the slot's parameter types by name, and Qt 6 knows a type's name only
        // once the type is registered; until then the connection is silently refused. Nothing
        // has used QDBusVariant yet this early in the app's life.
        qRegisterMetaType<QDBusVariant>();
        if (!bus.connect(portalService, portalPath, settingsInterface,
                         QStringLiteral("SettingChanged"), this,
                         SLOT(portalSettingChanged(QString, QString, QDBusVariant))))
            qWarning() << "orvel: cannot follow changes of the desktop's colour scheme";
        readPortal(bus);
    }
    qApp->installEventFilter(this);
    m_dark = m_portalValue == 1u || (m_portalValue.value_or(0) == 0 && paletteIsDark());
}

bool ColourScheme::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        update();
    return QObject::eventFilter(watched, event);
}

void ColourScheme::portalSettingChanged(const QString &group, const QString &key,
                                        const QDBusVariant &value)
{
    if (group != appearanceGroup || key != colourSchemeKey)
        return;
    m_portalValue = unwrap(value.variant());
    update();
}

void ColourScheme::readPortal(const QDBusConnection &bus)
{
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface,
                                                       QStringLiteral("Read"));
    call << appearanceGroup << colourSchemeKey;
    // A short wait: at start-up the answer decides the first frame's colours.
    const QDBusMessage reply = bus.call(call, QDBus::Block, 300);
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
        m_portalValue = unwrap(reply.arguments().constFirst());
}

void ColourScheme::update()
{
    const bool dark = m_portalValue == 1u || (m_portalValue.value_or(0) == 0 && paletteIsDark());
    if (dark == m_dark)
        return;
    m_dark = dark;
    emit darkChanged(dark);
}

bool ColourScheme::paletteIsDark()
{
    const QColor window = QGuiApplication::palette().color(QPalette::Window);
    return window.lightnessF() < 0.5;
}

} // namespace orvel
