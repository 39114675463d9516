#include "analysis/ThicknessRatio.h"

#include <algorithm>

namespace
{

/// Sums for the straight line y = A x + B.
struct LineSums {
    double n = 0.0;
    double x = 0.0;
    double xx = 0.0;
    double y = 0.0;
    double xy = 0.0;

    void add(double px, double py)
    {
        n += 1.0;
        x += px;
        xx += px * px;
        y += py;
        xy += px * py;
    }
    double slope() const { return (n * xy - y * x) / (n * xx - x * x); }
    double intercept() const { return (y * xx - xy * x) / (n * xx - x * x); }
};

} // namespace

double ThicknessRatios::selected(ThicknessType type) const
{
    switch (type) {
    case ThicknessType::SumBySum:
        return trSbyS;
    case ThicknessType::Mean:
        return trMean;
    case ThicknessType::LeastSquares:
        return trLsA;
    case ThicknessType::LeastSquaresNoBlank:
        return trLsANB;
    case ThicknessType::EdgeJumps:
        break;
    }
    return trVic2;
}

ThicknessRatios thicknessRatios(const PointRows& rows, double edgeJump1, double edgeJump2)
{
    const bool marked =
        std::any_of(rows.begin(), rows.end(), [](const PointRow& row) { return row.tRatio; });
    LineSums corrected;
    LineSums typed;
    double ratios = 0.0;
    for (const PointRow& row : rows) {
        if (row.vPoint || !(marked ? row.tRatio : row.use))
            continue;
        const double x = row.useVicRefs ? row.mut2 : row.mut2 - row.mutBlank;
        const double y = row.useVicRefs ? row.mut1 : row.mut1 - row.mutBlank;
        corrected.add(x, y);
        typed.add(row.mut2, row.mut1);
        ratios += y / x;
    }
    ThicknessRatios result{};
    result.trSbyS = corrected.y / corrected.x;
    result.trMean = ratios / corrected.n;
    result.trLsA = corrected.slope();
    result.trLsB = corrected.intercept();
    result.trLsANB = typed.slope();
    result.trLsBNB = typed.intercept();
    result.trVic2 = edgeJump1 / edgeJump2;
    return result;
}
