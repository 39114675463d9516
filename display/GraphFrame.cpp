#include "display/GraphFrame.h"

void GraphFrame::begin(int width, int height)
{
    coord.valid = 1;
    coord.setWindow(0.0, height, width, 0.0);
    if (!rangeSet)
        coord.setRange(0.0, 0.0, 1.0, 1.0);
}

void GraphFrame::setRangeOnce(double x0, double y0, double x1, double y1)
{
    if (rangeSet)
        return;
    coord.setRange(x0, y0, x1, y1);
    rangeSet = true;
}
