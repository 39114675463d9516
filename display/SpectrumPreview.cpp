#include "display/SpectrumPreview.h"

#include "analysis/FittedSpectrum.h"
#include "display/DrawText.h"
#include "display/FramePainter.h"
#include "display/Pixel.h"
#include "display/PlotLines.h"

#include <QFont>
#include <QPainter>
#include <QPen>

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

void drawEnergies(QPainter& painter, const ChCoord& coord, const QColor& color, const Extent& y,
                  std::initializer_list<double> energies)
{
    PlotLines lines(coord);
    for (const double energy : energies)
        lines.add(energy, y.top, energy, y.bottom);
    lines.draw(painter, color);
}

template <class Value>
void drawCurve(QPainter& painter, const ChCoord& coord, const QColor& color,
               const SpectrumPoints& points, const Value& value)
{
    PlotLines lines(coord);
    for (std::size_t i = 1; i < points.size(); ++i)
        lines.add(points[i].energy, value(points[i]), points[i - 1].energy, value(points[i - 1]));
    lines.draw(painter, color);
}

void drawCurves(QPainter& painter, const ChCoord& coord, const FittedSpectrum& data)
{
    drawCurve(painter, coord, Qt::black, data.points,
              [](const SpectrumPoint& point) { return point.mut; });
    drawCurve(painter, coord, preColor, data.points,
              [&data](const SpectrumPoint& point) { return data.preVicAt(point.energy); });
    drawCurve(painter, coord, postColor, data.points,
              [&data](const SpectrumPoint& point) { return data.postVicAt(point.energy); });
}

// In the top right corner of the plot area, the second text under the first.
void putEdgeJumps(QPainter& painter, const ChCoord& coord, const FittedSpectrum& data,
                  const PreviewCaptions& captions)
{
    const LabelSlot slot = coord.labelSlot();
    const int width = 3 * slot.margin;
    const int x = truncToInt(coord.px1) - width;
    const int y = truncToInt(coord.py1) - slot.pitch;
    DrawText::putText(&painter, QRectF(x, y, width, slot.height), QFont(),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, 1,
                      captions.edgeJumpNoC.arg(data.edgeJumpNoC(), 0, 'g', -1), 0.0, false);
    DrawText::putText(&painter, QRectF(x, y - slot.pitch, width, slot.height), QFont(),
                      Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, 1,
                      captions.edgeJump.arg(data.edgeJump(), 0, 'g', -1), 0.0, false);
}

} // namespace

void drawSpectrumPreview(QPainter& painter, GraphFrame& frame, const FittedSpectrum* data,
                         const PreviewCaptions& captions)
{
    if (!beginGraph(painter, frame, data && !data->points.empty()))
        return;
    const double dE = data->energyMax - data->energyMin;
    const double dM = data->mutMax - data->mutMin;
    const Extent y{data->mutMin - extraRoom * dM, data->mutMax + extraRoom * dM};
    frame.setRangeOnce(data->energyMin - extraRoom * dE, y.bottom, data->energyMax + extraRoom * dE,
                       y.top);
    const ChCoord& coord = frame.coord;
    drawEnergies(painter, coord, rangeColor, y, {data->preEdgeEnd, data->postEdgeStart});
    drawEnergies(painter, coord, edgeColor, y, {data->edge});
    drawCurves(painter, coord, *data);
    drawGraphFrame(painter, coord, true);
    if (!captions.edgeJump.isEmpty())
        putEdgeJumps(painter, coord, *data, captions);
}
