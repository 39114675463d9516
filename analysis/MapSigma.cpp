#include "analysis/MapSigma.h"

#include "analysis/Constants.h"
#include "system/WideVectors.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

/// Target value of a pixel that an image does not have.
constexpr double missingPixel = -1.0;

/// The same number of four neighbouring pixels, as in MapKernels.
constexpr std::size_t lanes = 4;
using Lanes = double __attribute__((vector_size(lanes * sizeof(double))));
using FloatLanes = float __attribute__((vector_size(lanes * sizeof(float))));
using Mask = decltype(Lanes{} < Lanes{});

[[gnu::always_inline]] inline void spread(double value, Lanes& to)
{
    to = Lanes{value, value, value, value};
}

/// Pixels of a group that are there; the others are numbers that count nowhere.
[[gnu::always_inline]] inline void load(const double* values, std::size_t there, Lanes& to)
{
    if (there >= lanes) {
        std::memcpy(&to, values, sizeof to);
        return;
    }
    to = Lanes{};
    std::memcpy(&to, values, there * sizeof(double));
}

[[gnu::always_inline]] inline void load(const float* values, std::size_t there, Lanes& to)
{
    FloatLanes floats{};
    std::memcpy(&floats, values, std::min(there, lanes) * sizeof(float));
    to = __builtin_convertvector(floats, Lanes);
}

/// As floats, with not-a-number for missing pixels.
[[gnu::always_inline]] inline void store(const Lanes& values, const Mask& missing,
                                         std::size_t there, float* to)
{
    constexpr double none = notANumber;
    const FloatLanes floats =
        __builtin_convertvector(missing ? Lanes{none, none, none, none} : values, FloatLanes);
    if (there >= lanes)
        std::memcpy(to, &floats, sizeof floats);
    else
        std::memcpy(to, &floats, there * sizeof(float));
}

[[gnu::always_inline]] inline double total(const Lanes& sums)
{
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

/// Second moments of the noise of a group, with the derivatives of MapSigmaKernel.
struct Moments {
    Lanes kk;    ///< variance of c
    Lanes kl;    ///< covariance of c and the background
    Lanes ll;    ///< variance of the background less the value at the V point
    Lanes shift; ///< of c on the mean, relative
    Lanes perC;  ///< 1 / c
};

/// MapSums of four pixels side by side.
struct LaneSums {
    Lanes pixels;
    Lanes a;
    Lanes t;
    Lanes varianceA;
    Lanes varianceT;
    Lanes biasA;
    Lanes biasT;
};

/// The results of a group.
struct Group {
    std::size_t first;
    std::size_t there;
    Lanes a;
    Lanes t;
};

bool isOne(const BlockVariances& variances)
{
    return std::all_of(variances.t.begin(), variances.t.end(), [&](const MapVariance& variance) {
        return variance.each == nullptr && variance.all == variances.t[0].all;
    });
}

[[gnu::always_inline]] inline void varianceOf(const MapVariance& variance, const Group& group,
                                              Lanes& to)
{
    if (variance.each != nullptr)
        load(variance.each + group.first, group.there, to);
    else
        spread(variance.all, to);
}

} // namespace

/// A block in groups of four pixels. The order of every sum is that of the pixels, whatever the
/// processor.
struct MapSigmaLoop {
    const MapSigmaKernel& kernel;
    const BlockInputs& in;
    const BlockVariances& variances;
    const BlockResults& results;
    const BlockSigmas& to;
    MapSums& sums;

    [[gnu::always_inline]] void operator()() const
    {
        if (kernel.m_method != Method::FourPointLeastSquares)
            run([this](const Group& group, Moments& moments) {
                moments.perC = 1.0 / (group.t * kernel.m_scale);
            });
        else if (isOne(variances))
            run([this](const Group& group, Moments& moments) { findEqual(group, moments); });
        else
            run([this](const Group& group, Moments& moments) { findAny(group, moments); });
    }

    template <class Find>
    [[gnu::always_inline]] void run(const Find& find) const
    {
        LaneSums all{};
        Moments same{};
        const bool each = hasEach();
        if (!each)
            findFixed(Group{}, same);
        for (std::size_t i = 0; i < results.count; i += lanes) {
            Group group{i, std::min(results.count - i, lanes), {}, {}};
            load(results.a + i, group.there, group.a);
            load(results.t + i, group.there, group.t);
            Moments moments = same;
            if (each)
                findFixed(group, moments);
            find(group, moments);
            judge(group, moments, all);
        }
        takeRoots(to.a);
        takeRoots(to.t);
        sums.pixels = total(all.pixels);
        sums.a = total(all.a);
        sums.t = total(all.t);
        sums.varianceA = total(all.varianceA);
        sums.varianceT = total(all.varianceT);
        sums.biasA = total(all.biasA);
        sums.biasT = total(all.biasT);
    }

    bool hasEach() const
    {
        return variances.tV.each != nullptr ||
               std::any_of(variances.t.begin(), variances.t.end(),
                           [](const MapVariance& variance) { return variance.each != nullptr; });
    }

    [[gnu::always_inline]] void takeRoots(float* __restrict values) const
    {
        for (std::size_t i = 0; i < results.count; ++i)
            values[i] = std::sqrt(values[i]);
    }

    /// The background's variance, and the scale's where that is linear in the target's mu-t.
    [[gnu::always_inline]] void findFixed(const Group& group, Moments& moments) const
    {
        varianceOf(variances.tV, group, moments.ll);
        const bool linear = kernel.m_method != Method::FourPointLeastSquares;
        for (std::size_t k = 0; k < kernel.m_l.size(); ++k) {
            const double l = kernel.m_l[k];
            const double derivative = linear ? kernel.m_k[k] : 0.0;
            Lanes variance;
            varianceOf(variances.t[k], group, variance);
            moments.ll += l * l * variance;
            moments.kk += derivative * derivative * variance;
            moments.kl += derivative * l * variance;
        }
    }

    /// Product of the target and the sums of the references, both less their straight lines.
    [[gnu::always_inline]] void findProduct(const Group& group, Lanes& ts) const
    {
        ts = Lanes{};
        for (std::size_t k = 0; k < kernel.m_s.size(); ++k) {
            Lanes target;
            load(in.t[k] + group.first, group.there, target);
            ts += kernel.m_s[k] * target;
        }
    }

    /// Least squares with the same noise at all points.
    [[gnu::always_inline]] void findEqual(const Group& group, Moments& moments) const
    {
        Lanes ts;
        findProduct(group, ts);
        const double variance = variances.t[0].all;
        const double excess = static_cast<double>(kernel.m_s.size()) - 3.0;
        const Lanes c = group.t * kernel.m_scale;
        const Lanes inverse = 1.0 / (c * ts);
        const Lanes perS = c * c * inverse;
        moments.perC = ts * inverse;
        moments.kk = variance * kernel.m_ss * perS * perS;
        moments.shift = excess * variance * inverse;
    }

    /// Least squares with any noise.
    [[gnu::always_inline]] void findAny(const Group& group, Moments& moments) const
    {
        Lanes ts;
        findProduct(group, ts);
        Lanes mean{};
        Lanes slope{};
        const double part = 1.0 / static_cast<double>(kernel.m_s.size());
        for (std::size_t k = 0; k < kernel.m_s.size(); ++k) {
            Lanes target;
            load(in.t[k] + group.first, group.there, target);
            mean += part * target;
            slope += kernel.m_x[k] * target;
        }
        const Lanes c = group.t * kernel.m_scale;
        const Lanes inverseSquare = 1.0 / (c * ts);
        const Lanes inverse = inverseSquare * c;
        moments.perC = inverseSquare * ts;
        for (std::size_t k = 0; k < kernel.m_s.size(); ++k) {
            Lanes target;
            Lanes variance;
            load(in.t[k] + group.first, group.there, target);
            varianceOf(variances.t[k], group, variance);
            const double x = kernel.m_x[k];
            const Lanes t = target - mean - slope * x;
            const Lanes derivative = (2.0 * t - c * kernel.m_s[k]) * inverse;
            moments.kk += derivative * derivative * variance;
            moments.kl += derivative * kernel.m_l[k] * variance;
            moments.shift +=
                ((1.0 - part - x * x) - t * t * inverseSquare) * variance * inverseSquare;
        }
    }

    /// Pixels that an image lacks.
    [[gnu::always_inline]] void findMissing(const Group& group, Mask& missing) const
    {
        Lanes target;
        load(in.tV + group.first, group.there, target);
        missing = target == missingPixel;
        for (const double* image : in.t) {
            load(image + group.first, group.there, target);
            missing |= target == missingPixel;
        }
    }

    [[gnu::always_inline]] void judge(const Group& group, const Moments& moments,
                                      LaneSums& all) const
    {
        constexpr double largest = std::numeric_limits<double>::max();
        const double scale = kernel.m_scale;
        const Lanes inverse = moments.perC * (1.0 / kernel.m_lambda);
        const Lanes factor = kernel.m_kappa - group.a * kernel.m_lambda;
        const Lanes crossed = factor * moments.kk + moments.kl;
        const Lanes variance = (factor * (crossed + moments.kl) + moments.ll) * inverse * inverse;
        const Lanes varianceT = moments.kk * (1.0 / (scale * scale));
        const Lanes biasT = group.t * moments.shift;
        const Lanes biasA =
            (factor * biasT * scale - kernel.m_lambda * crossed * inverse) * inverse;
        Mask missing{};
        if (in.mayMiss)
            findMissing(group, missing);
        store(variance, missing, group.there, to.a + group.first);
        store(varianceT, missing, group.there, to.t + group.first);
        // As meansNothing(), squared; a pixel that is not there has t = 0.
        const Mask counts = (9.0 * varianceT <= group.t * group.t) & (variance >= 0.0) &
                            (group.a <= largest) & (group.a >= -largest) & (group.t != 0.0) &
                            ~missing;
        const Lanes none{};
        const Lanes one = none + 1.0;
        all.pixels += counts ? one : none;
        all.a += counts ? group.a : none;
        all.t += counts ? group.t : none;
        all.varianceA += counts ? variance : none;
        all.varianceT += counts ? varianceT : none;
        all.biasA += counts ? biasA : none;
        all.biasT += counts ? biasT : none;
    }
};

MapSums& MapSums::operator+=(const MapSums& other)
{
    pixels += other.pixels;
    a += other.a;
    t += other.t;
    varianceA += other.varianceA;
    varianceT += other.varianceT;
    biasA += other.biasA;
    biasT += other.biasT;
    return *this;
}

MapSigmaKernel::MapSigmaKernel(Method method, const PointRows& points, const PointChoice& choice,
                               double rho)
    : m_method(method), m_lambda(notANumber), m_kappa(notANumber), m_scale(notANumber)
{
    const std::size_t needed = method == Method::ThreePoint ? 2 : 3;
    if (!choice.hasVPoint() || choice.normalization.size() < needed)
        return;
    if (method == Method::ThreePoint)
        setThreePoint(points, choice);
    else
        setFourPoint(points, choice, rho);
}

void MapSigmaKernel::setThreePoint(const PointRows& points, const PointChoice& choice)
{
    const PointRow& p0 = points[choice.normalization[0]];
    const PointRow& p1 = points[choice.normalization[1]];
    const PointRow& v = points[choice.vPoint];
    const double scaled1 = (v.reference1() - p0.reference1()) / (p1.reference1() - p0.reference1());
    const double scaled2 = (v.reference2() - p0.reference2()) / (p1.reference2() - p0.reference2());
    m_lambda = scaled1 - scaled2;
    m_kappa = -scaled2;
    m_scale = ((p1.reference1() - p0.reference1()) + (p1.reference1() - p0.reference2())) * 0.5;
    m_k = {-1.0, 1.0};
    m_l = {-1.0, 0.0};
}

void MapSigmaKernel::setFourPoint(const PointRows& points, const PointChoice& choice, double rho)
{
    const bool exact = m_method == Method::FourPointExact;
    const std::size_t count = exact ? 3 : choice.normalization.size();
    const auto n = static_cast<double>(count);
    const auto row = [&](std::size_t k) -> const PointRow& {
        return points[choice.normalization[k]];
    };
    const auto sum = [&](std::size_t k) { return row(k).reference1() + row(k).reference2(); };
    double meanE = 0.0;
    double meanS = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        meanE += row(k).energy / n;
        meanS += sum(k) / n;
    }
    double norm = 0.0;
    for (std::size_t k = 0; k < count; ++k)
        norm += (row(k).energy - meanE) * (row(k).energy - meanE);
    norm = std::sqrt(norm);
    double slope = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        m_x.push_back((row(k).energy - meanE) / norm);
        slope += m_x.back() * sum(k);
    }
    const PointRow& v = points[choice.vPoint];
    const double xV = (v.energy - meanE) / norm;
    for (std::size_t k = 0; k < count; ++k) {
        m_s.push_back(sum(k) - meanS - slope * m_x[k]);
        m_l.push_back(1.0 / n + m_x[k] * xV);
        m_ss += m_s.back() * m_s.back();
    }
    for (const double s : m_s)
        m_k.push_back(s / m_ss);
    m_lambda = (rho + 1.0) * (v.reference2() - v.reference1() / rho);
    m_kappa = (rho + 1.0) * v.reference2() - (meanS + slope * xV);
    m_scale = 0.5;
}

MapSums MapSigmaKernel::operator()(const BlockInputs& in, const BlockVariances& variances,
                                   const BlockResults& results, const BlockSigmas& to) const
{
    MapSums sums;
    callWide(MapSigmaLoop{*this, in, variances, results, to, sums});
    return sums;
}
