#include "display/SpectrumPreview.h"

#include "display/DispABase.h"
#include "display/Pixel.h"
#include "display/PlotLines.h"
#include "analysis/FittedSpectrum.h"

#include <cmath>

namespace
{

constexpr double extraRoom = 0.05;

const QColor rangeColor(255, 200, 200);
const QColor edgeColor(255, 0, 0);
const QColor preColor(0, 200, 0);
const QColor postColor(0, 0, 200);

struct Extent {
    double bottom;
    double top;
};

void clearCanvas(const ChCoord& coord, QPainter* painter)
{
    painter->fillRect(0, 0, truncToInt(std::fabs(coord.wx1 - coord.wx0)),
                      truncToInt(std::fabs(coord.wy1 - coord.wy0)), Qt::white);
}

void drawEnergies(const ChCoord& coord, QPainter* painter, const QColor& color, const Extent& y,
                  std::initializer_list<double> energies)
{
    PlotLines lines(coord);
    for (const double energy : energies)
        lines.add(energy, y.top, energy, y.bottom);
    lines.draw(painter, color);
}

template <class Value>
void drawCurve(const ChCoord& coord, QPainter* painter, const QColor& color,
               const SpectrumPoints& points, const Value& value)
{
    PlotLines lines(coord);
    for (std::size_t i = 1; i < points.size(); ++i)
        lines.add(points[i].energy, value(points[i]), points[i - 1].energy, value(points[i - 1]));
    lines.draw(painter, color);
}

void drawCurves(const ChCoord& coord, QPainter* painter, const FittedSpectrum& data)
{
    drawCurve(coord, painter, Qt::black, data.points,
              [](const SpectrumPoint& point) { return point.mut; });
    drawCurve(coord, painter, preColor, data.points,
              [&data](const SpectrumPoint& point) { return data.preVicAt(point.energy); });
    drawCurve(coord, painter, postColor, data.points,
              [&data](const SpectrumPoint& point) { return data.postVicAt(point.energy); });
}

// In the top right corner of the plot area, the second text under the first.
void putEdgeJumps(const ChCoord& coord, QPainter* painter, const FittedSpectrum& data,
                  const PreviewCaptions& captions)
{
    const int h = truncToInt((coord.py1 - coord.py0) / coord.labelDivisions);
    const int b = truncToInt(h * coord.labelHeightRatio);
    const int m = truncToInt((coord.wx1 - coord.wx0) * coord.leftMargin);
    const int x = truncToInt(coord.px1) - 3 * m;
    const int y = truncToInt(coord.py1) - h;
    DrawText::putText(painter, QRectF(x, y, 3 * m, b), QFont(),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, 1,
                      captions.edgeJumpNoC.arg(data.edgeJumpNoC(), 0, 'g', -1), 0.0, false);
    DrawText::putText(painter, QRectF(x, y - h, 3 * m, b), QFont(),
                      Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, 1,
                      captions.edgeJump.arg(data.edgeJump(), 0, 'g', -1), 0.0, false);
}

} // namespace

void drawSpectrumPreview(DispABase* panel, QPainter* painter, const FittedSpectrum* data,
                         const PreviewCaptions& captions)
{
    ChCoord& coord = panel->DispA->coord;
    coord.applyMargins();
    panel->setXYTitle(captions.xTitle, captions.yTitle);
    clearCanvas(coord, painter);
    if (!data || data->points.empty()) {
        coord.valid = 0;
        return;
    }
    const double dE = data->energyMax - data->energyMin;
    const double dM = data->mutMax - data->mutMin;
    const Extent y{data->mutMin - extraRoom * dM, data->mutMax + extraRoom * dM};
    panel->setRangeOnce(data->energyMin - extraRoom * dE, y.bottom,
                        data->energyMax + extraRoom * dE, y.top);
    drawEnergies(coord, painter, rangeColor, y, {data->preEdgeEnd, data->postEdgeStart});
    drawEnergies(coord, painter, edgeColor, y, {data->edge});
    drawCurves(coord, painter, *data);
    panel->DispA->drawFrame(painter, true);
    putEdgeJumps(coord, painter, *data, captions);
}
