#include "analysis/EnergyRanking.h"

#include "analysis/EnergyCandidates.h"
#include "analysis/FourPoint.h"
#include "analysis/PointRatio.h"
#include "analysis/SpectrumNoise.h"
#include "analysis/SystematicErrors.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr double wrongEnergy = 0.5; ///< eV, by which a chosen energy may be off
constexpr double half = 0.5;

/// What the references and the blank have at an energy: mu-t, and the line that may be taken off.
struct Reading {
    std::array<double, SpectrumSet::count> mut{};
    std::array<double, SpectrumSet::count> referenceLine{};
    std::array<double, SpectrumSet::count> targetLine{};
};

/// An energy with what is read there, beside it, and a little before it.
struct Candidate {
    double energy;
    Reading here;
    Reading before; ///< what a target shows here that is shifted
    Reading lower;
    Reading higher;
};

/// The targets that a choice is judged by.
class Mixtures
{
public:
    Mixtures(const AnalysisInput& input, const RankedTarget& target, double rho)
        : m_spectra(input.spectra), m_conditions(input.conditions), m_target(target), m_rho(rho)
    {
    }

    Candidate candidate(double energy) const
    {
        return {energy, read(energy), read(energy - usualShift), read(energy - wrongEnergy),
                read(energy + wrongEnergy)};
    }

    /// A row with the references read at one place and a mixture at another.
    PointRow row(double energy, const Reading& references, const Reading& target, double a) const
    {
        const auto& weights = weightsOf(a);
        PointRow row = referenceRow(energy, references);
        row.mutTarget = mixed(target.mut, weights);
        if (m_conditions.targetMinusVictreen)
            row.mutTarget -= mixed(target.targetLine, weights);
        return row;
    }
    PointRow row(const Candidate& at, double a) const
    {
        return row(at.energy, at.here, at.here, a);
    }

    /// A row with a reference in the target's place.
    PointRow closureRow(const Candidate& at, SpectrumSet::Index reference) const
    {
        PointRow row = referenceRow(at.energy, at.here);
        row.mutTarget = at.here.mut[reference];
        if (m_conditions.targetMinusVictreen)
            row.mutTarget -= at.here.targetLine[reference];
        return row;
    }

    /// Of the target's mu-t, by counting.
    double variance(const Candidate& at, double a) const
    {
        const double mut = mixed(at.here.mut, weightsOf(a));
        return countingVariance({m_target.counts, m_target.counts * std::exp(-mut)}, {});
    }

    ThicknessType thickness() const { return m_conditions.thickness; }
    double edgeJump(SpectrumSet::Index i) const { return m_spectra.edgeJump(i); }

private:
    /// Parts of Ref 1, Ref 2 and blank in a target.
    struct Weights {
        double ref1;
        double ref2;
    };

    Weights weightsOf(double a) const
    {
        const double scale = half * m_target.thickness;
        return {scale * (1.0 + 1.0 / m_rho) * a, scale * (1.0 + m_rho) * (1.0 - a)};
    }
    static double mixed(const std::array<double, SpectrumSet::count>& values,
                        const Weights& weights)
    {
        const double blank = values[SpectrumSet::Blank];
        return weights.ref1 * (values[SpectrumSet::Ref1] - blank) +
               weights.ref2 * (values[SpectrumSet::Ref2] - blank) + blank;
    }

    PointRow referenceRow(double energy, const Reading& reading) const
    {
        PointRow row;
        row.use = true;
        row.useVicRefs = m_conditions.referencesMinusVictreen;
        row.useVicTarget = m_conditions.targetMinusVictreen;
        row.energy = energy;
        row.mut1 = reading.mut[SpectrumSet::Ref1];
        row.mut2 = reading.mut[SpectrumSet::Ref2];
        if (row.useVicRefs) {
            row.mut1 -= reading.referenceLine[SpectrumSet::Ref1];
            row.mut2 -= reading.referenceLine[SpectrumSet::Ref2];
        }
        row.mutBlank = reading.mut[SpectrumSet::Blank];
        return row;
    }

    Reading read(double energy) const
    {
        Reading reading;
        for (const SpectrumSet::Index i :
             {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Blank}) {
            if (!m_spectra.isValid(i))
                continue;
            const FittedSpectrum& spectrum = *m_spectra[i];
            reading.mut[i] = interpolateMut(spectrum.points, energy).value_or(0.0);
            const double line =
                m_conditions.victreenIsPre ? spectrum.preVicAt(energy) : spectrum.postVicAt(energy);
            reading.referenceLine[i] = reading.targetLine[i] = line;
        }
        return reading;
    }

    const SpectrumSet& m_spectra;
    const Conditions& m_conditions;
    RankedTarget m_target;
    double m_rho;
};

/// A V point and its normalization points.
using Choice = std::vector<const Candidate*>; ///< the V point is the first

class Judge
{
public:
    explicit Judge(const Mixtures& mixtures) : m_mixtures(mixtures) {}

    /// The figures that the order and the front need.
    RankedChoice quick(const Choice& choice) const
    {
        RankedChoice result;
        result.vPoint = choice.front()->energy;
        for (std::size_t i = 1; i < choice.size(); ++i)
            result.points.push_back(choice[i]->energy);
        std::sort(result.points.begin(), result.points.end());
        result.sigmaA[1] = sigma(choice, half, &result.sigmaT);
        result.shift = fraction(choice,
                                [&](const Candidate& at) {
                                    return m_mixtures.row(at.energy, at.here, at.before, half);
                                }) -
                       undisturbed(choice);
        result.closure1 = fraction(choice, [&](const Candidate& at) {
            return m_mixtures.closureRow(at, SpectrumSet::Ref1);
        });
        result.closure2 = fraction(choice, [&](const Candidate& at) {
            return m_mixtures.closureRow(at, SpectrumSet::Ref2);
        });
        return result;
    }

    /// The remaining figures.
    void complete(const Choice& choice, const std::vector<Candidate>& crossings,
                  RankedChoice& result) const
    {
        result.sigmaA[0] = sigma(choice, 0.0);
        result.sigmaA[2] = sigma(choice, 1.0);
        const double a = undisturbed(choice);
        for (const Candidate* moved : choice)
            for (const bool up : {false, true})
                result.robust =
                    std::max(result.robust, std::abs(withWrongEnergy(choice, moved, up) - a));
        result.gainOfOneMore = gainOfOneMore(choice, crossings, result.sigmaA[1]);
    }

private:
    template <class RowOf>
    PointRows rowsOf(const Choice& choice, const RowOf& rowOf) const
    {
        PointRows rows;
        for (const Candidate* at : choice)
            rows.push_back(rowOf(*at));
        rows.front().vPoint = true;
        return rows;
    }

    double rhoOf(const PointRows& rows) const
    {
        return thicknessRatios(rows, m_mixtures.edgeJump(SpectrumSet::Ref1),
                               m_mixtures.edgeJump(SpectrumSet::Ref2))
            .selected(m_mixtures.thickness());
    }

    template <class RowOf>
    double fraction(const Choice& choice, const RowOf& rowOf) const
    {
        const PointRows rows = rowsOf(choice, rowOf);
        const PointChoice chosen = choosePoints(rows);
        std::vector<double> t;
        for (const std::size_t i : chosen.normalization)
            t.push_back(rows[i].target());
        return vPointFraction(rows, chosen, rhoOf(rows))
            .at(FourPointLeastSquares(rows, chosen).scale(t.data()), rows.front().target());
    }

    double withWrongEnergy(const Choice& choice, const Candidate* moved, bool up) const
    {
        return fraction(choice, [&](const Candidate& at) {
            if (&at != moved)
                return m_mixtures.row(at, half);
            const Reading& reading = up ? at.higher : at.lower;
            const double energy = at.energy + (up ? wrongEnergy : -wrongEnergy);
            return m_mixtures.row(energy, reading, reading, half);
        });
    }

    double gainOfOneMore(const Choice& choice, const std::vector<Candidate>& crossings,
                         double sigmaWithout) const
    {
        double gain = 1.0;
        for (const Candidate& crossing : crossings) {
            if (std::find(choice.begin(), choice.end(), &crossing) != choice.end())
                continue;
            Choice more = choice;
            more.push_back(&crossing);
            gain = std::max(gain, sigmaWithout / sigma(more, half));
        }
        return gain;
    }

    double undisturbed(const Choice& choice) const
    {
        return fraction(choice, [&](const Candidate& at) { return m_mixtures.row(at, half); });
    }

    /// By the counting noise of the target alone.
    double sigma(const Choice& choice, double a, double* sigmaT = nullptr) const
    {
        const PointRows rows =
            rowsOf(choice, [&](const Candidate& at) { return m_mixtures.row(at, a); });
        RatioGradient rho;
        rho.rho = rhoOf(rows); // which does not depend on the target
        const PointRatio ratio =
            pointRatio(rows, choosePoints(rows), Method::FourPointLeastSquares, rho);
        const EntryVector byA = ratio.fractionGradient()[SpectrumSet::Target];
        const EntryVector& byT = ratio.byThickness[SpectrumSet::Target];
        double varianceA = 0.0;
        double varianceT = 0.0;
        for (std::size_t i = 0; i < choice.size(); ++i) {
            const double variance = m_mixtures.variance(*choice[i], a);
            varianceA += byA.at(i) * byA.at(i) * variance;
            varianceT += byT.at(i) * byT.at(i) * variance;
        }
        if (sigmaT != nullptr)
            *sigmaT = std::sqrt(varianceT);
        return std::sqrt(varianceA);
    }

    const Mixtures& m_mixtures;
};

/// A choice with its figures.
struct Judged {
    Choice choice;
    RankedChoice result;
};

std::vector<Candidate> candidatesAt(const std::vector<double>& energies, const Mixtures& mixtures)
{
    std::vector<Candidate> candidates;
    candidates.reserve(energies.size());
    for (const double energy : energies)
        candidates.push_back(mixtures.candidate(energy));
    return candidates;
}

bool isBetter(const Judged& one, const Judged& other)
{
    if (one.result.closes() != other.result.closes())
        return one.result.closes();
    return one.result.sigmaA[1] < other.result.sigmaA[1];
}

/// In the order of rising sigma a choice is on the front where its shift is smaller than all
/// before.
void markFront(std::vector<Judged>& judged)
{
    double smallest = std::numeric_limits<double>::infinity();
    for (Judged& one : judged) {
        one.result.front = one.result.closes() && std::abs(one.result.shift) < smallest;
        if (one.result.front)
            smallest = std::abs(one.result.shift);
    }
}

/// Each pair of crossings once.
std::vector<Choice> pairsOf(const std::vector<Candidate>& crossings)
{
    std::vector<Choice> pairs;
    for (std::size_t i = 0; i < crossings.size(); ++i)
        for (std::size_t j = i + 1; j < crossings.size(); ++j)
            pairs.push_back({&crossings[i], &crossings[j]});
    return pairs;
}

std::vector<Judged> judgeAll(const std::vector<Candidate>& vPoints,
                             const std::vector<Candidate>& preEdge,
                             const std::vector<Candidate>& crossings, const Judge& judge)
{
    std::vector<Judged> judged;
    const std::vector<Choice> pairs = pairsOf(crossings);
    for (const Candidate& v : vPoints)
        for (const Candidate& pre : preEdge)
            for (const Choice& pair : pairs) {
                const Choice choice{&v, &pre, pair[0], pair[1]};
                const RankedChoice result = judge.quick(choice);
                if (std::isfinite(result.sigmaA[1]) && std::isfinite(result.shift))
                    judged.push_back({choice, result});
            }
    std::stable_sort(judged.begin(), judged.end(), isBetter);
    return judged;
}

} // namespace

bool RankedChoice::closes() const
{
    return !Closure{{closure1, {}}, {closure2, {}}}.isDoubtful();
}

std::vector<double> crossings(const FittedSpectrum& ref1, const FittedSpectrum& ref2,
                              const FittedSpectrum* blank)
{
    return crossingsOf(stateDifference(ref1, ref2, blank), ref1.edge);
}

std::vector<RankedChoice> rankEnergies(const AnalysisInput& input, const RankedTarget& target,
                                       std::size_t most)
{
    if (!input.spectra.isValid(SpectrumSet::Ref1) || !input.spectra.isValid(SpectrumSet::Ref2))
        return {};
    const FittedSpectrum& ref1 = *input.spectra[SpectrumSet::Ref1];
    const StateDifference difference =
        stateDifference(ref1, *input.spectra[SpectrumSet::Ref2], input.spectra[SpectrumSet::Blank]);
    const Mixtures mixtures(input, target, difference.rho);
    const std::vector<Candidate> crossed =
        candidatesAt(crossingsOf(difference, ref1.edge), mixtures);
    const std::vector<Candidate> preEdge =
        candidatesAt(preEdgePointsOf(difference, ref1.edge), mixtures);
    const std::vector<Candidate> vPoints =
        candidatesAt(vPointsOf(difference, ref1.preEdgeEnd), mixtures);
    const Judge judge(mixtures);
    std::vector<Judged> judged = judgeAll(vPoints, preEdge, crossed, judge);
    markFront(judged);
    std::vector<RankedChoice> ranked;
    for (Judged& one : judged) {
        if (ranked.size() >= most && !one.result.front)
            continue;
        judge.complete(one.choice, crossed, one.result);
        ranked.push_back(std::move(one.result));
    }
    return ranked;
}
