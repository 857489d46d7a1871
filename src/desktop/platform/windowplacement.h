#pragma once

#include <optional>
#include <QList>
#include <QRect>
#include <QSize>

namespace orvel {

// Where a top-level window goes, as plain geometry in device-independent pixels: the rectangles
// are the window's own area (without the frame) and the screens' available areas (without
// panels and docks). A window never opens larger than the screen it opens on, whatever the
// scale factor makes of its intended size.
class WindowPlacement {
public:
    // The room left around a fitted window on each side: a twentieth of the length, at most 48.
    static int margin(int length);

    // A window with no remembered place: its intended size when that fits within `available`
    // less the margins, else shrunk to fit; centred on `available`.
    static QRect fresh(QSize intended, const QRect &available);

    // The smallest size the window may be made, lowered so that a fitted window still obeys it.
    static QSize minimum(QSize intended, const QRect &available);

    // A remembered rectangle, when more than half of it lies on one of the available areas: as
    // it was, or shrunk and moved onto that area when it has grown larger than the area. Nothing
    // when no screen holds most of it (a screen unplugged, a resolution or scale lowered).
    static std::optional<QRect> remembered(const QRect &saved, const QList<QRect> &available);
};

} // namespace orvel
