#pragma once

#include <QSize>

class QRect;
class QShowEvent;
class QWidget;

/// The largest size in pixels that a window can have on its screen, so that all of it can be seen
/// together with the frame that the desktop draws around it.
QSize screenRoom(const QWidget& window);

/// Makes a window that is about to be shown no larger than its screen; one that the desktop brings
/// back, or that fills the screen, keeps its size.
void fitToScreen(QWidget& window, const QShowEvent& event);

/// Where a second window opens so that the first one can be reached: beside it, as large as it
/// wants to be or as the room there allows; where there is not even room for it at its smallest, at
/// that size over one side of the first.
/// @param first  the first window with its frame, on the screen
/// @return without the frame that the desktop will draw
QRect placeBeside(const QRect& first, const QRect& screen, const QSize& wanted,
                  const QSize& smallest);
