#include "batch/JobChecks.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace
{

/// The K edge of beryllium is at 112 eV; nothing that transmits is measured below.
constexpr double lowestEnergy = 100.0;

/// A Victreen line with its constant and a linear combination have three coefficients each.
constexpr int coefficients = 3;

/// Noise may take `a` a little beyond 0 and 1.
constexpr double lowestFraction = -0.5;
constexpr double highestFraction = 1.5;

QString electronVolts(double energy)
{
    return QString::number(energy, 'g', 10);
}

QString rangeText(const SpectrumFacts& spectrum)
{
    return QStringLiteral("%1 (%2 to %3 eV)")
        .arg(spectrum.name, electronVolts(spectrum.energyMin), electronVolts(spectrum.energyMax));
}

bool looksLikeKiloElectronVolts(double energy)
{
    return energy > 0.0 && energy < lowestEnergy;
}

bool reaches(const SpectrumFacts& spectrum, double energy)
{
    return spectrum.energyMin <= energy && energy <= spectrum.energyMax;
}

bool usesLine(const SpectrumFacts& spectrum)
{
    return spectrum.preEdgePoints || spectrum.postEdgePoints;
}

class Doubts
{
public:
    void energy(const QString& what, double energy, const JobPlace& place,
                const QStringList& outside)
    {
        const QString text = what + QLatin1Char(' ') + electronVolts(energy);
        if (looksLikeKiloElectronVolts(energy))
            add(place, text + QStringLiteral(" looks like keV; energies are in eV"));
        else if (!outside.isEmpty())
            add(place, text + QStringLiteral(" is outside ") + outside.join(QStringLiteral(", ")));
    }
    void add(const JobPlace& place, const QString& reason) { found.push_back({place, reason}); }

    std::vector<JobError> found;
};

void checkEnergies(const JobFacts& facts, Doubts& doubts)
{
    const auto notReached = [&facts](double energy, bool onlyWithLines) {
        QStringList names;
        for (const SpectrumFacts& spectrum : facts.spectra)
            if (!reaches(spectrum, energy) && (usesLine(spectrum) || !onlyWithLines))
                names += rangeText(spectrum);
        return names;
    };
    for (const RowFacts& row : facts.rows)
        doubts.energy(QStringLiteral("energy"), row.energy, row.place,
                      notReached(row.energy, false));
    if (std::any_of(facts.spectra.begin(), facts.spectra.end(), usesLine))
        doubts.energy(QStringLiteral("edge"), facts.edge, facts.edgePlace,
                      notReached(facts.edge, true));
}

void checkOverlap(const std::vector<SpectrumFacts>& spectra, Doubts& doubts)
{
    for (std::size_t i = 0; i < spectra.size(); ++i)
        for (std::size_t k = i + 1; k < spectra.size(); ++k)
            if (spectra[i].energyMax < spectra[k].energyMin ||
                spectra[k].energyMax < spectra[i].energyMin)
                doubts.add(spectra[k].place,
                           QStringLiteral("%1 and %2 have no energy in common")
                               .arg(rangeText(spectra[i]), rangeText(spectra[k])));
}

/// @param points  that a line of three coefficients goes through, if there is to be one
void checkLine(const std::optional<int>& points, const QString& line, const QString& name,
               const JobPlace& place, Doubts& doubts)
{
    if (points && *points < coefficients)
        doubts.add(place, QStringLiteral("the %1 line of %2 goes through %3 points; it "
                                         "needs %4")
                              .arg(line, name)
                              .arg(*points)
                              .arg(coefficients));
}

void checkSpectrum(const SpectrumFacts& spectrum, const JobFacts& facts, Doubts& doubts)
{
    for (const QString& warning : spectrum.warnings)
        doubts.add(spectrum.place, spectrum.name + QStringLiteral(": ") + warning);
    if (spectrum.fallsAt)
        doubts.add(spectrum.place,
                   QStringLiteral("the energies of %1 fall at %2 eV; from row to row they are "
                                  "taken to rise")
                       .arg(spectrum.name, electronVolts(*spectrum.fallsAt)));
    checkLine(spectrum.preEdgePoints, QStringLiteral("pre-edge"), spectrum.name,
              facts.preEdgeEndPlace, doubts);
    checkLine(spectrum.postEdgePoints, QStringLiteral("post-edge"), spectrum.name,
              facts.postEdgeStartPlace, doubts);
}

bool isFarOutside(double a)
{
    return a < lowestFraction || a > highestFraction;
}

void checkFraction(const std::optional<double>& a, const std::optional<double>& valence,
                   const QString& method, Doubts& doubts)
{
    if (!a || !valence)
        return;
    if (!std::isfinite(*a) || !std::isfinite(*valence))
        doubts.add({}, QStringLiteral("the result of %1 is no finite number").arg(method));
    else if (isFarOutside(*a))
        doubts.add({}, QStringLiteral("a = %1 of %2 is far outside 0 to 1").arg(*a).arg(method));
}

} // namespace

std::vector<JobError> doubtsBefore(const JobFacts& facts)
{
    Doubts doubts;
    checkEnergies(facts, doubts);
    for (const SpectrumFacts& spectrum : facts.spectra)
        checkSpectrum(spectrum, facts, doubts);
    checkOverlap(facts.spectra, doubts);
    if (facts.gridsDiffer)
        doubts.add({}, QStringLiteral("the images of the map have different grids"));
    for (const QString& name : facts.missingForLcf)
        doubts.add({}, QStringLiteral("the linear combination fit has no %1").arg(name));
    if (facts.missingForLcf.empty() && facts.lcfPoints && *facts.lcfPoints < coefficients)
        doubts.add({}, QStringLiteral("the range of the linear combination fit holds %1 points of "
                                      "target; it needs %2")
                           .arg(*facts.lcfPoints)
                           .arg(coefficients));
    return doubts.found;
}

std::vector<JobError> doubtsAfter(const JobResults& results)
{
    Doubts doubts;
    if (!results.anyFinitePixel.value_or(true))
        doubts.add({}, QStringLiteral("no pixel of the map has a finite result"));
    else if (results.medianA && isFarOutside(*results.medianA))
        doubts.add({}, QStringLiteral("a = %1, the median of the map, is far outside 0 to 1")
                           .arg(*results.medianA));
    checkFraction(results.a, results.valence, QStringLiteral("the point method"), doubts);
    checkFraction(results.lcfA, results.lcfValence, QStringLiteral("the linear combination fit"),
                  doubts);
    return doubts.found;
}

bool areFinite(const JobResults& results)
{
    const auto isFinite = [](const std::optional<double>& value) {
        return !value || std::isfinite(*value);
    };
    return results.anyFinitePixel.value_or(true) && isFinite(results.a) &&
           isFinite(results.valence) && isFinite(results.lcfA) && isFinite(results.lcfValence);
}
