#pragma once

#include "analysis/MapKernels.h"
#include "analysis/Method.h"
#include "system/PixelArray.h"

#include <cstddef>
#include <vector>

/// Variance of the mu-t of an image: one for all pixels, or one for each.
struct MapVariance {
    double all = 0.0;
    const float* each = nullptr; ///< [pixels of the image]
};

/// Sums over the pixels of a map whose valence means something.
struct MapSums {
    double pixels = 0.0;
    double a = 0.0;
    double t = 0.0;
    double varianceA = 0.0;
    double varianceT = 0.0;
    double biasA = 0.0; ///< by which the noise moves a on the mean; as large as that of one pixel
    double biasT = 0.0;

    MapSums& operator+=(const MapSums& other);
};

/// Standard deviations of a map's fractions and thickness ratios by the noise of the images alone:
/// each pixel's own part, not that of the references.
struct MapSigmas {
    std::vector<MapVariance> noise; ///< [rows of the table], to be set before the calculation
    PixelArray<float> a; ///< of the fraction of Ref 1; infinite or not-a-number where it has none
    PixelArray<float> t; ///< of the thickness ratio
    MapSums sums;        ///< the same for any number of threads
};

/// A valence means nothing where the scale is not known to a third, as outside the sample; then
/// neither is the standard deviation of `a` to be believed.
inline bool meansNothing(double t, double sigmaT)
{
    constexpr double known = 1.0 / 3.0;
    return !(sigmaT <= known * (t < 0.0 ? -t : t));
}

/// Variances of a block of pixels, in the order of BlockInputs.
struct BlockVariances {
    std::vector<MapVariance> t; ///< at the normalization points
    MapVariance tV;             ///< at the V point
};

/// Where the standard deviations of a block go.
struct BlockSigmas {
    float* a; ///< [count of the results]
    float* t;
};

/// The propagation of noise through a point method, for many pixels: to first order in the
/// target's mu-t, exact to this order.
///
/// With a = L1 / L2, the variance of `a` is that of L1 - a L2 over the square of L2. Here c is the
/// scale of the target (of three points its step), k its derivatives by the target's mu-t at the
/// normalization points, l the weights of the background at the V point; then L2 = lambda c and
/// the derivatives of L1 - a L2 are (kappa - a lambda) k + l.
class MapSigmaKernel
{
public:
    /// @param points, choice, rho  as of a MapTask
    MapSigmaKernel(Method method, const PointRows& points, const PointChoice& choice, double rho);

    /// @param results  of the block, at most kernelBlock pixels
    /// @return the block's part of the sums
    MapSums operator()(const BlockInputs& in, const BlockVariances& variances,
                       const BlockResults& results, const BlockSigmas& to) const;

private:
    friend struct MapSigmaLoop;
    void setThreePoint(const PointRows& points, const PointChoice& choice);
    void setFourPoint(const PointRows& points, const PointChoice& choice, double rho);

    Method m_method;
    double m_lambda;
    double m_kappa;
    double m_scale;          ///< c over t/ts
    std::vector<double> m_k; ///< three points and exact form: the derivatives of c
    std::vector<double> m_l; ///< weights of the background
    std::vector<double> m_x; ///< least squares: energies less their mean, of norm 1
    std::vector<double> m_s; ///< least squares: sums of the references less their straight line
    double m_ss = 0.0;       ///< their square
};
