#pragma once

#include <QObject>
#include <QtQml/qqml.h>

namespace orvel {

// Whether the desktop asks for reduced motion, read once: ORVEL_REDUCE_MOTION=1 in the
// environment, GNOME's org.gnome.desktop.interface enable-animations switched off, or KDE's
// animation speed set to instant. The writing view then shows arriving rows without animating.
class MotionPreference : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool reduced READ reduced CONSTANT)
public:
    explicit MotionPreference(QObject *parent = nullptr);

    bool reduced() const { return m_reduced; }

    // Asks the desktop (see the class comment); the environment variable wins when set.
    static bool desktopAsksForReducedMotion();

private:
    bool m_reduced = false;
};

} // namespace orvel
