#include "results/ThicknessGraph.h"

#include "display/FramePainter.h"
#include "results/GridPainter.h"

void ThicknessGraph::draw(QPainter& painter, GraphFrame& frame, const MapPoints& points,
                          const ReferenceValences& valences, const AxisEnds& xRange,
                          const AxisEnds& yRange)
{
    if (!beginGraph(painter, frame, points.size > 0)) {
        m_dots.clear();
        return;
    }
    frame.setRangeOnce(xRange.from, yRange.from, xRange.to, yRange.to);
    const ChCoord& coord = frame.coord;
    drawGridColumns(painter, coord, gridColumns(coord, valenceSteps(valences.ref1, valences.ref2)));
    drawGridAtY(painter, coord, tenths());
    m_dots.draw(painter, coord, points, valences.ref1, valences.ref2);
    drawGraphFrame(painter, coord, true);
}
