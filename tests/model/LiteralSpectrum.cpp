#include "tests/model/LiteralSpectrum.h"

#include "tests/support/PlainText.h"

#include <QFile>

namespace literal
{

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

bool Spectrum::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return readBytes(path, file.readAll());
}

bool Spectrum::readBytes(const QString& path, const QByteArray& bytes)
{
    fileName = path;
    angleMin = energyMin = mutMin = 1e300;
    angleMax = energyMax = mutMax = -1e300;
    points.clear();
    valid = false;
    double d = 3.1355316;
    bool started = false;
    for (const QString& line : plain::text(bytes).split(QLatin1Char('\n'))) {
        const QStringList tokens = line.simplified().split(QLatin1Char(' '));
        if (started && tokens.size() > 4) {
            processRow(tokens, d);
            continue;
        }
        if (tokens.contains(QStringLiteral("Offset")))
            started = true;
        const int mark = tokens.indexOf(QStringLiteral("D="));
        if (mark >= 0 && mark + 1 < tokens.size())
            d = tokens[mark + 1].toDouble();
    }
    if (!started || points.empty())
        return false;
    valid = true;
    fitVictreens();
    return true;
}

void Spectrum::processRow(const QStringList& tokens, double d)
{
    const double theta = tokens[1].toDouble();
    const double energy = formulas::energyAt(theta, d);
    const double mut = formulas::muTOf(tokens[3].toDouble(), tokens[4].toDouble());
    points.push_back({theta, energy, mut});
    widen(theta, angleMin, angleMax);
    widen(energy, energyMin, energyMax);
    widen(mut, mutMin, mutMax);
}

void Spectrum::fitVictreens()
{
    if (points.empty())
        return;
    pre = formulas::fitVictreen(points, [this](double e) { return e < preEdgeEnd; });
    post = formulas::fitVictreen(points, [this](double e) { return e > postEdgeStart; });
}

double Spectrum::preVicAt(double energy) const
{
    return formulas::victreenAt(pre.c, pre.a, pre.b, energy);
}

double Spectrum::postVicAt(double energy) const
{
    return formulas::victreenAt(post.c, post.a, post.b, energy);
}

double Spectrum::edgeJump() const
{
    return postVicAt(edge) - preVicAt(edge);
}

double Spectrum::edgeJumpNoC() const
{
    return formulas::noCAt(post.aNoC, post.bNoC, edge) - formulas::noCAt(pre.aNoC, pre.bNoC, edge);
}

double Spectrum::normalizedAt(double energy) const
{
    return formulas::normalizedAt(points, pre, post, energy);
}

bool Selector::muTAt(double energy, double& result) const
{
    const std::optional<double> mut = formulas::muTAt(spectrum.points, energy);
    if (!mut)
        return false;
    result = *mut;
    if (useVic)
        result -= vicIsPre ? spectrum.preVicAt(energy) : spectrum.postVicAt(energy);
    return true;
}

} // namespace literal
