#pragma once

#include "analysis/MapRun.h"

#include <QByteArrayList>

/// The 2D data of one energy: a value for each position of a scanned grid.
struct MapData {
    bool valid = false; ///< both axis sizes are positive and there is a record
    /// Lines beginning with "#", byte by byte as they stand in the file, without line end; a file
    /// in UTF-16 or UTF-32 is converted to UTF-8.
    QByteArrayList header;
    int columns = 0; ///< size of the first axis, which runs fastest; 0 until a header line sets it
    int rows = 0;    ///< size of the second axis

    /// mu-t of each record, in the order of the file, formed from its intensities I and I0: I where
    /// I0 is 0, 1 where only I is 0, otherwise ln(I0 / I).
    PixelArray<double> mut;
    /// Of each record's mu-t, by the counting of both intensities; not-a-number where they are no
    /// counts. Empty where nobody asks, or no record has two intensities.
    PixelArray<float> variance;
    SharedPositions positions; ///< of each record [mut.size()]; null without records

    MapImage image() const { return {mut.data(), mut.size(), columns}; }
    MapSource source() const { return {valid, image(), columns, rows, positions}; }
};
