#include "display/Navigation.h"

#include "analysis/Constants.h"
#include "display/ChCoord.h"

#include <cmath>

namespace
{

constexpr double unitsPerDegree = 8.0;
constexpr double degreesPerNotch = 15.0;
constexpr double zoomPerEvent = 1.1;
constexpr double reachInPixels = 10.0;

} // namespace

double wheelFactor(int delta)
{
    const double steps = delta / unitsPerDegree / degreesPerNotch;
    return steps < 0.0 ? zoomPerEvent : 1.0 / zoomPerEvent;
}

void zoomAt(ChCoord& coord, int x, int y, double factor)
{
    const double cx = coord.screenToX(x);
    const double cy = coord.screenToY(y);
    const bool nearX = coord.nearPlotXEdge(x);
    const bool nearY = coord.nearPlotYEdge(y);
    const double x0 = (coord.rx0 - cx) * factor + cx;
    const double x1 = cx + (coord.rx1 - cx) * factor;
    const double y0 = (coord.ry0 - cy) * factor + cy;
    const double y1 = cy + factor * (coord.ry1 - cy);
    if (nearX && !nearY)
        coord.setYRange(y0, y1);
    else if (nearY && !nearX)
        coord.setXRange(x0, x1);
    else
        coord.setRange(x0, y0, x1, y1);
}

void panBetween(ChCoord& coord, int fromX, int fromY, int toX, int toY)
{
    const double dx = coord.screenToX(fromX) - coord.screenToX(toX);
    const double dy = coord.screenToY(fromY) - coord.screenToY(toY);
    coord.setRange(coord.rx0 + dx, coord.ry0 + dy, coord.rx1 + dx, coord.ry1 + dy);
}

int pickMark(const ChCoord& coord, const std::vector<MarkPosition>& marks, int x, int y)
{
    double best = beyondAll;
    int nearest = -1;
    int i = 0;
    for (const MarkPosition& mark : marks) {
        const double d = mark.isXLine ? std::fabs(coord.xToScreen(mark.position) - x)
                                      : std::fabs(coord.yToScreen(mark.position) - y);
        if (d < best) {
            best = d;
            nearest = i;
        }
        ++i;
    }
    return best < reachInPixels ? nearest : -1;
}
