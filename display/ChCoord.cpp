#include "display/ChCoord.h"

#include "display/Pixel.h"

#include <algorithm>
#include <cmath>

namespace
{

double clampedBetween(double v, double end1, double end2)
{
    return std::max(std::min(end1, end2), std::min(v, std::max(end1, end2)));
}

bool nearEnds(double p, double a, double b, double ratio)
{
    const double m = std::fabs(b - a) * ratio;
    return b > a ? p < a + m || p > b - m : p < b + m || p > a - m;
}

} // namespace

ChCoord::ChCoord(QObject* parent) : QObject(parent) {}

void ChCoord::setWindow(double x0, double y0, double x1, double y1)
{
    wx0 = x0;
    wy0 = y0;
    wx1 = x1;
    wy1 = y1;
    setPlotArea(x0, y0, x1, y1);
}

void ChCoord::setPlotArea(double x0, double y0, double x1, double y1)
{
    px0 = x0;
    py0 = y0;
    px1 = x1;
    py1 = y1;
}

void ChCoord::applyMargins()
{
    const double width = wx1 - wx0;
    const double height = wy1 - wy0;
    px0 = wx0 + truncToInt(leftMargin * width);
    px1 = wx1 - truncToInt(width * rightMargin);
    py0 = wy0 + truncToInt(bottomMargin * height);
    py1 = wy1 - truncToInt(height * topMargin);
}

void ChCoord::setRange(double x0, double y0, double x1, double y1)
{
    setXRange(x0, x1);
    setYRange(y0, y1);
}

void ChCoord::setXRange(double x0, double x1)
{
    rx0 = x0;
    rx1 = x1;
}

void ChCoord::setYRange(double y0, double y1)
{
    ry0 = y0;
    ry1 = y1;
}

QSize ChCoord::canvasSize() const
{
    return {truncToInt(std::fabs(wx1 - wx0)), truncToInt(std::fabs(wy1 - wy0))};
}

LabelSlot ChCoord::labelSlot() const
{
    const int pitch = truncToInt((py1 - py0) / labelDivisions);
    return {pitch, truncToInt(pitch * labelHeightRatio), truncToInt((wx1 - wx0) * leftMargin)};
}

double ChCoord::screenToXClamped(double p) const
{
    return clampedBetween(screenToX(p), rx0, rx1);
}

double ChCoord::screenToYClamped(double p) const
{
    return clampedBetween(screenToY(p), ry0, ry1);
}

bool ChCoord::nearPlotXEdge(double p) const
{
    return nearEnds(p, px0, px1, plotEdgeRatio);
}

bool ChCoord::nearPlotYEdge(double p) const
{
    return nearEnds(p, py0, py1, plotEdgeRatio);
}

bool ChCoord::nearWindowXEdge(double p) const
{
    return nearEnds(p, wx0, wx1, windowEdgeRatio);
}

bool ChCoord::nearWindowYEdge(double p) const
{
    return nearEnds(p, wy0, wy1, windowEdgeRatio);
}
