#include "input/AXafsData.h"

#include "input/SpectrumReader.h"

#include <QDebug>

#include <utility>

namespace
{

void widen(double value, double& min, double& max)
{
    if (value < min)
        min = value;
    if (value > max)
        max = value;
}

/// Why a file was not taken; empty for one that was read and for one that cannot be opened, of
/// which nothing is said.
QString refusalText(ReadOutcome outcome, const QString& path)
{
    if (outcome == ReadOutcome::TooLarge)
        return QStringLiteral("The spectrum file [%1] is too large.").arg(path);
    if (outcome == ReadOutcome::Unreadable)
        return QStringLiteral("The spectrum file [%1] cannot be read.").arg(path);
    return {};
}

} // namespace

bool AXafsData::read(const QString& path)
{
    SpectrumPoints found;
    const ReadOutcome outcome = readSpectrum(path, found);
    refusal = refusalText(outcome, path);
    if (outcome == ReadOutcome::CannotOpen)
        qDebug() << "Can't open a XAFS file" << path;
    if (outcome != ReadOutcome::Read)
        return false;
    clear();
    fileName = path;
    points = std::move(found);
    if (points.empty())
        return false;
    for (const SpectrumPoint& point : points) {
        widen(point.angle, angleMin, angleMax);
        widen(point.energy, energyMin, energyMax);
        widen(point.mut, mutMin, mutMax);
    }
    valid = true;
    fitVictreens();
    return true;
}

void AXafsData::clear()
{
    valid = false;
    points.clear();
    angleMin = energyMin = mutMin = 1e300;
    angleMax = energyMax = mutMax = -1e300;
}

void AXafsData::fitVictreens()
{
    if (points.empty())
        return;
    const VictreenFit pre = fitVictreenBelow(points, preEdgeEnd);
    const VictreenFit post = fitVictreenAbove(points, postEdgeStart);
    preVicNoC = pre.noC;
    preVic = pre.full;
    postVicNoC = post.noC;
    postVic = post.full;
}
