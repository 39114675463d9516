#include "results/Dot.h"

#include "display/ChCoord.h"
#include "display/Pixel.h"

#include <QPainter>
#include <QRect>

namespace
{

// Far from any canvas: nothing shows, and the toolkit's own arithmetic need not be trusted.
bool isFarOff(QPoint pixel)
{
    constexpr int far = 1 << 15;
    return pixel.x() < -far || pixel.x() > far || pixel.y() < -far || pixel.y() > far;
}

void drawEllipse(QPainter& painter, QPoint pixel, QPoint topLeft, QPoint bottomRight,
                 const QBrush& brush)
{
    if (isFarOff(pixel))
        return;
    painter.setBrush(brush);
    painter.drawEllipse(QRect(pixel + topLeft, pixel + bottomRight));
}

} // namespace

QPoint dotPixel(const ChCoord& coord, double x, double y)
{
    return {truncToInt(coord.xToScreen(x)), truncToInt(coord.yToScreen(y))};
}

void drawDot(QPainter& painter, QPoint pixel)
{
    drawEllipse(painter, pixel, QPoint(-1, -1), QPoint(0, 0), Qt::NoBrush);
}

void drawRing(QPainter& painter, QPoint pixel)
{
    drawEllipse(painter, pixel, QPoint(-2, -2), QPoint(1, 1), Qt::NoBrush);
}

void drawDisc(QPainter& painter, QPoint pixel, const QColor& color)
{
    painter.setPen(color);
    drawEllipse(painter, pixel, QPoint(-3, -3), QPoint(2, 2), color);
}
