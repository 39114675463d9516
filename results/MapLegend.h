#pragma once

#include "results/MapCells.h"

#include <QRect>
#include <QString>
#include <QVector>

class QFont;
class QPainter;

/// Words of a map's picture, translated by the owner.
struct MapCaptions {
    QString title;     ///< over the map; may be empty
    QString valence;   ///< "Valence"
    QString thickness; ///< "t/ts"
    QString missing;   ///< "no result: %1"
    QString below;     ///< "below %1: %2"
    QString above;     ///< "above %1: %2"
    QString thinner;   ///< "t/ts below %1, shown palest: %2"
    QString thicker;   ///< "t/ts above %1, shown fullest: %2"
    QString hidden;    ///< "covered by other pixels: %1"
    QString reduced;   ///< "a dot is one of %1 x %2 pixels"
    QString stretched; ///< "axes of different scales"
    QString first;     ///< titles of the axes in position units
    QString second;
    QString column; ///< titles of the axes where positions are of no use
    QString row;
    QString meaningless; ///< "means nothing: %1"
};

/// An entry under the map: a text, with a square of the colour that it is about.
struct LegendEntry {
    QString text;
    QRgb colour = 0; ///< no square where it is transparent
};

/// What is to be said of a map besides its colours: pixels without result and beyond the ranges,
/// with their numbers even where there are none.
QVector<LegendEntry> countEntries(const MapCaptions& captions, const MapCounts& counts,
                                  MapQuantity quantity, const MapRanges& ranges);

/// The lines that entries take, one after the other, in a width.
/// @return the heights in pixels
int legendHeight(const QFont& font, const QVector<LegendEntry>& entries, int width);
void drawLegend(QPainter& painter, const QRect& box, const QVector<LegendEntry>& entries);

/// The width of the bar or of the two-dimensional legend, with its texts.
int colourBarWidth(const QFont& font, MapQuantity quantity, const MapRanges& ranges, int height);

/// The colours and what they stand for, beside the map.
void drawColourBar(QPainter& painter, const QRect& box, MapQuantity quantity,
                   const MapRanges& ranges, const MapCaptions& captions);
