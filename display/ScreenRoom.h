#pragma once

#include <QSize>

class QShowEvent;
class QWidget;

/// The largest size in pixels that a window can have on its screen, so that all of it can be seen
/// together with the frame that the desktop draws around it.
QSize screenRoom(const QWidget& window);

/// Makes a window that is about to be shown no larger than its screen; one that the desktop brings
/// back, or that fills the screen, keeps its size.
void fitToScreen(QWidget& window, const QShowEvent& event);
