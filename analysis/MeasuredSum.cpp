#include "analysis/MeasuredSum.h"

#include "analysis/NormalizedSpectrum.h"

#include <algorithm>
#include <utility>

MeasuredSums::MeasuredSums(const FittedSpectrum& spectrum)
    : m_spectrum(spectrum), m_pre(VictreenBasis::below(spectrum.points, spectrum.preEdgeEnd)),
      m_post(VictreenBasis::above(spectrum.points, spectrum.postEdgeStart))
{
}

Vector<6> MeasuredSums::preAt(double energy) const
{
    const Vector<3> q = m_pre.at(energy);
    return {q[0], q[1], q[2], 0.0, 0.0, 0.0};
}

Vector<6> MeasuredSums::postAt(double energy) const
{
    const Vector<3> q = m_post.at(energy);
    return {0.0, 0.0, 0.0, q[0], q[1], q[2]};
}

MeasuredSum MeasuredSums::mutLess(SubtractedLine line, double energy) const
{
    const SpectrumPoints& points = m_spectrum.points;
    const auto right = std::find_if(points.begin(), points.end(),
                                    [energy](const auto& point) { return point.energy >= energy; });
    MeasuredSum sum;
    if (right == points.end())
        return sum;
    const auto index = static_cast<std::size_t>(right - points.begin());
    const bool isFirst = index == 0;
    const double from = isFirst ? 0.0 : points[index - 1].energy;
    const double part = (energy - from) / (right->energy - from);
    sum.point = {isFirst ? index : index - 1, index};
    sum.weight = {isFirst ? 0.0 : 1.0 - part, part};
    if (line == SubtractedLine::None)
        return sum;
    sum.fits = line == SubtractedLine::Pre ? preAt(energy) : postAt(energy);
    for (double& weight : sum.fits)
        weight = -weight;
    return sum;
}

MeasuredSum MeasuredSums::edgeJump() const
{
    MeasuredSum sum;
    const Vector<6> pre = preAt(m_spectrum.edge);
    const Vector<6> post = postAt(m_spectrum.edge);
    for (std::size_t k = 0; k < sum.fits.size(); ++k)
        sum.fits[k] = post[k] - pre[k];
    return sum;
}

Vector<6> MeasuredSums::basesAt(std::size_t point) const
{
    const double energy = m_spectrum.points[point].energy;
    Vector<6> bases{};
    if (m_pre.selects(energy))
        bases = preAt(energy);
    if (m_post.selects(energy)) {
        const Vector<3> q = m_post.at(energy);
        std::copy(q.begin(), q.end(), bases.begin() + 3);
    }
    return bases;
}

double MeasuredSums::fitWeight(const Vector<6>& fits, std::size_t point) const
{
    const double energy = m_spectrum.points[point].energy;
    double weight = 0.0;
    if (m_pre.selects(energy)) {
        const Vector<3> q = m_kept.empty() ? m_pre.at(energy) : m_kept[point].pre;
        weight += fits[0] * q[0] + fits[1] * q[1] + fits[2] * q[2];
    }
    if (m_post.selects(energy)) {
        const Vector<3> q = m_kept.empty() ? m_post.at(energy) : m_kept[point].post;
        weight += fits[3] * q[0] + fits[4] * q[1] + fits[5] * q[2];
    }
    return weight;
}

NormalizedBases MeasuredSums::formNormalizedBases(std::size_t point) const
{
    const SpectrumPoint& measured = m_spectrum.points[point];
    return {m_spectrum.vicDiffAt(measured.energy),
            normalizedPoint(measured, m_spectrum.preVic, m_spectrum.postVic),
            m_pre.at(measured.energy), m_post.at(measured.energy)};
}

void MeasuredSums::keepNormalizedBases()
{
    std::vector<NormalizedBases> all(m_spectrum.points.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = formNormalizedBases(i);
    m_kept = std::move(all);
}

std::vector<double> MeasuredSums::weights(const MeasuredSum& sum) const
{
    std::vector<double> weights(m_spectrum.points.size(), 0.0);
    if (weights.empty())
        return weights;
    const bool fitted =
        std::any_of(sum.fits.begin(), sum.fits.end(), [](double weight) { return weight != 0.0; });
    for (std::size_t j = 0; fitted && j < weights.size(); ++j)
        weights[j] = fitWeight(sum.fits, j);
    for (std::size_t k = 0; k < sum.point.size(); ++k)
        weights[sum.point[k]] += sum.weight[k];
    return weights;
}

Matrix<6> MeasuredSums::baseProducts(const SpectrumNoise& noise) const
{
    Matrix<6> products{};
    if (noise.variance.empty() && m_spectrum.preEdgeEnd <= m_spectrum.postEdgeStart) {
        for (std::size_t k = 0; k < products.size(); ++k)
            products[k][k] = noise.sigma * noise.sigma;
        return products;
    }
    for (std::size_t j = 0; j < m_spectrum.points.size(); ++j) {
        const Vector<6> q = basesAt(j);
        for (std::size_t k = 0; k < q.size(); ++k)
            for (std::size_t l = 0; l < q.size(); ++l)
                products[k][l] += noise.varianceAt(j) * q[k] * q[l];
    }
    return products;
}

double dot(const Vector<6>& a, const Vector<6>& b)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < a.size(); ++k)
        sum += a[k] * b[k];
    return sum;
}
