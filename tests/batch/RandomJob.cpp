#include "tests/batch/RandomJob.h"

#include "tests/model/RandomFiles.h"
#include "tests/support/Files.h"

#include <QDir>

#include <algorithm>

namespace
{

const char* const fileKeys[] = {"ref1", "ref2", "target", "blank"};

constexpr struct {
    const char* name;
    ThicknessType type;
} thicknessNames[] = {{"sum-by-sum", ThicknessType::SumBySum},
                      {"mean", ThicknessType::Mean},
                      {"least-squares", ThicknessType::LeastSquares},
                      {"least-squares-no-blank", ThicknessType::LeastSquaresNoBlank},
                      {"victreen", ThicknessType::EdgeJumps}};

/// A number that is the same one as a text of few digits.
double rounded(double value, int digits)
{
    return QByteArray::number(value, 'g', digits).toDouble();
}

} // namespace

RandomJob::RandomJob(quint32 seed, const QString& folder) : m_random(seed), m_folder(folder)
{
    const RandomFiles made(seed, folder, chance(25));
    makePlacesForResults();
    chooseCalculations();
    chooseFiles(made.spectra,
                {QStringLiteral("out/result.dat"), QStringLiteral("out/result.dat"),
                 QStringLiteral("out/result.dat"), QStringLiteral("out/50%1.b.dat"),
                 QStringLiteral("out/folder.dat"), QStringLiteral("out/nowhere/result.dat")});
    chooseNumbers();
    chooseConditions();
    choosePoints(made.images);
    create(path(), m_text);
}

int RandomJob::placeOf(const std::vector<int>& lines, int line)
{
    const auto found = std::find(lines.begin(), lines.end(), line);
    return found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
}

void RandomJob::line(const QByteArray& text)
{
    m_text += text + '\n';
    ++m_line;
}

void RandomJob::number(const char* key, double value)
{
    line(QByteArray(key) + " = " + QByteArray::number(value, 'g', 15));
}

void RandomJob::flag(const char* key, bool value)
{
    line(QByteArray(key) + (value ? " = true" : " = false"));
}

int RandomJob::file(const char* key, const QString& path)
{
    const QString written = chance(50) ? QDir(m_folder).relativeFilePath(path) : path;
    line(QByteArray(key) + " = \"" + written.toUtf8().replace('"', "\\\"") + '"');
    return m_line - 1;
}

/// Histogram files are written only where there are some already.
void RandomJob::makePlacesForResults()
{
    const QDir folder(m_folder);
    folder.mkpath(QStringLiteral("out/folder.dat"));
    const auto out = [&](const char* name) { return folder.filePath(QLatin1String(name)); };
    if (chance(50))
        create(out("out/result.dat"), "an earlier result\n");
    if (chance(50))
        create(out("out/result_HGAlpha.dat"), "an earlier histogram\n");
    if (chance(50))
        create(out("out/50%1.b_HGThick.dat"), {});
    if (chance(20))
        folder.mkpath(QStringLiteral("out/result_HGThick.dat"));
}

void RandomJob::chooseCalculations()
{
    if (chance(20))
        return; // target and fit
    target = chance(60);
    lcf = chance(60);
    map = chance(75) || (!target && !lcf);
    QByteArrayList names;
    if (lcf)
        names += "\"lcf\"";
    if (target)
        names += "\"target\"";
    if (map)
        names += "\"map\"";
    line("calculate = [" + names.join(", ") + "]");
}

void RandomJob::chooseFiles(const QStringList& spectra, const QStringList& results)
{
    m_spectrumLines.assign(4, 0);
    line("[files]");
    for (std::size_t i = 0; i < 4; ++i) {
        if (chance(i == 3 ? 30 : 6))
            continue;
        files.spectra[i] = chance(90) ? spectra.at(static_cast<int>(i)) : anyOf(spectra);
        m_spectrumLines[i] = file(fileKeys[i], files.spectra[i]);
    }
    if (chance(60)) {
        result = QDir(m_folder).filePath(anyOf(results));
        file("map_result", result);
    }
}

void RandomJob::chooseNumbers()
{
    const auto maybe = [this](const char* key, double& value, double low, double high) {
        if (!chance(40))
            return;
        value = rounded(low + (high - low) * m_random.generateDouble(), 4 + below(12));
        number(key, value);
    };
    line("[edge]");
    maybe("energy", settings.edge, 8330, 8360);
    maybe("pre_edge_end", settings.preEdgeEnd, -60, -10);
    maybe("post_edge_start", settings.postEdgeStart, 20, 130);
    line("[valences]");
    maybe("ref1", settings.valences.ref1, -2, 4);
    maybe("ref2", settings.valences.ref2, 0, 6);
}

void RandomJob::chooseConditions()
{
    Conditions& conditions = settings.conditions;
    line("[conditions]");
    if (chance(70)) {
        const auto& choice = thicknessNames[below(5)];
        conditions.thickness = choice.type;
        line(QByteArray("thickness = \"") + choice.name + '"');
    }
    if (chance(60)) {
        conditions.referencesMinusVictreen = chance(50);
        flag("references_minus_victreen", conditions.referencesMinusVictreen);
    }
    if (chance(60)) {
        conditions.targetMinusVictreen = chance(50);
        flag("target_minus_victreen", conditions.targetMinusVictreen);
    }
    if (chance(60)) {
        conditions.victreenIsPre = chance(60);
        line(conditions.victreenIsPre ? "victreen = \"pre\"" : "victreen = \"post\"");
    }
    if (chance(60)) {
        conditions.exact = chance(60);
        conditions.leastSquares = !conditions.exact;
        line(conditions.exact ? "method = \"exact\"" : "method = \"least-squares\"");
    }
}

/// Mostly where all spectra are; some where few or none are, and some twice.
double RandomJob::anyEnergy()
{
    if (chance(5))
        return std::vector<double>{0.0, -8390.0, 8.39, 8000.0, 9999.5, 1e300}.at(
            static_cast<std::size_t>(below(6)));
    if (chance(5))
        return 8390.0;
    return rounded(8260.0 + 230.0 * m_random.generateDouble(), 4 + below(12));
}

void RandomJob::choosePoints(const QStringList& maps)
{
    if (chance(10))
        return; // the table as it is at the start
    const int rows = 3 + below(6);
    const int inUse = std::min(rows, chance(90) ? 3 + below(4) : below(9));
    settings.points.assign(settings.points.size(), {});
    std::vector<int> order;
    for (int i = 0; i < rows; ++i)
        order.push_back(i);
    for (int i = rows - 1; i > 0; --i)
        std::swap(order[static_cast<std::size_t>(i)],
                  order[static_cast<std::size_t>(below(i + 1))]);
    for (int i = 0; i < inUse; ++i)
        settings.points[static_cast<std::size_t>(order[static_cast<std::size_t>(i)])].use = true;
    const int vPoint = inUse > 0 && chance(93) ? order[0] : below(rows);
    settings.points[static_cast<std::size_t>(vPoint)].vPoint = true;
    const bool allMaps = map && chance(85);
    m_mapLines.assign(static_cast<std::size_t>(rows), 0);
    for (int i = 0; i < rows; ++i)
        writePoint(i, allMaps || chance(map ? 60 : 10) ? maps.at(i) : QString());
}

void RandomJob::writePoint(int row, const QString& image)
{
    ChosenPoint& point = settings.points[static_cast<std::size_t>(row)];
    point.energy = anyEnergy();
    point.tRatio = chance(50);
    line("[[point]]");
    number("energy", *point.energy);
    if (!point.use || chance(20))
        flag("use", point.use);
    if (point.tRatio || chance(20))
        flag("t_ratio", point.tRatio);
    if (point.vPoint || chance(20))
        flag("v_point", point.vPoint);
    files.maps.push_back(image);
    if (!image.isEmpty())
        m_mapLines[static_cast<std::size_t>(row)] = file("map", image);
}
