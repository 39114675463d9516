#pragma once

#include "analysis/HistogramCounts.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "display/GraphFrame.h"
#include "results/MapCells.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <optional>

class QPainter;

/// Words of a map's picture, translated by the owner.
struct MapCaptions {
    QString title;     ///< over the map; may be empty
    QString valence;   ///< "Valence"
    QString thickness; ///< "t/ts"
    QString missing;   ///< "no result: %1"
    QString below;     ///< "below %1: %2"
    QString above;     ///< "above %1: %2"
    QString thinner;   ///< "t/ts below %1, palest: %2"
    QString thicker;   ///< "t/ts above %1, fullest: %2"
    QString hidden;    ///< "covered by others: %1"
    QString reduced;   ///< "one of %1 x %2 pixels shown"
    QString stretched; ///< "axes not to the same scale"
    QString column;    ///< title of the first axis where positions are of no use
    QString row;
    QString first; ///< title of the axes in position units
    QString second;
};

/// A map as a picture: colours within axes in position units, with a colour bar, a scale bar and a
/// legend that counts what has no colour of the bar. Keeps what was formed for the map and for the
/// view, so that a repaint of either costs little.
class MapPicture
{
public:
    MapPicture();
    ~MapPicture();
    MapPicture(MapPicture&&) noexcept;
    MapPicture& operator=(MapPicture&&) noexcept;

    /// Takes what is to be shown; nothing is formed before it is painted. The arrays need to live
    /// until another map is taken.
    void setMap(const MapPixels& pixels, MapQuantity quantity, const MapRanges& ranges);

    /// Paints the map in the frame. The frame's range is that of the map unless one is set; it is
    /// widened at one axis so that both have the same scale, which the frame has afterwards. A map
    /// without pixels leaves the graph empty.
    void draw(QPainter& painter, GraphFrame& frame, const MapCaptions& captions);

    /// The canvas on which the map is well seen: each pixel of a small map as a square of whole
    /// pixels, a large map reduced.
    /// @param metrics  of the device, by its font
    QSize goodSize() const;

    /// The pixel of the map at a place in data units; nothing where there is none.
    std::optional<std::size_t> pixelAt(double x, double y) const;

private:
    struct State;
    std::unique_ptr<State> m;
};
