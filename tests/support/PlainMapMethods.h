#pragma once

#include "analysis/PointRow.h"
#include "tests/model/LiteralFormulas.h"

#include <cstddef>
#include <vector>

/// The point methods for one pixel of a map, by the literal formulas.
namespace plain
{

struct PixelResult {
    double a;
    double t;
};

/// One image: mu-t of its pixels and its own number of columns.
struct Image {
    std::vector<double> mut;
    int columns = 0;

    /// Value of the pixel in column x and row y; -1 where the image has none.
    double at(int x, int y) const
    {
        const long long index = static_cast<long long>(y) * columns + x;
        if (index < 0 || index >= static_cast<long long>(mut.size()))
            return -1.0;
        return mut[static_cast<std::size_t>(index)];
    }
};

/// Normalization points in the table's order and the V point, with the target's value at each.
struct PixelInput {
    std::vector<formulas::Point> points;
    formulas::Point v;
};

inline formulas::Point point(const PointRow& row, double target)
{
    return {row.energy, row.mut1 - row.mutBlank, row.mut2 - row.mutBlank, target};
}

inline PixelResult threePoint(const PixelInput& in)
{
    const formulas::Result result = formulas::threePoint(in.points[0], in.points[1], in.v);
    return {result.a, result.thickness};
}

inline PixelResult fourPoint(const PixelInput& in, const formulas::Scale& scale, double rho)
{
    const formulas::Result result = formulas::fourPoint(scale, rho, in.v);
    return {result.a, result.thickness};
}

inline PixelResult fourPointExact(const PixelInput& in, double rho)
{
    return fourPoint(in, formulas::exactScale(in.points), rho);
}

inline PixelResult fourPointLeastSquares(const PixelInput& in, double rho)
{
    return fourPoint(in, formulas::leastSquaresScale(in.points), rho);
}

} // namespace plain
