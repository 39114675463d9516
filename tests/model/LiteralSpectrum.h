#pragma once

#include "tests/model/LiteralFormulas.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace literal
{

struct SpectrumPoint {
    double angle = 0.0;
    double energy = 0.0;
    double mut = 0.0;
};

/// A spectrum's record read and evaluated line by line with the toolkit's text stream and its
/// conversions, in the plain order of the rules.
class Spectrum
{
public:
    bool valid = false;
    QString fileName;
    double angleMin = 1e300;
    double angleMax = -1e300;
    double energyMin = 1e300;
    double energyMax = -1e300;
    double mutMin = 1e300;
    double mutMax = -1e300;
    std::vector<SpectrumPoint> points;
    double preEdgeEnd = 8000.0;
    double edge = 0.0;
    double postEdgeStart = 8500.0;
    formulas::Victreen pre{}; ///< the lines below and above the edge
    formulas::Victreen post{};

    bool read(const QString& path);
    /// What `read` does with the bytes of the file.
    bool readBytes(const QString& path, const QByteArray& bytes);
    void fitVictreens();
    double preVicAt(double energy) const;
    double postVicAt(double energy) const;
    double edgeJump() const;
    double edgeJumpNoC() const;
    double normalizedAt(double energy) const;

private:
    void processRow(const QStringList& tokens, double d);
};

/// One spectrum selector: its record, its two flags.
struct Selector {
    Spectrum spectrum;
    bool useVic = false;
    bool vicIsPre = false;

    bool muTAt(double energy, double& result) const;
};

} // namespace literal
