#pragma once

#include "display/ChCoord.h"
#include "results/MapCells.h"

#include <QImage>

/// What of a map shows on a plot area.
struct MapView {
    QImage image;         ///< of the plot area, one pixel for one of the canvas
    int columnsInDot = 1; ///< cells that share a dot of the image, at most
    int rowsInDot = 1;
};

/// The cells as the plot area of the coordinates shows them, whatever lies beside it left white.
///
/// A dot of the image shows the cell that it lies in, or whose middle lies in it. Of several it
/// shows the middle one, so that the dots are a fair sample of noise and of what is out of range;
/// but a cell without result is shown wherever there is one among them, so that none is hidden.
MapView mapView(const ChCoord& coord, const MapGrid& grid, const MapCells& cells,
                MapQuantity quantity);
