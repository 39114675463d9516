#pragma once

#include "analysis/Spectrum.h"
#include "analysis/Victreen.h"

#include <QString>

/// One spectrum in memory: the points in file order, their ranges, the energies that bound the
/// Victreen fits, and the fitted lines.
class AXafsData
{
public:
    bool valid = false;      ///< the last file opened held data
    QString fileName;        ///< path of the file last opened
    QString refusal;         ///< one line of plain English: why the last file was not taken
    double angleMin = 1e300; ///< degrees
    double angleMax = -1e300;
    double energyMin = 1e300; ///< eV
    double energyMax = -1e300;
    double mutMin = 1e300;
    double mutMax = -1e300;
    SpectrumPoints points;

    double preEdgeEnd = 8000.0;    ///< eV; points strictly below belong to the pre-edge fit
    double edge = 0.0;             ///< eV; where the edge jump is taken
    double postEdgeStart = 8500.0; ///< eV; points strictly above belong to the post-edge fit

    VictreenLineNoC preVicNoC;
    VictreenLineNoC postVicNoC;
    VictreenLine preVic;
    VictreenLine postVic;

    /// Reads a spectrum file and fits the Victreen lines. True if the file could be opened and held
    /// data. A file that cannot be opened, or is refused, leaves the record as it was; one without
    /// data leaves it cleared and not valid.
    bool read(const QString& path);

    /// Refits the four lines from the points and the bounds; nothing happens without points.
    void fitVictreens();

    double preVicAt(double energy) const { return preVic.at(energy); }
    double postVicAt(double energy) const { return postVic.at(energy); }
    double preVicNoCAt(double energy) const { return preVicNoC.at(energy); }
    double postVicNoCAt(double energy) const { return postVicNoC.at(energy); }
    double vicDiffAt(double energy) const { return postVicAt(energy) - preVicAt(energy); }
    double vicNoCDiffAt(double energy) const { return postVicNoCAt(energy) - preVicNoCAt(energy); }
    double edgeJump() const { return vicDiffAt(edge); }
    double edgeJumpNoC() const { return vicNoCDiffAt(edge); }

    /// Widens [min, max] by the mu-t of the points between two energies (eV, bounds included).
    void muTRange(double energy1, double energy2, double& min, double& max) const
    {
        widenMutRange(points, energy1, energy2, min, max);
    }

    /// Normalized absorption at an energy (eV), 0 outside the points.
    double normalizedAt(double energy) const
    {
        return ::normalizedAt(points, preVic, postVic, energy);
    }

private:
    /// Forgets the points; the bounds and the lines stay.
    void clear();
};
