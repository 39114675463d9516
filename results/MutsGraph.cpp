#include "results/MutsGraph.h"

#include "analysis/Constants.h"
#include "analysis/FittedSpectrum.h"
#include "display/CColors.h"
#include "display/FramePainter.h"
#include "display/PlotLines.h"

#include <QPen>

#include <algorithm>
#include <cmath>

namespace
{

using Curve = std::vector<QPointF>;

const QColor levelColor(200, 200, 200);
const QColor edgeColor(80, 255, 80);
const QColor tRatioColor(255, 0, 0);
const QColor pointColor(0, 0, 255);
const QColor fitColor(255, 128, 0);

constexpr int plainWidth = 1;
constexpr int selectedWidth = 2;
constexpr int chosenWidth = 3;
constexpr int usedWidth = 3;

constexpr double roomAboveAndBelow = 0.05;
constexpr std::size_t blankIndex = 3;

bool hasPoints(const FittedSpectrum* data)
{
    return data && !data->points.empty();
}

bool isBetween(double energy, const AxisEnds& energies)
{
    return energy >= std::min(energies.from, energies.to) &&
           energy <= std::max(energies.from, energies.to);
}

Curve fitCurve(const FittedSpectrum& fit)
{
    Curve curve;
    curve.reserve(fit.points.size());
    for (const SpectrumPoint& point : fit.points)
        curve.emplace_back(point.energy, point.mut);
    return curve;
}

Curve curveOf(const FittedSpectrum* data, Normalization normalization)
{
    return hasPoints(data) ? normalizedCurve(*data, normalization) : Curve();
}

void drawCurve(QPainter& painter, const ChCoord& coord, const Curve& curve, const QColor& color,
               int width)
{
    PlotLines lines(coord, width);
    for (std::size_t i = 1; i < curve.size(); ++i)
        lines.add(curve[i].x(), curve[i].y(), curve[i - 1].x(), curve[i - 1].y());
    lines.draw(painter, QPen(color, width));
}

void drawLevels(QPainter& painter, const ChCoord& coord)
{
    PlotLines levels(coord);
    for (const double level : {0.0, 0.5, 1.0})
        levels.addHorizontal(level);
    levels.draw(painter, levelColor);
}

void drawEdges(QPainter& painter, const ChCoord& coord, const MutsContent& content)
{
    PlotLines edges(coord);
    edges.addVertical(content.edge);
    edges.addVertical(content.energies().from);
    edges.addVertical(content.energies().to);
    edges.draw(painter, edgeColor);
}

void drawRows(QPainter& painter, const ChCoord& coord, const PointRows& rows)
{
    for (const PointRow& row : rows) {
        const int width = row.use ? usedWidth : plainWidth;
        PlotLines line(coord, width);
        line.addVertical(row.energy);
        line.draw(painter, QPen(row.tRatio ? tRatioColor : pointColor, width));
    }
}

// Display-only spectra first, so that they never hide what is analysed; the first of the selected
// ones on top.
void drawCurves(QPainter& painter, const ChCoord& coord, const MutsCurves& curves, int chosen)
{
    const int count = static_cast<int>(curves.selected.size() + curves.displayOnly.size());
    const CColors palette(count);
    const int firstDisplayOnly = static_cast<int>(curves.selected.size());
    for (int i = 0; i < static_cast<int>(curves.displayOnly.size()); ++i) {
        drawCurve(painter, coord, curves.displayOnly[static_cast<std::size_t>(i)],
                  palette.colors[firstDisplayOnly + i], i == chosen ? chosenWidth : plainWidth);
    }
    for (int i = firstDisplayOnly - 1; i >= 0; --i) {
        drawCurve(painter, coord, curves.selected[static_cast<std::size_t>(i)], palette.colors[i],
                  selectedWidth);
    }
    drawCurve(painter, coord, curves.fit, fitColor, plainWidth);
}

} // namespace

bool MutsContent::isEmpty() const
{
    return std::none_of(selected.begin(), selected.end(), hasPoints) &&
           std::none_of(displayOnly.begin(), displayOnly.end(), hasPoints);
}

std::vector<QPointF> normalizedCurve(const FittedSpectrum& data, Normalization normalization)
{
    const double jump = data.edgeJump();
    Curve curve;
    curve.reserve(data.points.size());
    for (const SpectrumPoint& point : data.points) {
        const double pre = data.preVicAt(point.energy);
        const double scale =
            normalization == Normalization::ByTwoLines ? data.postVicAt(point.energy) - pre : jump;
        curve.emplace_back(point.energy, (point.mut - pre) / scale);
    }
    return curve;
}

MutsCurves::MutsCurves(const MutsContent& content)
{
    for (const FittedSpectrum* data : content.selected)
        selected.push_back(curveOf(data, content.normalization));
    if (selected.size() > blankIndex && !hasEdge(selected[blankIndex], content))
        selected[blankIndex].clear();
    for (const FittedSpectrum* data : content.displayOnly)
        displayOnly.push_back(curveOf(data, content.normalization));
    if (hasPoints(content.fit))
        fit = fitCurve(*content.fit);
}

std::vector<std::vector<QPointF>> MutsCurves::ranged() const
{
    std::vector<Curve> curves = displayOnly;
    for (std::size_t i = 0; i < selected.size(); ++i) {
        if (i != blankIndex)
            curves.push_back(selected[i]);
    }
    curves.push_back(fit);
    return curves;
}

bool hasEdge(const std::vector<QPointF>& curve, const MutsContent& content)
{
    const double wellBelow = content.edge + content.preEndOffset / 2.0;
    const auto fits = [wellBelow](const QPointF& point) {
        return point.x() < wellBelow ? std::fabs(point.y()) <= 0.5
                                     : point.y() >= -1.0 && point.y() <= 3.0;
    };
    return std::all_of(curve.begin(), curve.end(), [&](const QPointF& point) {
        return !isBetween(point.x(), content.energies()) || fits(point);
    });
}

AxisEnds curveRange(const std::vector<std::vector<QPointF>>& curves, const AxisEnds& energies)
{
    double min = beyondAll;
    double max = -beyondAll;
    for (const Curve& curve : curves) {
        for (const QPointF& point : curve) {
            if (!isBetween(point.x(), energies) || !std::isfinite(point.y()))
                continue;
            min = std::min(min, point.y());
            max = std::max(max, point.y());
        }
    }
    if (min > max)
        return {-roomAboveAndBelow, 1.0 + roomAboveAndBelow};
    if (min == max)
        return {min - 0.5, max + 0.5};
    return {min - roomAboveAndBelow * (max - min), max + roomAboveAndBelow * (max - min)};
}

void drawMutsGraph(QPainter& painter, GraphFrame& frame, const MutsContent& content)
{
    if (!beginGraph(painter, frame, !content.isEmpty()))
        return;
    const MutsCurves curves(content);
    if (!frame.rangeSet) {
        const AxisEnds x = content.energies();
        const AxisEnds y = curveRange(curves.ranged(), x);
        frame.setRangeOnce(x.from, y.from, x.to, y.to);
    }
    const ChCoord& coord = frame.coord;
    drawLevels(painter, coord);
    drawEdges(painter, coord, content);
    drawRows(painter, coord, content.rows);
    drawCurves(painter, coord, curves, content.chosen);
    drawGraphFrame(painter, coord, true);
}
