#include "results/ThicknessGraph.h"

#include "display/DispABase.h"

void ThicknessGraph::draw(DispABase* panel, QPainter* painter, const AxisTitles& titles,
                          const MapPoints& points, const ReferenceValences& valences,
                          const AxisEnds& xRange, const AxisEnds& yRange)
{
    if (!beginGraph(panel, painter, titles, points.size > 0)) {
        m_dots.clear();
        return;
    }
    panel->setRangeOnce(xRange.from, yRange.from, xRange.to, yRange.to);
    const ChCoord& coord = panel->DispA->coord;
    drawGridColumns(coord, painter, gridColumns(coord, valenceSteps(valences.ref1, valences.ref2)));
    drawGridAtY(coord, painter, tenths());
    m_dots.draw(painter, coord, points, valences.ref1, valences.ref2);
    panel->DispA->drawFrame(painter, true);
}
