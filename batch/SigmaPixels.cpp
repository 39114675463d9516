#include "batch/SigmaPixels.h"

#include "analysis/Constants.h"
#include "results/RoundSteps.h"

#include <algorithm>
#include <cmath>

namespace
{

/// @param values  in any order
double endOfMost(std::vector<double> values)
{
    constexpr double most = 0.95;
    if (values.empty())
        return 1.0;
    const auto place = static_cast<std::ptrdiff_t>(most * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return roundNumberFrom(values[static_cast<std::size_t>(place)]);
}

} // namespace

SigmaPixels::SigmaPixels(const MapPixels& pixels, const MapSigmas& sigmas)
    : m_pixels(pixels), m_valence(pixels.size()), m_thickness(pixels.size()),
      m_meaningless(std::make_unique<bool[]>(pixels.size()))
{
    const double perA = std::abs(pixels.valences.ref1 - pixels.valences.ref2);
    std::vector<double> valences;
    std::vector<double> thicknesses;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const bool found = std::isfinite(pixels.a[i]) && std::isfinite(pixels.t[i]);
        m_valence[i] = found ? perA * double{sigmas.a[i]} : notANumber;
        m_thickness[i] = found ? double{sigmas.t[i]} : notANumber;
        m_meaningless[i] =
            found && (meansNothing(pixels.t[i], m_thickness[i]) || !std::isfinite(m_valence[i]));
        if (found && !m_meaningless[i] && pixels.isMeasured(i)) {
            valences.push_back(m_valence[i]);
            thicknesses.push_back(m_thickness[i]);
        }
    }
    m_ranges = {{0.0, endOfMost(std::move(valences))}, {0.0, endOfMost(std::move(thicknesses))}};
    m_pixels.a = m_valence.data();
    m_pixels.t = m_thickness.data();
    m_pixels.valences = {1.0, 0.0};
    m_pixels.meaningless = m_meaningless.get();
}
