#include "analysis/Constants.h"
#include "examples/ErrorBudget.h"
#include "examples/MeasuredSample.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>
#include <initializer_list>

namespace
{

constexpr int noisySamples = 200;

struct Named {
    const char* name;
    Measuring conditions;
};

std::vector<JobPoint> rows(std::initializer_list<const char*> normalization)
{
    std::vector<JobPoint> result;
    for (const char* const energy : normalization) {
        result.emplace_back();
        result.back().energy = QLatin1String(energy);
    }
    result.emplace_back();
    result.back().energy = QStringLiteral("8390");
    result.back().vPoint = true;
    return result;
}

Measuring sixRows()
{
    Measuring conditions = exampleConditions();
    conditions.job.points = rows({"8313", "8381", "8404.5", "8460", "8475"});
    return conditions;
}

/// The job's conditions, one thing changed in each.
std::vector<Named> jobConditions()
{
    std::vector<Named> all(4, {"", exampleConditions()});
    all[0].name = "job.toml, least squares";
    all[1].name = "job.toml, exact";
    all[1].conditions.job.exactMethod = true;
    all[2] = {"job.toml, six rows", sixRows()};
    all[3].name = "job.toml, three rows";
    all[3].conditions.job.points = rows({"8313", "8381"});
    const std::pair<const char*, ThicknessType> types[] = {
        {"job.toml, Mean", ThicknessType::Mean},
        {"job.toml, Least Square", ThicknessType::LeastSquares},
        {"job.toml, Least Square(NB)", ThicknessType::LeastSquaresNoBlank},
        {"job.toml, Victreen", ThicknessType::EdgeJumps}};
    for (const auto& [name, type] : types) {
        all.push_back({name, exampleConditions()});
        all.back().conditions.job.thickness = type;
    }
    return all;
}

/// The form's defaults, one thing changed in each.
std::vector<Named> formConditions()
{
    std::vector<Named> all(5, {"", defaultConditions()});
    all[0].name = "defaults";
    all[1].name = "defaults, Blank left empty";
    all[1].conditions.blankNamed = false;
    all[2].name = "defaults, three rows";
    all[2].conditions.job.points = rows({"8313", "8381"});
    all[3].name = "defaults, Vic1";
    all[3].conditions.job.victreenIsPre = true;
    all[4].name = "defaults, Use Vic of target";
    all[4].conditions.job.targetMinusVictreen = true;
    return all;
}

QString signedText(double value)
{
    return QStringLiteral("%1%2").arg(QLatin1String(value < 0 ? "" : "+")).arg(value, 0, 'f', 5);
}

struct Spread {
    double mean = 0.0;
    double deviation = 0.0;
};

Spread spreadOf(const std::vector<double>& values)
{
    Spread result;
    const auto n = static_cast<double>(values.size());
    for (const double value : values)
        result.mean += value / n;
    for (const double value : values)
        result.deviation += (value - result.mean) * (value - result.mean) / (n - 1.0);
    result.deviation = std::sqrt(result.deviation);
    return result;
}

void printNoiseFree(QTextStream& out, const QString& folder, const std::vector<Named>& all)
{
    const MixedSample sample;
    out << "| Conditions, without noise | a | error | t/ts | error |\n|---|---|---|---|---|\n";
    for (const auto& [name, conditions] : all) {
        const auto found = measure(conditions, sample, folder, std::nullopt);
        if (!found)
            continue;
        out << "| " << name << " | " << found->a << " | " << signedText(found->a - sample.fraction)
            << " | ";
        if (std::isnan(found->thickness))
            out << "- | - |\n";
        else
            out << found->thickness << " | "
                << signedText(found->thickness - sample.thicknessRatio()) << " |\n";
    }
    out << '\n';
}

void printBudget(QTextStream& out, const QString& folder)
{
    const MixedSample sample;
    const DefaultErrors derived = defaultErrors(sample);
    const auto found = measure(defaultConditions(), sample, folder, std::nullopt);
    if (!found)
        return;
    out << "| Default conditions, derived | of | by |\n|---|---|---|\n";
    out << "| " << signedText(derived.lineCurved) << " | a | the line is curved |\n";
    out << "| " << signedText(derived.linesDiffer) << " | a | the lines differ |\n";
    out << "| " << signedText(derived.blankTwice) << " | a | the blank is lost twice |\n";
    out << "| " << signedText(derived.ratio) << " | a | the edge jumps' ratio |\n";
    out << "| " << signedText(derived.a()) << " | a | sum; measured "
        << signedText(found->a - sample.fraction) << " |\n";
    out << "| " << signedText(derived.thickness) << " | t/ts | curved line and blank; measured "
        << signedText(found->thickness - sample.thicknessRatio()) << " |\n\n";
}

QString derivedText(double deviation)
{
    return std::isnan(deviation) ? QStringLiteral("-") : QString::number(deviation, 'f', 5);
}

void printNoiseRow(QTextStream& out, const QString& folder, const Named& named,
                   const NoiseErrors& derived)
{
    std::vector<double> a;
    std::vector<double> thickness;
    for (std::uint_fast64_t seed = 1; seed <= noisySamples; ++seed) {
        const auto found = measure(named.conditions, MixedSample(), folder, seed);
        if (!found)
            continue;
        a.push_back(found->a);
        thickness.push_back(found->thickness);
    }
    const Spread ofA = spreadOf(a);
    const Spread ofThickness = spreadOf(thickness);
    out << "| " << named.name << " | " << QString::number(ofA.mean, 'f', 5) << " | "
        << QString::number(ofA.deviation, 'f', 5) << " | " << derivedText(derived.a) << " | "
        << QString::number(ofThickness.mean, 'f', 5) << " | "
        << QString::number(ofThickness.deviation, 'f', 5) << " | " << derivedText(derived.thickness)
        << " |\n";
}

void printNoise(QTextStream& out, const QString& folder)
{
    const MixedSample sample;
    out << "| " << noisySamples << " noisy samples | mean of a | deviation | derived "
        << "| mean of t/ts | deviation | derived |\n|---|---|---|---|---|---|---|\n";
    printNoiseRow(out, folder, {"job.toml", exampleConditions()}, noiseOfJob(sample));
    printNoiseRow(out, folder, {"job.toml, six rows", sixRows()}, {notANumber, notANumber});
    printNoiseRow(out, folder, {"defaults", defaultConditions()}, noiseOfDefaults(sample));
}

} // namespace

/// Prints the tables of docs/numerics.md: what the program finds on the example against what was
/// mixed, and the errors derived.
int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication application(argc, argv);
    QTemporaryDir folder;
    if (!folder.isValid())
        return 1;
    QTextStream out(stdout);
    printNoiseFree(out, folder.path(), jobConditions());
    printNoiseFree(out, folder.path(), formConditions());
    printBudget(out, folder.path());
    printNoise(out, folder.path());
    return 0;
}
