#include "examples/NightSample.h"

#include "examples/WayTo.h"

#include <cmath>
#include <cstdlib>

namespace
{

constexpr int columns = 48;
constexpr int rows = 32;

double wedgeFraction(int x, int)
{
    return wayTo(x, columns);
}

double wedgeThickness(int, int y)
{
    return 0.25 + 0.75 * wayTo(y, rows);
}

bool isGrain(int x, int y)
{
    const int fromCentreX = x - 20;
    const int fromCentreY = y - 14;
    return fromCentreX * fromCentreX + fromCentreY * fromCentreY <= 10 * 10;
}

void append(std::vector<double>& energies, double first, double step, int count)
{
    for (int i = 0; i < count; ++i)
        energies.push_back(first + step * i);
}

} // namespace

MixedSample night::sample(int i)
{
    const double way = wayTo(i, samples);
    MixedSample made;
    made.fraction = 0.9 - 0.8 * way * way * (3.0 - 2.0 * way);
    made.thicknessT = 0.4 * (1.0 + 0.2 * (std::abs(i * 7 % 40 - 20) / 10.0 - 1.0));
    return made;
}

QString night::sampleFile(int i)
{
    return QStringLiteral("scans/sample_%1.dat").arg(i + 1, 3, 10, QLatin1Char('0'));
}

std::vector<double> night::quickEnergies()
{
    std::vector<double> energies;
    append(energies, 8000.0, 10.0, 30);
    append(energies, 8300.0, 1.0, 30);
    append(energies, 8330.0, 0.5, 160);
    append(energies, 8410.0, 2.0, 35);
    append(energies, 8480.0, 10.0, 78);
    return energies;
}

std::vector<night::Map> night::maps()
{
    const auto grain = [](int x, int y) { return isGrain(x, y) ? 0.95 : 0.1; };
    const auto bands = [](int x, int) {
        const int band = x * 5 / columns;
        return 0.25 * band;
    };
    const auto even = [](int, int) { return 0.8; };
    const auto steps = [](int, int y) {
        const int step = y * 4 / rows;
        return 0.4 + 0.2 * step;
    };
    return {{"wedge", columns, rows, rows, wedgeFraction, wedgeThickness},
            {"grain", columns, rows, rows, grain, even},
            {"bands", columns, rows, rows, bands, steps},
            {"stopped", columns, rows, rows - 5, wedgeFraction, wedgeThickness}};
}
