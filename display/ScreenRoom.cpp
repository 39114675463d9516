#include "display/ScreenRoom.h"

#include <QScreen>
#include <QShowEvent>
#include <QWidget>

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
