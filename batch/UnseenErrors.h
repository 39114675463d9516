#pragma once

#include "batch/OutputWords.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

/// What counting does not see of a target: faults that no scatter shows, and what the methods tell
/// of one another; and whether the readings are photons at all. Each stands by itself and is in no
/// standard deviation. What was not asked for, or cannot be formed, is not there.
struct UnseenErrors {
    using Number = std::optional<double>;

    // Changes of the point method's valence, each calculated again with the changed spectrum.
    Number targetShift; ///< the target's energies 0.1 eV higher
    Number ref1Shift;   ///< those of Ref 1
    Number ref2Shift;   ///< those of Ref 2
    Number leakage;     ///< 1 % of the light goes past the target; mu-t is taken for absolute
    Number thickness;   ///< the target's thickness is as uneven as the job says; likewise

    // What other methods find, less the point method's valence.
    Number threePoint; ///< three of its points, where it has more
    Number fourPoint;  ///< four of its points, where it has more
    Number fit;        ///< the linear combination fit

    Number closure;        ///< by how much the valence is off at this `a`, as the closure test says
    Number sigmasOutside;  ///< standard deviations by which `a` lies outside 0 to 1, where it does
    Number fitWeights;     ///< sum of the fit's two weights; 1 for a sample of nothing else
    Number fitChiSquare;   ///< of the fit, reduced, with the noise of the references
    Number fitBias;        ///< by which the references' noise moves the fit's valence
    Number fitBiasInSigma; ///< its size in standard deviations of the fit's valence
    Number largestMut;     ///< of the target at the points in use, with what is subtracted later
    Number edgeJump;       ///< of the target
    Number gain;           ///< variance of the readings over that of photons, where they are none
};

/// A line for each that is there, in the order of the fields.
QStringList unseenLines(const UnseenErrors& errors,
                        const OutputWords& words = OutputWords(QStringLiteral("en")));

/// The numbers as a text for the record, and back; nothing where the text is none of these.
QByteArray unseenText(const UnseenErrors& errors);
UnseenErrors unseenFromText(const QByteArray& text);
