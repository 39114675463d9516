#pragma once

/// The truth of the nickel example: two references, a target mixed of them on a straight
/// background, and a blank. Thicknesses in the units of AbsorptionModel, mu-t has no unit.
struct MixedSample {
    double fraction = 0.35;     ///< a: part of the target that is in the state of Ref 1
    double thickness1 = 0.55;   ///< of Ref 1
    double thickness2 = 0.50;   ///< of Ref 2
    double thicknessT = 0.42;   ///< of the target
    double backgroundMu0 = 0.9; ///< of the target, in addition to the blank
    double backgroundK = -8e-5; ///< 1/eV
    double blank = 1.0;         ///< factor on the blank that all four measurements contain
    static constexpr double valence1 = 2.0;
    static constexpr double valence2 = 3.0;

    double valence() const { return valence1 * fraction + valence2 * (1.0 - fraction); }

    /// Thickness of the target against the mean thickness of the references, t/ts.
    double thicknessRatio() const { return thicknessT / (0.5 * (thickness1 + thickness2)); }
};

/// The four measurements of a sample.
enum class Measurement { Ref1, Ref2, Target, Blank };

/// mu-t of a measurement at an energy in eV, without noise.
double muT(const MixedSample& sample, Measurement measurement, double energy);
