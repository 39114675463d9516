#include "display/ScreenRoom.h"

#include <QScreen>
#include <QShowEvent>
#include <QWidget>

#include <algorithm>

namespace
{

constexpr QSize desktopFrame(4, 30);

} // namespace

QSize screenRoom(const QWidget& window)
{
    return window.screen()->availableSize() - desktopFrame;
}

void fitToScreen(QWidget& window, const QShowEvent& event)
{
    if (!event.spontaneous() && !window.isMaximized() && !window.isFullScreen())
        window.resize(window.size().boundedTo(screenRoom(window)));
}

QRect placeBeside(const QRect& first, const QRect& screen, const QSize& wanted,
                  const QSize& smallest)
{
    const int left = first.left() - screen.left();
    const int right = screen.right() - first.right();
    const int room = std::max(left, right) - desktopFrame.width();
    const QSize most = (screen.size() - desktopFrame).expandedTo(smallest);
    const QSize size =
        QSize(std::min(wanted.width(), std::max(room, smallest.width())), wanted.height())
            .boundedTo(most);
    const int beside = right >= left ? first.right() + 1 : first.left() - size.width() - 1;
    const QSize outer = size + desktopFrame;
    const int lastX = screen.right() + 1 - outer.width();
    const int lastY = screen.bottom() + 1 - outer.height();
    return {QPoint(std::max(screen.left(), std::min(beside, lastX)),
                   std::max(screen.top(), std::min(first.top(), lastY))),
            size};
}
