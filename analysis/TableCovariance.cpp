#include "analysis/TableCovariance.h"

#include "analysis/SpectrumChange.h"

namespace
{

using Sums = std::array<MeasuredSum, pointTableRows + 1>;

bool isEmpty(const MeasuredSum& sum)
{
    return sum.weight == std::array<double, 2>{} && sum.fits == Vector<6>{};
}

/// Covariance of the points of one sum by themselves with all of another sum's weights.
double ofPoints(const MeasuredSums& sums, const SpectrumNoise& noise, const MeasuredSum& points,
                const MeasuredSum& other)
{
    double covariance = 0.0;
    for (std::size_t k = 0; k < points.point.size(); ++k) {
        if (points.weight[k] == 0.0)
            continue;
        double weight = 0.0;
        if (other.fits != Vector<6>{})
            weight = sums.fitWeight(other.fits, points.point[k]);
        for (std::size_t l = 0; l < other.point.size(); ++l)
            if (other.point[l] == points.point[k])
                weight += other.weight[l];
        covariance += points.weight[k] * weight * noise.varianceAt(points.point[k]);
    }
    return covariance;
}

/// The remaining part: the fits of the first sum with the points of the other, and with its fits.
double ofFits(const MeasuredSums& sums, const SpectrumNoise& noise, const Matrix<6>& products,
              const MeasuredSum& fits, const MeasuredSum& other)
{
    if (fits.fits == Vector<6>{})
        return 0.0;
    double covariance = 0.0;
    for (std::size_t k = 0; k < products.size(); ++k)
        covariance += fits.fits[k] * dot(products[k], other.fits);
    for (std::size_t l = 0; l < other.point.size(); ++l)
        if (other.weight[l] != 0.0)
            covariance += other.weight[l] * sums.fitWeight(fits.fits, other.point[l]) *
                          noise.varianceAt(other.point[l]);
    return covariance;
}

double quadratic(const EntryVector& g, const Matrix<pointTableRows + 1>& m, const EntryVector& h)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < g.size(); ++i) {
        if (g[i] == 0.0)
            continue;
        for (std::size_t j = 0; j < h.size(); ++j)
            if (h[j] != 0.0) // what a result does not depend on need not be known
                sum += g[i] * m[i][j] * h[j];
    }
    return sum;
}

double product(const EntryVector& g, const EntryVector& h)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < g.size(); ++i)
        if (g[i] != 0.0 && h[i] != 0.0)
            sum += g[i] * h[i];
    return sum;
}

} // namespace

double TableCovariance::ofNoise(const EntryVector& g, const EntryVector& h) const
{
    return quadratic(g, noise, h);
}

double TableCovariance::ofShift(const EntryVector& g, const EntryVector& h) const
{
    return product(g, shift) * product(h, shift);
}

Sums entrySums(const MeasuredSums& sums, SubtractedLine line, const PointRows& rows)
{
    Sums entries;
    for (std::size_t i = 0; i < rows.size() && i < pointTableRows; ++i)
        if ((rows[i].use || rows[i].tRatio) && rows[i].energy != 0.0)
            entries[i] = sums.mutLess(line, rows[i].energy);
    if (!sums.spectrum().points.empty())
        entries[edgeJumpEntry] = sums.edgeJump();
    return entries;
}

EntryVector entryShift(const FittedSpectrum& spectrum, SubtractedLine line, const PointRows& rows,
                       double sigma)
{
    const FittedSpectrum above = withShift(spectrum, sigma);
    const FittedSpectrum below = withShift(spectrum, -sigma);
    EntryVector change{};
    for (std::size_t i = 0; i < rows.size() && i < pointTableRows; ++i) {
        if (!(rows[i].use || rows[i].tRatio) || rows[i].energy == 0.0)
            continue;
        const auto high = mutLess(above, line, rows[i].energy);
        const auto low = mutLess(below, line, rows[i].energy);
        if (high && low)
            change[i] = (*high - *low) / 2.0;
    }
    change[edgeJumpEntry] = (above.edgeJump() - below.edgeJump()) / 2.0;
    return change;
}

TableCovariance tableCovariance(const MeasuredSums& sums, SubtractedLine line,
                                const PointRows& rows, const SpectrumNoise& noise)
{
    const Sums entries = entrySums(sums, line, rows);
    const Matrix<6> products = sums.baseProducts(noise);
    TableCovariance covariance;
    covariance.degrees = noise.degrees;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (std::size_t j = i; j < entries.size(); ++j) {
            if (isEmpty(entries[i]) || isEmpty(entries[j]))
                continue;
            const double value = ofPoints(sums, noise, entries[i], entries[j]) +
                                 ofFits(sums, noise, products, entries[i], entries[j]);
            covariance.noise[i][j] = covariance.noise[j][i] = value;
        }
    }
    return covariance;
}
