#pragma once

#include "results/MapLegend.h"
#include "results/MapView.h"

#include <memory>
#include <optional>

/// A map as a picture: colours within axes in position units, with a colour bar, a scale bar and a
/// legend that counts what has no colour of the bar. What was formed for the map, and for the view
/// of it, is kept, so that a repaint costs little.
class MapPicture
{
public:
    /// Takes what is to be shown. The arrays need to live until another map is taken.
    /// @param grid  of these pixels; pictures of one map share it
    /// @param workers  share the pixels out; null for the calling thread alone
    void setMap(const MapPixels& pixels, std::shared_ptr<const MapGrid> grid, MapQuantity quantity,
                const MapRanges& ranges, Workers* workers = nullptr);

    /// Paints the map with the painter's font. The frame's range is that of the map unless one is
    /// set; the range of the first axis follows that of the second one, so that both have the same
    /// scale. A map without pixels leaves the graph empty.
    void draw(QPainter& painter, GraphFrame& frame, const MapCaptions& captions);

    /// The canvas on which the map is well seen: the pixels of a small map are squares of whole
    /// pixels, those of a large one are reduced by a whole number.
    QSize goodSize(const QFont& font, const MapCaptions& captions) const;

    const MapCounts& counts() const { return m_cells.counts; }

private:
    /// How much of the canvas the texts around the map take.
    struct Margins {
        int left, right, top, bottom;
    };
    /// All that the view depends on, besides the map.
    struct ViewKey {
        double rx0, rx1, ry0, ry1;
        QRect plot;

        bool operator==(const ViewKey& other) const;
    };

    Margins margins(const QFont& font, const MapCaptions& captions, int canvasWidth,
                    const AxisEnds& yRange) const;
    QVector<LegendEntry> entries(const MapCaptions& captions, bool withView) const;
    void placeRange(GraphFrame& frame);
    void formView(const ChCoord& coord);

    MapPixels m_pixels;
    std::shared_ptr<const MapGrid> m_grid;
    MapQuantity m_quantity = MapQuantity::Valence;
    MapRanges m_ranges;
    MapCells m_cells;
    std::optional<ViewKey> m_key;
    MapView m_view;
    double m_stretch = 1.0; ///< units in a pixel of the first axis by those of the second
};
