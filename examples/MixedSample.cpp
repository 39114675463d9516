#include "examples/MixedSample.h"

#include "examples/AbsorptionModel.h"

double muT(const MixedSample& sample, Measurement measurement, double energy)
{
    using absorption::State;
    const double blank = sample.blank * absorption::ofBlank(energy);
    const double two = absorption::ofState(State::Two, energy);
    const double three = absorption::ofState(State::Three, energy);
    switch (measurement) {
    case Measurement::Ref1:
        return sample.thickness1 * two + blank;
    case Measurement::Ref2:
        return sample.thickness2 * three + blank;
    case Measurement::Target:
        return sample.thicknessT * (sample.fraction * two + (1.0 - sample.fraction) * three) +
               blank + sample.backgroundMu0 + sample.backgroundK * energy;
    case Measurement::Blank:
        break;
    }
    return blank;
}
