#include "app/ScreenScroll.h"

#include "display/ScreenRoom.h"

#include <QEvent>
#include <QScrollBar>

namespace
{

/// What the main window has around its panel: margins, the status bar.
constexpr QSize surroundings(16, 30);

} // namespace

ScreenScroll::ScreenScroll(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // Tab goes from field to field
}

QSize ScreenScroll::sizeHint() const
{
    return widget() ? widget()->minimumSizeHint() : QScrollArea::sizeHint();
}

QSize ScreenScroll::minimumSizeHint() const
{
    if (!widget())
        return QScrollArea::minimumSizeHint();
    const QSize whole = widget()->minimumSizeHint();
    const QSize room = screenRoom(*this) - surroundings;
    QSize wanted = whole;
    if (whole.height() > room.height())
        wanted.rwidth() += verticalScrollBar()->sizeHint().width();
    if (whole.width() > room.width())
        wanted.rheight() += horizontalScrollBar()->sizeHint().height();
    return wanted.boundedTo(room);
}

bool ScreenScroll::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}
