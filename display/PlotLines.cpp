#include "display/PlotLines.h"

#include "display/Pixel.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

// Up to here a painter's own clipping is exact and fast.
constexpr int ordinaryCoordinate = 1 << 14;

bool isOrdinary(const QLine& line)
{
    const auto ordinary = [](int v) { return v > -ordinaryCoordinate && v < ordinaryCoordinate; };
    return ordinary(line.x1()) && ordinary(line.y1()) && ordinary(line.x2()) && ordinary(line.y2());
}

bool passesBy(const QLine& line, const QRect& rect)
{
    return std::max(line.x1(), line.x2()) < rect.left() ||
           std::min(line.x1(), line.x2()) > rect.right() ||
           std::max(line.y1(), line.y2()) < rect.top() ||
           std::min(line.y1(), line.y2()) > rect.bottom();
}

// The stretch of the line, from 0 at its start to 1 at its end, that lies between two limits in
// one direction.
struct Stretch {
    double from = 0.0;
    double to = 1.0;

    void narrow(double start, double length, double low, double high)
    {
        if (length == 0.0)
            return; // passesBy() has seen to it
        const double a = (low - start) / length;
        const double b = (high - start) / length;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    }
};

} // namespace

std::optional<QLine> reachingLine(const QLine& line, const QRect& rect)
{
    if (passesBy(line, rect))
        return std::nullopt;
    if (isOrdinary(line))
        return line;
    const double x = line.x1();
    const double y = line.y1();
    const double dx = line.x2() - x;
    const double dy = line.y2() - y;
    Stretch stretch;
    stretch.narrow(x, dx, rect.left(), rect.right());
    stretch.narrow(y, dy, rect.top(), rect.bottom());
    if (stretch.from > stretch.to)
        return std::nullopt;
    return QLine(roundToInt(x + stretch.from * dx), roundToInt(y + stretch.from * dy),
                 roundToInt(x + stretch.to * dx), roundToInt(y + stretch.to * dy));
}

PlotLines::PlotLines(const ChCoord& coord, int penWidth)
    : m_coord(coord), m_canvas(coord.canvasSize()),
      m_reach(QRect(QPoint(0, 0), m_canvas)
                  .adjusted(-penWidth - 1, -penWidth - 1, penWidth + 1, penWidth + 1))
{
}

void PlotLines::add(double x1, double y1, double x2, double y2)
{
    const double sx1 = m_coord.xToScreen(x1);
    const double sy1 = m_coord.yToScreen(y1);
    const double sx2 = m_coord.xToScreen(x2);
    const double sy2 = m_coord.yToScreen(y2);
    if (std::isnan(sx1) || std::isnan(sy1) || std::isnan(sx2) || std::isnan(sy2))
        return;
    addPixels(QLine(truncToInt(sx1), truncToInt(sy1), truncToInt(sx2), truncToInt(sy2)));
}

void PlotLines::addPixels(const QLine& line)
{
    const std::optional<QLine> reaching = reachingLine(line, m_reach);
    if (reaching && !extendsLast(*reaching))
        m_lines.append(*reaching);
}

void PlotLines::addVertical(double x)
{
    const double sx = m_coord.xToScreen(x);
    if (!std::isnan(sx))
        addPixels(QLine(truncToInt(sx), 0, truncToInt(sx), m_canvas.height()));
}

void PlotLines::addHorizontal(double y)
{
    const double sy = m_coord.yToScreen(y);
    if (!std::isnan(sy))
        addPixels(QLine(0, truncToInt(sy), m_canvas.width(), truncToInt(sy)));
}

void PlotLines::draw(QPainter& painter, const QPen& pen) const
{
    painter.setPen(pen);
    painter.drawLines(m_lines);
}

bool PlotLines::extendsLast(const QLine& line)
{
    if (m_lines.isEmpty() || line.x1() != line.x2())
        return false;
    QLine& last = m_lines.last();
    if (last.x1() != line.x1() || last.x2() != line.x1())
        return false;
    const int lastTop = std::min(last.y1(), last.y2());
    const int lastBottom = std::max(last.y1(), last.y2());
    const int top = std::min(line.y1(), line.y2());
    const int bottom = std::max(line.y1(), line.y2());
    if (top > lastBottom || bottom < lastTop)
        return false;
    last = QLine(line.x1(), std::min(top, lastTop), line.x1(), std::max(bottom, lastBottom));
    return true;
}
