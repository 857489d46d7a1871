#include "windowplacement.h"

#include <algorithm>

namespace orvel {

namespace {

QRect inset(const QRect &available)
{
    const int x = WindowPlacement::margin(available.width());
    const int y = WindowPlacement::margin(available.height());
    return available.adjusted(x, y, -x, -y);
}

qint64 area(const QRect &rect)
{
    return rect.isValid() ? qint64(rect.width()) * rect.height() : 0;
}

} // namespace

int WindowPlacement::margin(int length)
{
    return std::clamp(length / 20, 0, 48);
}

QRect WindowPlacement::fresh(QSize intended, const QRect &available)
{
    const QSize size = intended.boundedTo(inset(available).size()).expandedTo(QSize(1, 1));
    QRect rect(QPoint(), size);
    rect.moveCenter(available.center());
    return rect;
}

QSize WindowPlacement::minimum(QSize intended, const QRect &available)
{
    return intended.boundedTo(inset(available).size());
}

std::optional<QRect> WindowPlacement::remembered(const QRect &saved, const QList<QRect> &available)
{
    if (!saved.isValid())
        return std::nullopt;
    for (const QRect &screen : available) {
        if (2 * area(saved & screen) <= area(saved))
            continue;
        if (saved.width() <= screen.width() && saved.height() <= screen.height())
            return saved;
        QRect rect(saved.topLeft(), saved.size().boundedTo(screen.size()));
        rect.moveLeft(std::clamp(rect.left(), screen.left(), screen.right() - rect.width() + 1));
        rect.moveTop(std::clamp(rect.top(), screen.top(), screen.bottom() - rect.height() + 1));
        return rect;
    }
    return std::nullopt;
}

} // namespace orvel
