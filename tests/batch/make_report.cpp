#include "batch/MapPictures.h"
#include "batch/PictureApplication.h"
#include "batch/Report.h"

#include <QDir>
#include <QFile>

#include <cmath>
#include <cstdio>

// Makes the pages that report_in_browser looks at: a thousand targets, some refused and one of a
// hostile name, and a map whose every value is known. Their figures are those of the script.

namespace
{

const QByteArrayList targetColumns{"target",        "method",        "a",
                                   "valence",       "t_ts",          "edge_jump",
                                   "lcf_a",         "lcf_valence",   "lcf_r_factor",
                                   "refusal",       "sigma_valence", "sigma_valence_ref",
                                   "valence_low",   "valence_high",  "dvalence_shift",
                                   "dvalence_leak", "closure_ref1",  "closure_ref2",
                                   "warnings"};
const QByteArrayList mapColumns{
    "map",        "method", "columns",  "rows", "missing", "valence_mean", "valence_median",
    "valence_sd", "t_mean", "t_median", "t_sd", "below",   "above",        "refusal"};

constexpr int targets = 1000;
constexpr int columns = 24;
constexpr int rows = 16;

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

/// Every fiftieth target is refused; the valences have four decimals and no two are alike.
QByteArrayList targetRow(int i)
{
    const QByteArray name =
        i == 3 ? QByteArray("scans/<script>alert(1)</script><img src=x onerror=alert(2)>\xff.dat")
               : "scans/s" + QByteArray::number(i).rightJustified(4, '0') + ".dat";
    if (i % 50 == 7)
        return {name, "", "", "", "", "1.1", "",      "",       "", "V Point is not selected.",
                "",   "", "", "", "", "",    "1.007", "-0.055", ""};
    const double valence = 2.25 + i * 373 % 1000 * 0.0005;
    return {name,
            "4ps",
            number(3.0 - valence),
            number(valence),
            number(0.5 + 0.0001 * i),
            "1.2",
            number(3.0 - valence - 0.01),
            number(valence + 0.01),
            "0.0002",
            "",
            "0.0061",
            "0.0093",
            number(valence - 0.011),
            number(valence + 0.011),
            "0.0235",
            "-0.0318",
            "1.007",
            "-0.055",
            i % 100 == 11 ? "energy 8.381 looks like keV; energies are in eV" : ""};
}

/// Valence 2 + 0.04 column and t/ts 0.1 + 0.05 row, half a unit apart; no result at the origin.
MapResults mapResults()
{
    MapResults results;
    results.columns = columns;
    results.rows = rows;
    results.a.resize(columns * rows);
    results.t.resize(columns * rows);
    auto positions = std::make_shared<MapPositions>();
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            results.a[positions->size()] = 1.0 - 0.04 * x;
            results.t[positions->size()] = 0.1 + 0.05 * y;
            const MapPosition position{0.5 * x, 0.5 * y};
            positions->append(&position, 1);
        }
    results.a[0] = std::nan("");
    results.positions = positions;
    return results;
}

ReportMap map(const QString& folder, const QString& language)
{
    const MapResults results = mapResults();
    const HistogramSettings ofValence{2.0, 2.8, 41.0, false};
    const HistogramSettings ofThickness{0.0, 1.0, 41.0, false};
    HistogramCounts valences;
    HistogramCounts thicknesses;
    valences.reset(ofValence);
    thicknesses.reset(ofThickness);
    for (std::size_t i = 0; i < results.size(); ++i) {
        valences.add(3.0 - results.a[i]);
        thicknesses.add(results.t[i]);
    }
    const MapPictureInput input{
        results, valences, thicknesses, ofValence, ofThickness, ReferenceValences(), true, nullptr};
    ReportMap found;
    found.fields = {"area 1", "4ps",   "24",    "16",   "1", "2.46", "2.48",
                    "0.28",   "0.475", "0.475", "0.23", "0", "16",   ""};
    Workers workers(2);
    found.pictures =
        drawMapPictures(folder, QStringLiteral("area"), input, language, workers).written;
    found.readOut = mapReadOut(input);
    return found;
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char* argv[])
{
    const auto application = pictureApplication(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "make_report FOLDER en|ja\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    ReportFacts facts;
    facts.language = QString::fromLatin1(argv[2]);
    facts.jobName = "night.toml";
    facts.jobText = "[files]\nref1 = \"ref1.dat\" # <b>\ntargets = [\"scans/*.dat\"]\n";
    facts.version = "1.2.3";
    facts.targets = ReportTargets(targetColumns);
    for (int i = 0; i < targets; ++i)
        facts.targets.add(targetRow(i));
    facts.inputs = {{"ref1.dat", QByteArray(64, '1')}, {"ref2.dat", QByteArray(64, '2')}};
    facts.mapColumns = mapColumns;
    facts.maps.push_back(map(folder, facts.language));
    QByteArrayList refused{"area 2"};
    while (refused.size() + 1 < mapColumns.size())
        refused.append("");
    facts.maps.push_back({refused << "Number of selected data sets 5 is not 4.", {}, {}});
    facts.messages = {"scans/s0007.dat: V Point is not selected."};
    return write(folder + QStringLiteral("/report.html"), reportPage(facts)) ? 0 : 1;
}
