#include "examples/MixedSampleFiles.h"

#include "examples/CountingNoise.h"
#include "examples/ExampleFile.h"

#include <QDir>

#include <cmath>

namespace
{

constexpr Measurement measurements[] = {Measurement::Ref1, Measurement::Ref2, Measurement::Target,
                                        Measurement::Blank};

void appendSteps(std::vector<double>& energies, double first, double step, int count)
{
    for (int i = 0; i < count; ++i)
        energies.push_back(first + step * i);
}

QByteArray line(const char* key, double value, const char* comment)
{
    return QByteArray(key).leftJustified(12) + " = " +
           QByteArray::number(value, 'g', 10).leftJustified(8) + " # " + comment + "\n";
}

QByteArray truthText(const MixedSample& sample, bool noisy)
{
    QByteArray text = "# What the files in this folder were made with, and what an analysis should "
                      "find.\n\n[result]\n";
    text += line("a", sample.fraction, "part of the target in the state of Ref 1");
    text += line("valence", sample.valence(), "of the target");
    text += line("t_over_ts", sample.thicknessRatio(), "target over the references' mean");
    text += "\n[sample]\n";
    text += line("thickness1", sample.thickness1, "of Ref 1: its edge jump in mu-t");
    text += line("thickness2", sample.thickness2, "of Ref 2");
    text += line("thickness", sample.thicknessT, "of the target");
    text += line("mu0", sample.backgroundMu0, "background of the target: mu0 + k E");
    text += line("k", sample.backgroundK, "1/eV");
    text += "\n[noise]\n";
    text += line("photons", noisy ? photonsPerStep : 0.0,
                 "counted a step before the sample; 0: no noise");
    return text;
}

} // namespace

std::vector<double> scanEnergies()
{
    std::vector<double> energies;
    appendSteps(energies, 8000.0, 5.0, 60);
    appendSteps(energies, 8300.0, 1.0, 30);
    appendSteps(energies, 8330.0, 0.5, 300);
    appendSteps(energies, 8480.0, 2.0, 386);
    return energies;
}

std::vector<ScanStep> scan(const MixedSample& sample, Measurement measurement,
                           std::optional<std::uint_fast64_t> seed,
                           const std::vector<double>& energies)
{
    CountingNoise noise(seed.value_or(0));
    std::vector<ScanStep> steps;
    steps.reserve(energies.size());
    for (std::size_t i = 0; i < energies.size(); ++i) {
        const double decay = 0.1 * static_cast<double>(i) / static_cast<double>(energies.size());
        const double incident = photonsPerStep * (1.0 - decay);
        const double transmitted = incident * std::exp(-muT(sample, measurement, energies[i]));
        if (seed)
            steps.push_back({energies[i], noise.counted(incident), noise.counted(transmitted)});
        else
            steps.push_back({energies[i], incident, transmitted});
    }
    return steps;
}

QString fileName(Measurement measurement)
{
    switch (measurement) {
    case Measurement::Ref1:
        return QStringLiteral("ref1.dat");
    case Measurement::Ref2:
        return QStringLiteral("ref2.dat");
    case Measurement::Target:
        return QStringLiteral("target.dat");
    case Measurement::Blank:
        break;
    }
    return QStringLiteral("blank.dat");
}

QString writeSample(const QString& folder, const MixedSample& sample,
                    std::optional<std::uint_fast64_t> seed)
{
    if (!QDir().mkpath(folder))
        return folder;
    const QDir dir(folder);
    for (const Measurement measurement : measurements) {
        const QString name = fileName(measurement);
        std::optional<std::uint_fast64_t> ownSeed;
        if (seed)
            ownSeed = *seed * 4 + static_cast<std::uint_fast64_t>(measurement);
        const QByteArray title = "Made example, nickel-like : " + name.toUtf8();
        QString path = dir.filePath(name);
        if (!writeExampleFile(path, beamlineText(title, scan(sample, measurement, ownSeed))))
            return path;
    }
    const QString truth = dir.filePath(QStringLiteral("truth.toml"));
    return writeExampleFile(truth, truthText(sample, seed.has_value())) ? QString() : truth;
}
