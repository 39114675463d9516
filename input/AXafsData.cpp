#include "input/AXafsData.h"

#include "input/SpectrumReader.h"
#include "input/TextSource.h"

#include <QDebug>
#include <QFile>

namespace
{

void widen(double value, double& min, double& max)
{
    if (value < min)
        min = value;
    if (value > max)
        max = value;
}

} // namespace

bool AXafsData::read(const QString& path)
{
    QFile file;
    if (!openRegularFile(file, path)) {
        qDebug() << "Can't open a XAFS file" << path;
        return false;
    }
    clear();
    fileName = path;
    points = readSpectrum(file);
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
