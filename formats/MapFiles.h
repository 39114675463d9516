#pragma once

#include "analysis/MapCalculation.h"
#include "system/SafeFile.h"

#include <functional>
#include <string>
#include <vector>

/// An image of a map's results, and what it is called.
struct ResultImage {
    std::string name;     ///< "t_ts"
    std::string longName; ///< "t/ts"
    /// Of pixel y * columns + x; not-a-number where there is none.
    std::function<double(std::size_t)> value;
    std::function<double(std::size_t)> sigma = {}; ///< standard deviation; empty: not known
};

/// A map's results for the programs of others.
struct ResultImages {
    std::string name;
    int columns = 0;
    int rows = 0;
    SharedPositions positions; ///< pixels beyond their number were not measured
    double pixelWidth = 0.0;   ///< micrometres; 0 where it is not known
    double pixelHeight = 0.0;  ///< micrometres
    std::vector<ResultImage> images;

    std::size_t size() const
    {
        return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
};

/// Writes an image as a TIFF file of one page, in single precision, with its resolution where the
/// size of a pixel is known.
WriteOutcome writeTiff(const QString& path, const ResultImages& map, const ResultImage& image);

/// Writes all images as an HDF5 file, in double precision: an NXentry of the map's name with an
/// NXdata for each. Columns and rows have the axes x and y where their pixels share a position;
/// otherwise each pixel has its own.
WriteOutcome writeHdf5(const QString& path, const ResultImages& map);

/// The positions of a map's columns and rows.
struct MapAxes {
    std::vector<double> x; ///< [columns]
    std::vector<double> y; ///< [rows]
};

/// @return nothing where the pixels of a column, or of a row, do not share one, or two columns or
/// rows have the same. Rows that were not measured go on with the step of those before.
std::optional<MapAxes> axesOf(const ResultImages& map);
