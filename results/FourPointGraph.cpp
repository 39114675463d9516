#include "results/FourPointGraph.h"

#include "analysis/FourPoint.h"
#include "display/FramePainter.h"
#include "display/PlotLines.h"
#include "results/Dot.h"
#include "results/GridPainter.h"

#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace
{

const QColor equalAbsorptionColor(255, 255, 0);
const QColor referenceSumColor(255, 0, 255);
const QColor mixtureColor(0, 255, 255);
const QColor vPointColor(255, 0, 0);
const QColor pointColor(0, 0, 255);

constexpr double roomAround = 0.05;

// Background and scale of the target from all normalization points; with three of them this is the
// exact form.
std::optional<QPointF> targetPlace(const PointRows& rows, const PointChoice& choice, double rho)
{
    if (!choice.hasVPoint() || choice.normalization.size() < 3)
        return std::nullopt;
    std::vector<double> targets;
    for (const std::size_t i : choice.normalization)
        targets.push_back(rows[i].target());
    const TargetScale scale = FourPointLeastSquares(rows, choice).scale(targets.data());
    const PointRow& v = rows[choice.vPoint];
    const double withoutBackground = v.target() - scale.mu0 - scale.k * v.energy;
    const double m3 = scale.q / (rho + 1.0) * withoutBackground;
    return QPointF(rho * m3, m3);
}

class Bounds
{
public:
    void include(const QPointF& place)
    {
        if (!std::isfinite(place.x()) || !std::isfinite(place.y()))
            return;
        widen(m_x, place.x());
        widen(m_y, place.y());
    }

    PlaneRange withRoom() const { return {withRoom(m_x), withRoom(m_y)}; }

private:
    static void widen(AxisEnds& ends, double v)
    {
        ends.from = std::min(ends.from, v);
        ends.to = std::max(ends.to, v);
    }

    static AxisEnds withRoom(const AxisEnds& ends)
    {
        const double extent = ends.to - ends.from;
        if (extent == 0.0)
            return {ends.from - 0.5, ends.to + 0.5};
        return {ends.from - roomAround * extent, ends.to + roomAround * extent};
    }

    AxisEnds m_x{0.0, 0.0}; // the origin
    AxisEnds m_y{0.0, 0.0};
};

// The line through a place in a direction, from one end of the plot area to the other: from left to
// right where it is flat on the canvas, else from bottom to top.
void drawLineThrough(QPainter& painter, const ChCoord& coord, const QColor& color,
                     const QPointF& place, const QPointF& direction)
{
    const auto atX = [&](double x) {
        return place.y() + direction.y() / direction.x() * (x - place.x());
    };
    const auto atY = [&](double y) {
        return place.x() + direction.x() / direction.y() * (y - place.y());
    };
    const bool flat =
        std::fabs(coord.dxToScreen(direction.x())) >= std::fabs(coord.dyToScreen(direction.y()));
    PlotLines line(coord);
    if (flat)
        line.add(coord.rx0, atX(coord.rx0), coord.rx1, atX(coord.rx1));
    else
        line.add(atY(coord.ry0), coord.ry0, atY(coord.ry1), coord.ry1);
    line.draw(painter, color);
}

void drawVPointLines(QPainter& painter, const ChCoord& coord, const QPointF& v)
{
    PlotLines lines(coord);
    lines.addVertical(v.x());
    lines.addHorizontal(v.y());
    lines.draw(painter, QColor(Qt::black));
}

void drawMethodLines(QPainter& painter, const ChCoord& coord, const FourPointGeometry& geometry)
{
    drawLineThrough(painter, coord, equalAbsorptionColor, QPointF(0.0, 0.0),
                    QPointF(geometry.rho, 1.0));
    if (!geometry.target)
        return;
    drawLineThrough(painter, coord, referenceSumColor, *geometry.target, QPointF(1.0, -1.0));
    drawLineThrough(painter, coord, mixtureColor, *geometry.target, *geometry.target - *geometry.v);
}

// A filled disc for a row in use, a ring for one that is not.
void drawMark(QPainter& painter, const ChCoord& coord, const FourPointGeometry::Mark& mark)
{
    const QColor color = mark.vPoint ? vPointColor : pointColor;
    const QPoint pixel = dotPixel(coord, mark.place.x(), mark.place.y());
    if (mark.use)
        return drawDisc(painter, pixel, color);
    painter.setPen(color);
    drawRing(painter, pixel);
}

bool hasReferences(const PointRows& rows)
{
    return std::any_of(rows.begin(), rows.end(),
                       [](const PointRow& row) { return row.mut1 != 0.0 || row.mut2 != 0.0; });
}

} // namespace

double FourPointGeometry::fraction() const
{
    return (target->y() - pureRef2().y()) / (pureRef1().y() - pureRef2().y());
}

FourPointGeometry fourPointGeometry(const PointRows& rows, double rho)
{
    FourPointGeometry geometry;
    geometry.rho = rho;
    for (const PointRow& row : rows)
        geometry.marks.push_back({{row.reference1(), row.reference2()}, row.vPoint, row.use});
    const PointChoice choice = choosePoints(rows);
    if (choice.hasVPoint())
        geometry.v = geometry.marks[choice.vPoint].place;
    geometry.target = targetPlace(rows, choice, rho);
    return geometry;
}

PlaneRange fourPointRange(const FourPointGeometry& geometry)
{
    const bool anyUsed = std::any_of(geometry.marks.begin(), geometry.marks.end(),
                                     [](const FourPointGeometry::Mark& mark) { return mark.use; });
    Bounds bounds;
    for (const FourPointGeometry::Mark& mark : geometry.marks) {
        if (mark.use || !anyUsed)
            bounds.include(mark.place);
    }
    if (geometry.v) {
        bounds.include(geometry.pureRef1());
        bounds.include(geometry.pureRef2());
    }
    if (geometry.target)
        bounds.include(*geometry.target);
    return bounds.withRoom();
}

void drawFourPointGraph(QPainter& painter, GraphFrame& frame, const PointRows& rows, double rho)
{
    if (!beginGraph(painter, frame, hasReferences(rows)))
        return;
    const FourPointGeometry geometry = fourPointGeometry(rows, rho);
    const PlaneRange range = fourPointRange(geometry);
    frame.setRangeOnce(range.x.from, range.y.from, range.x.to, range.y.to);
    const ChCoord& coord = frame.coord;
    drawGridAtX(painter, coord, {0.0});
    drawGridAtY(painter, coord, {0.0});
    if (geometry.v)
        drawVPointLines(painter, coord, *geometry.v);
    drawMethodLines(painter, coord, geometry);
    for (const FourPointGeometry::Mark& mark : geometry.marks)
        drawMark(painter, coord, mark);
    drawGraphFrame(painter, coord, true);
}
