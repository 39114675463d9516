#include "batch/InspectedSpectrum.h"

#include "analysis/Settings.h"
#include "analysis/SpectrumNoise.h"
#include "analysis/SteepestRise.h"
#include "formats/ColumnNames.h"
#include "formats/SpectrumFile.h"
#include "input/SpectrumReader.h"
#include "system/InputFile.h"
#include "text/TextBytes.h"

#include <algorithm>
#include <cmath>

namespace
{

QString energyText(double energy)
{
    return QString::number(energy, 'g', 10);
}

/// Steps of energies that rise, and what is unusual of their order.
struct Steps {
    double smallest = INFINITY;
    double largest = 0.0;
    int same = 0;
};

Steps stepsOf(const std::vector<double>& sorted)
{
    Steps steps;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        const double step = sorted[i] - sorted[i - 1];
        if (step > 0.0) {
            steps.smallest = std::min(steps.smallest, step);
            steps.largest = std::max(steps.largest, step);
        } else {
            ++steps.same;
        }
    }
    return steps;
}

QString valuesText(SpectrumValues values)
{
    switch (values) {
    case SpectrumValues::Intensities:
        return QStringLiteral("I0 and I, mu-t = ln(I0 / I)");
    case SpectrumValues::Fluorescence:
        return QStringLiteral("fluorescence");
    case SpectrumValues::FluorescenceIntensities:
        return QStringLiteral("I0 and fluorescence, their ratio is taken");
    case SpectrumValues::Normalized:
        return QStringLiteral("a normalized spectrum");
    case SpectrumValues::MuT:
        break;
    }
    return QStringLiteral("mu-t");
}

/// What the columns of a table hold.
void addColumns(const TextTable& table, Inspection& inspection)
{
    constexpr std::size_t most = 30;
    const std::vector<ColumnName> names = tableHeader(table).columns;
    for (std::size_t i = 0; i < std::min(table.columns, most); ++i) {
        double least = INFINITY;
        double largest = -INFINITY;
        for (std::size_t row = 0; row < table.rows(); ++row) {
            least = std::fmin(least, table.at(row, i));
            largest = std::fmax(largest, table.at(row, i));
        }
        QString text = QString::number(i + 1);
        if (i < names.size() && !names[i].name.empty())
            text += QStringLiteral(" \"%1\"").arg(textFromUtf8(names[i].name));
        if (i < names.size() && !names[i].unit.empty())
            text += QStringLiteral(" (%1)").arg(textFromUtf8(names[i].unit));
        inspection.add("column", text + QStringLiteral(", ") + rangeText(least, largest));
    }
    if (table.columns > most)
        inspection.add("columns",
                       QStringLiteral("%1, of which %2 are shown").arg(table.columns).arg(most));
}

std::vector<double> energiesOf(const SpectrumPoints& points)
{
    std::vector<double> energies;
    energies.reserve(points.size());
    for (const SpectrumPoint& point : points)
        energies.push_back(point.energy);
    return energies;
}

/// How much more the points scatter than counted photons would.
void addGain(const InputFile& file, double limit, Inspection& inspection)
{
    SpectrumPoints points;
    std::vector<Readings> readings;
    if (readSpectrum(file, points, 0, &readings) != ReadOutcome::Read)
        return;
    if (const auto gain = gainFound(points, readings, limit))
        inspection.add("counting", QStringLiteral("the variance is %1 times that of as many "
                                                  "counted photons")
                                       .arg(*gain, 0, 'g', 3));
}

} // namespace

QString rangeText(double from, double to)
{
    return QStringLiteral("%1 to %2").arg(from, 0, 'g', 6).arg(to, 0, 'g', 6);
}

void addEnergies(const std::vector<double>& energies, Inspection& inspection)
{
    if (energies.empty())
        return;
    std::vector<double> sorted = energies;
    std::sort(sorted.begin(), sorted.end());
    const Steps steps = stepsOf(sorted);
    QString text = QStringLiteral("%1 to %2 eV, %3")
                       .arg(energyText(sorted.front()), energyText(sorted.back()))
                       .arg(sorted.size());
    if (steps.largest > 0.0)
        text += steps.largest - steps.smallest < 1e-3
                    ? QStringLiteral(", step %1 eV").arg(steps.smallest, 0, 'g', 4)
                    : QStringLiteral(", steps %1 to %2 eV")
                          .arg(steps.smallest, 0, 'g', 4)
                          .arg(steps.largest, 0, 'g', 4);
    inspection.add("energies", text);
    if (steps.same > 0)
        inspection.add("double energies", QString::number(steps.same));
    const bool rise = std::is_sorted(energies.begin(), energies.end());
    const bool fall = std::is_sorted(energies.rbegin(), energies.rend());
    if (!rise)
        inspection.add("order", fall ? QStringLiteral("the energies fall")
                                     : QStringLiteral("the energies rise and fall"));
}

/// The wider one of the steps to the energies beside one of a spectrum, eV.
double stepsBeside(const SpectrumPoints& points, double energy)
{
    double below = -INFINITY;
    double above = INFINITY;
    for (const SpectrumPoint& point : points) {
        if (point.energy < energy)
            below = std::max(below, point.energy);
        if (point.energy > energy)
            above = std::min(above, point.energy);
    }
    return std::max(std::isfinite(below) ? energy - below : 0.0,
                    std::isfinite(above) ? above - energy : 0.0);
}

QString edgeText(const SpectrumPoints& points, double edge)
{
    constexpr double widest = 10.0; // eV; an edge is about as wide
    const QString text = QStringLiteral("%1 eV, where mu-t rises most").arg(energyText(edge));
    const double step = stepsBeside(points, edge);
    return step > widest
               ? text + QStringLiteral("; a step of %1 eV is too wide to tell an edge").arg(step)
               : text;
}

void addSpectrum(const SpectrumPoints& points, const QString& what, Inspection& inspection)
{
    FittedSpectrum spectrum;
    spectrum.setPoints(points);
    inspection.add("mu-t", rangeText(spectrum.mutMin, spectrum.mutMax) + what);
    const auto edge = steepestRise(points);
    inspection.add("edge", edge ? edgeText(points, *edge) : QStringLiteral("not found"));
    Settings start;
    start.edge = edge.value_or(start.edge);
    const double limit = start.bounds().preEdgeEnd;
    const auto noise = edge ? scatterNoise(points, limit) : std::nullopt;
    inspection.add("noise", noise
                                ? QStringLiteral("%1 of mu-t, from the scatter below %2 eV")
                                      .arg(noise->sigma, 0, 'g', 3)
                                      .arg(energyText(limit))
                                : QStringLiteral("not known: too few points 50 eV before an edge"));
    spectrum.setBounds(start.bounds());
    spectrum.fitVictreens();
    inspection.spectrum = std::move(spectrum);
}

void addNumbers(const SpectrumPoints& points, Inspection& inspection)
{
    FittedSpectrum means;
    means.setPoints(points);
    inspection.add("means of the frames", rangeText(means.mutMin, means.mutMax));
    means.setBounds({NAN, NAN, NAN}); // no lines are drawn
    inspection.spectrum = std::move(means);
    inspection.isMut = false;
}

std::optional<FileFault> inspectSpectrum(const QString& path, Inspection& inspection)
{
    const auto file = InputFile::open(path);
    if (!file)
        return FileFault{path, 0, QStringLiteral("cannot be opened")};
    const FileKind kind = fileKindOf(*file);
    if (kind != FileKind::Beamline) {
        TextTable table;
        if (const auto wrong = readTable(*file, table))
            return FileFault{path, wrong->line, wrong->reason};
        addColumns(table, inspection);
        const auto meaning = columnMeaning(table, {});
        if (const auto* reason = std::get_if<QString>(&meaning); reason && kind != FileKind::Xdi) {
            inspection.add("rows", QString::number(table.rows()));
            inspection.add("needed", *reason);
            return std::nullopt;
        }
    }
    auto outcome = readSpectrumFile(path, {});
    if (const auto* fault = std::get_if<FileFault>(&outcome))
        return *fault;
    const auto& found = std::get<FoundSpectrum>(outcome);
    inspection.add("values", kind == FileKind::Beamline ? valuesText(SpectrumValues::Intensities)
                                                        : valuesText(found.values));
    addEnergies(energiesOf(found.points), inspection);
    addSpectrum(found.points, QString(), inspection);
    if (kind == FileKind::Beamline && inspection.spectrum)
        addGain(*file, inspection.spectrum->preEdgeEnd, inspection);
    inspection.add("assumed", found.assumed);
    inspection.add("warning", found.warnings);
    return std::nullopt;
}
