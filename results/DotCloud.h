#pragma once

#include "display/ChCoord.h"

#include <QImage>
#include <QPoint>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class QPainter;

/// Results of a map as the graph sees them; the arrays belong to the map.
struct MapPoints {
    const double* a = nullptr; ///< fraction of Ref 1 [size]
    const double* t = nullptr; ///< thickness ratio [size]
    std::size_t size = 0;
    std::uint64_t revision = 0; ///< another number whenever the results are others
};

/// The pixels of a canvas at which a cloud of points has dots, each once. Dots just outside, that
/// reach into the canvas, are among them.
class DotPixels
{
public:
    explicit DotPixels(QSize canvas);

    /// Marks the pixel of each point (valence, t), valences from those of the two references.
    void mark(const ChCoord& coord, const MapPoints& points, double valence1, double valence2);

    /// The marked pixels, row by row.
    std::vector<QPoint> pixels() const;

private:
    QSize m_size;                       ///< canvas and margins
    std::vector<unsigned char> m_cells; ///< 1 where there is a dot
};

/// A cloud of dots that is painted as one drawDot() for each point would paint it, at the cost of a
/// few operations for each pixel. The picture is kept until points or coordinates change. On a
/// page, which has no pixels, each dot is drawn.
class DotCloud
{
public:
    /// Paints the points (valence, t) in black.
    void draw(QPainter& painter, const ChCoord& coord, const MapPoints& points, double valence1,
              double valence2);
    /// Gives the picture back.
    void clear();

private:
    /// All that the picture depends on.
    struct Key {
        std::uint64_t revision;
        std::size_t size;
        double valence1, valence2;
        double px0, px1, py0, py1;
        double rx0, rx1, ry0, ry1;
        QSize canvas;
        int scale;

        bool operator==(const Key& other) const;
    };

    std::optional<Key> m_key;
    QImage m_image;
};
