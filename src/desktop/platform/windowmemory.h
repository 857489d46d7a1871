#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

class QSettings;
class QWindow;

namespace orvel {

// The main window's place on screen from one run to the next: its rectangle and whether it was
// maximised, kept in the app's settings. The window opens where it was when that place still
// lies mostly on a screen, else at its intended size fitted to its screen (WindowPlacement).
class WindowMemory : public QObject {
    Q_OBJECT

public:
    // The window keeps its intended size and minimum until `show()`; `settings` outlives this.
    WindowMemory(QWindow *window, QSettings &settings, QObject *parent = nullptr);

    // Places the window and shows it, maximised when it was left maximised.
    void show();
    // Writes the window's place: its rectangle when last neither maximised nor minimised, and
    // whether it is maximised now.
    void save();

private:
    void geometryChanged();
    void stateChanged(Qt::WindowStates states);

    QPointer<QWindow> m_window;
    QSettings &m_settings;
    QRect m_normal;
    QRect m_previous;
};

} // namespace orvel
