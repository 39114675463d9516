#include "batch/TargetFigures.h"

#include "text/Csv.h"
#include "text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace
{

using Number = std::optional<double>;

/// What is not known has an empty field.
Number known(double value)
{
    return std::isfinite(value) ? Number(value) : Number();
}

TableCovariances covariancesOf(const JobData& data, const MeasuredSums& target)
{
    TableCovariances covariances = data.uncertainty->covariances;
    const auto& noise = data.noises[SpectrumSet::Target];
    const SubtractedLine line = subtractedLine(SpectrumSet::Target, data.input.conditions);
    covariances[SpectrumSet::Target].reset();
    if (noise)
        covariances[SpectrumSet::Target] = tableCovariance(target, line, data.input.table, *noise);
    if (const double sigma = data.shifts[SpectrumSet::Target].sigma; noise && sigma > 0.0)
        covariances[SpectrumSet::Target]->shift =
            entryShift(target.spectrum(), line, data.input.table, sigma);
    return covariances;
}

LcfUncertainty fitUncertainty(const JobData& data, const MeasuredSums& target,
                              const LinearCombination& fit)
{
    const CommonUncertainty& common = *data.uncertainty;
    const JudgedFit judged{*common.ref1, *common.ref2, target, *lcfRange(data.input.table), fit};
    const auto sigma = [&](SpectrumSet::Index spectrum) { return data.shifts[spectrum].sigma; };
    return lcfUncertainty(judged, data.noises, data.noise.level,
                          lcfShift(judged, {sigma(SpectrumSet::Ref1), sigma(SpectrumSet::Ref2),
                                            sigma(SpectrumSet::Target)}));
}

double changeOfValence(double ofA, const ReferenceValences& valences)
{
    return ofA * (valences.ref1 - valences.ref2);
}

UnseenErrors pointErrors(const JobData& data, const TargetResult& result)
{
    const CommonUncertainty& common = *data.uncertainty;
    const TargetChanges changes = targetChanges(data.input, common.shifted, data.noise.uneven);
    const auto inValence = [&](const Number& change) {
        return change ? known(changeOfValence(*change, data.input.valences)) : Number();
    };
    UnseenErrors unseen;
    unseen.targetShift = inValence(changes.shift);
    unseen.ref1Shift = inValence(changes.ref1Shift);
    unseen.ref2Shift = inValence(changes.ref2Shift);
    unseen.leakage = inValence(changes.leakage);
    unseen.thickness = inValence(changes.thickness);
    unseen.threePoint = inValence(changes.threePoint);
    unseen.fourPoint = inValence(changes.fourPoint);
    unseen.closure = inValence(common.closure.errorAt(result.a));
    return unseen;
}

/// mu-t as it was measured, before lines and blank are subtracted.
Number largestMut(const JobData& data)
{
    Number largest;
    for (const PointRow& row : data.input.table) {
        if (!row.use || row.energy == 0.0)
            continue;
        const auto mut =
            mutLess(*data.spectra[SpectrumSet::Target], SubtractedLine::None, row.energy);
        if (mut && std::isfinite(*mut))
            largest = std::max(*mut, largest.value_or(*mut));
    }
    return largest;
}

UnseenErrors unseenErrors(const JobData& data, const TargetResult* result,
                          const LinearCombination* fit)
{
    UnseenErrors unseen;
    if (result != nullptr)
        unseen = pointErrors(data, *result);
    if (result != nullptr && fit != nullptr)
        unseen.fit = known(fit->valence(data.input.valences) - result->valence);
    if (fit != nullptr)
        unseen.fitWeights = known(fit->p1 + fit->p2);
    unseen.largestMut = largestMut(data);
    unseen.edgeJump = known(data.spectra[SpectrumSet::Target]->edgeJump());
    return unseen;
}

/// What takes the noise to tell.
void addNoise(const TargetFigures& figures, const TargetResult* result, UnseenErrors& unseen)
{
    if (const auto& point = figures.point; point && result != nullptr)
        if (const double outside =
                sigmasOutside(result->a, std::hypot(point->sigmaA, point->sigmaARef));
            outside > 0.0)
            unseen.sigmasOutside = known(outside);
    if (const auto& fit = figures.fit) {
        unseen.fitChiSquare = known(fit->reducedChiSquare);
        unseen.fitBias = known(changeOfValence(fit->biasA, figures.valences));
        unseen.fitBiasInSigma =
            known(std::abs(fit->biasA) / std::hypot(fit->sigmaA, fit->sigmaARef));
    }
}

/// What is outside the range in which a transmission spectrum is of use.
void doubtThickness(const UnseenErrors& unseen, QStringList& doubts)
{
    constexpr double mostMut = 4.0; // 2 % of the light: as much as often leaks or is harmonic
    constexpr double leastJump = 0.1;
    if (unseen.largestMut && *unseen.largestMut > mostMut)
        doubts += QStringLiteral("mu-t goes up to %1, so that light of other ways counts")
                      .arg(textFromNumber(*unseen.largestMut));
    if (unseen.edgeJump && *unseen.edgeJump < leastJump)
        doubts += QStringLiteral("the edge jump is %1, so that the lines' errors count")
                      .arg(textFromNumber(*unseen.edgeJump));
}

bool areNoPhotons(const std::optional<double>& gain)
{
    return gain && (*gain < smallestGain || *gain > largestGain);
}

/// Of readings that the job takes for photons, a strange gain is a doubt; of others it is told.
void doubt(const TargetFigures& figures, NoiseModel model, QStringList& doubts)
{
    if (figures.point && std::isfinite(figures.point->sigmaA) &&
        std::isfinite(figures.point->sigmaARef) && !figures.point->a)
        doubts += QStringLiteral("the interval of the valence has no bounds: the target's scale is "
                                 "not told from 0");
    if (model == NoiseModel::Counts && areNoPhotons(figures.gain))
        doubts += QStringLiteral("these readings are not photons: their scatter has %1 times the "
                                 "variance")
                      .arg(textFromNumber(*figures.gain));
    constexpr double farOutside = 3.0;
    if (const auto& outside = figures.unseen.sigmasOutside; outside && *outside > farOutside)
        doubts += QStringLiteral("a lies %1 standard deviations outside 0 to 1")
                      .arg(QString::number(*outside, 'g', 3));
    if (figures.fit && figures.fit->isBiased())
        doubts += QStringLiteral("the references' noise moves the fit's a by %1")
                      .arg(textFromNumber(figures.fit->biasA));
}

} // namespace

TargetFigures targetFigures(const JobData& data, const TargetResult* result,
                            const LinearCombination* fit)
{
    TargetFigures figures;
    figures.valences = data.settings.valences;
    if (data.alignment)
        figures.shift = data.shifts[SpectrumSet::Target];
    if (!data.uncertainty)
        return figures;
    figures.closure = data.uncertainty->closure;
    figures.unseen = unseenErrors(data, result, fit);
    doubtThickness(figures.unseen, figures.doubts);
    if (data.noise.model == NoiseModel::None)
        return figures;
    if (const auto& noise = data.noises[SpectrumSet::Target])
        figures.noise = noise->sigma;
    figures.gain = data.gains[SpectrumSet::Target];
    if (data.noise.model != NoiseModel::Counts && areNoPhotons(figures.gain))
        figures.unseen.gain = figures.gain;
    MeasuredSums target(*data.spectra[SpectrumSet::Target]);
    if (result != nullptr) {
        figures.point = targetUncertainty(data.input, result->method, covariancesOf(data, target),
                                          data.noise.level);
        figures.hasThickness = result->method != Method::ThreePoint;
    }
    const CommonUncertainty& common = *data.uncertainty;
    if (fit != nullptr && common.ref1 && common.ref2) {
        target.keepNormalizedBases();
        figures.fit = fitUncertainty(data, target, *fit);
    }
    addNoise(figures, result, figures.unseen);
    doubt(figures, data.noise.model, figures.doubts);
    return figures;
}

QByteArrayList figureColumns()
{
    return {
        "sigma_a",         "sigma_valence",  "sigma_t_ts",    "sigma_a_ref", "sigma_valence_ref",
        "sigma_t_ts_ref",  "valence_low",    "valence_high",  "lcf_sigma_a", "lcf_sigma_valence",
        "lcf_sigma_a_ref", "lcf_chi2",       "noise",         "gain",        "closure_ref1",
        "closure_ref2",    "dvalence_shift", "dvalence_leak", "shift",       "sigma_shift"};
}

namespace
{

/// Not-a-numbers where there is none.
Interval intervalOf(const TargetFigures& figures)
{
    const auto interval = figures.point ? figures.point->valence(figures.valences) : std::nullopt;
    return interval.value_or(Interval{notANumber, notANumber});
}

/// A shift that was found has an error; one that the job gives has none.
std::pair<Number, Number> shiftOf(const TargetFigures& figures)
{
    if (!figures.shift)
        return {};
    const double sigma = figures.shift->sigma;
    return {figures.shift->shift, sigma > 0.0 ? Number(sigma) : Number()};
}

} // namespace

QByteArrayList figureFields(const TargetFigures& figures)
{
    const auto ofPoint = [&](auto value) {
        return figures.point ? known(value(*figures.point)) : Number();
    };
    const auto ofThickness = [&](auto value) {
        return figures.hasThickness ? ofPoint(value) : Number();
    };
    const auto ofFit = [&](auto value) {
        return figures.fit ? known(value(*figures.fit)) : Number();
    };
    const Interval interval = intervalOf(figures);
    const auto shift = shiftOf(figures);
    using Point = TargetUncertainty;
    using Fit = LcfUncertainty;
    QByteArrayList fields;
    for (const Number& number :
         {ofPoint([](const Point& p) { return p.sigmaA; }),
          ofPoint([&](const Point& p) { return p.sigmaValence(figures.valences); }),
          ofThickness([](const Point& p) { return p.sigmaT; }),
          ofPoint([](const Point& p) { return p.sigmaARef; }),
          ofPoint([&](const Point& p) { return p.sigmaValenceRef(figures.valences); }),
          ofThickness([](const Point& p) { return p.sigmaTRef; }),
          known(interval.low),
          known(interval.high),
          ofFit([](const Fit& f) { return f.sigmaA; }),
          ofFit([&](const Fit& f) { return f.sigmaValence(figures.valences); }),
          ofFit([](const Fit& f) { return f.sigmaARef; }),
          ofFit([](const Fit& f) { return f.reducedChiSquare; }),
          figures.noise,
          figures.gain,
          figures.closure.ref1.point,
          figures.closure.ref2.point,
          figures.unseen.targetShift,
          figures.unseen.leakage,
          shift.first,
          shift.second})
        fields += csv::number(number);
    return fields;
}
