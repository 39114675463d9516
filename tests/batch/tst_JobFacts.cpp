#include "batch/JobFacts.h"
#include "tests/batch/TableTypes.h"

#include <QtTest>

#include <memory>

namespace
{

/// A spectrum with points at these energies, of which two are strictly below the pre-edge end and
/// three strictly above the post-edge start.
std::shared_ptr<const AXafsData> spectrum(const std::vector<double>& energies = {
                                              8200, 8250, 8300, 8350, 8450, 8500, 8550, 8600})
{
    SpectrumPoints points;
    for (const double energy : energies)
        points.push_back({0.0, energy, 1.0});
    auto data = std::make_shared<AXafsData>();
    data->setBounds({8300, 8350, 8450});
    data->setPoints(points);
    return data;
}

/// Four spectra and eight rows, of which the first four are in use. Nothing is calculated.
struct Case {
    Job job;
    JobData data;

    Case()
    {
        job.calculateTarget = job.calculateLcf = job.calculateMap = false;
        job.spectra[SpectrumSet::Target].place.line = 4;
        data.spectra.fill(spectrum());
        data.settings.conditions.referencesMinusVictreen = false;
    }
    /// As it is when the files are read.
    JobFacts facts()
    {
        for (std::size_t i = 0; i < data.spectra.size(); ++i)
            data.input.spectra.all[i] = data.spectra[i].get();
        data.input.table =
            pointTable(data.settings.points, data.input.spectra, data.settings.conditions);
        return factsOf(job, data);
    }
};

QStringList names(const JobFacts& facts)
{
    QStringList result;
    for (const SpectrumFacts& each : facts.spectra)
        result += each.name;
    return result;
}

} // namespace

/// What of a job's files and rows the calculations use, and so is worth a doubt.
class tst_JobFacts : public QObject
{
    Q_OBJECT

private slots:
    void spectraThatAreUsed();
    void linesThatAreUsed_data();
    void linesThatAreUsed();
    void energiesOfASpectrum();
    void rowsThatCount();
    void gridsOfTheImages();
    void pointsOfTheFit();
    void missingSpectraOfTheFit();
};

void tst_JobFacts::spectraThatAreUsed()
{
    Case test;
    QCOMPARE(names(test.facts()), QStringList());
    test.job.calculateMap = true; // its target is the 2D data
    QCOMPARE(names(test.facts()), QStringList({QStringLiteral("ref1"), QStringLiteral("ref2"),
                                               QStringLiteral("blank")}));
    test.job.calculateTarget = true;
    QCOMPARE(names(test.facts()), QStringList({QStringLiteral("ref1"), QStringLiteral("ref2"),
                                               QStringLiteral("target"), QStringLiteral("blank")}));
    test.job.calculateMap = test.job.calculateTarget = false;
    test.job.calculateLcf = true; // without rows that mark its range it is refused
    QCOMPARE(names(test.facts()), QStringList());
    test.data.settings.points[0].tRatio = test.data.settings.points[1].tRatio = true;
    QCOMPARE(names(test.facts()), QStringList({QStringLiteral("ref1"), QStringLiteral("ref2"),
                                               QStringLiteral("target")}));
}

void tst_JobFacts::linesThatAreUsed_data()
{
    QTest::addColumn<ThicknessType>("thickness");
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("used");
    QTest::newRow("edge jumps, four points") << ThicknessType::EdgeJumps << 4 << true;
    QTest::newRow("edge jumps, three points") << ThicknessType::EdgeJumps << 3 << false;
    QTest::newRow("mean, four points") << ThicknessType::Mean << 4 << false;
}

void tst_JobFacts::linesThatAreUsed()
{
    QFETCH(ThicknessType, thickness);
    QFETCH(int, rows);
    QFETCH(bool, used);
    Case test;
    test.job.calculateTarget = true;
    test.data.settings.conditions.thickness = thickness;
    test.data.settings.points[3].use = rows == 4;
    const JobFacts facts = test.facts();
    // A point at the bound itself belongs to no line.
    const std::optional<int> below = used ? std::optional(2) : std::nullopt;
    const std::optional<int> above = used ? std::optional(3) : std::nullopt;
    QCOMPARE(facts.spectra[SpectrumSet::Ref1].preEdgePoints, below);
    QCOMPARE(facts.spectra[SpectrumSet::Ref2].postEdgePoints, above);
    QCOMPARE(facts.spectra[SpectrumSet::Target].preEdgePoints, std::optional<int>());
}

void tst_JobFacts::energiesOfASpectrum()
{
    Case test;
    test.job.calculateTarget = true;
    test.data.spectra[SpectrumSet::Target] = spectrum({8200, 8250, 8240, 8300, 8100});
    const SpectrumFacts target = test.facts().spectra[SpectrumSet::Target];
    QCOMPARE(target.place.line, 4);
    QCOMPARE(target.energyMin, 8100.0);
    QCOMPARE(target.energyMax, 8300.0);
    QCOMPARE(target.fallsAt, std::optional(8240.0));
    QCOMPARE(test.facts().spectra[SpectrumSet::Ref1].fallsAt, std::optional<double>());
}

void tst_JobFacts::rowsThatCount()
{
    Case test;
    test.job.points.emplace(2);
    (*test.job.points)[1].place.line = 17;
    test.data.settings.points = {{8210, true, false, false},
                                 {8220, false, true, false},
                                 {8230, false, true, false},
                                 {std::nullopt, true, true, false}};
    QVERIFY(test.facts().rows.empty());
    test.job.calculateTarget = true;
    QCOMPARE(test.facts().rows.size(), std::size_t{1});
    QCOMPARE(test.facts().rows[0].energy, 8210.0);
    test.job.calculateTarget = false;
    test.job.calculateLcf = true;
    test.data.settings.points[3].tRatio = false; // no energy counts as 0 in the range
    const JobFacts facts = test.facts();
    QCOMPARE(facts.rows.size(), std::size_t{2});
    QCOMPARE(facts.rows[0].energy, 8220.0);
    QCOMPARE(facts.rows[0].place.line, 17);
    QCOMPARE(facts.rows[1].energy, 8230.0);
    QCOMPARE(facts.rows[1].place.line, 0); // the job gives two rows only
}

void tst_JobFacts::gridsOfTheImages()
{
    Case test;
    test.data.maps.resize(8);
    const auto grid = [&test](std::size_t row, int columns, int rows) {
        test.data.maps[row].valid = true;
        test.data.maps[row].columns = columns;
        test.data.maps[row].rows = rows;
    };
    grid(0, 4, 3);
    grid(1, 4, 3);
    grid(5, 9, 9); // a row that is not in use
    test.job.calculateMap = true;
    QVERIFY(!test.facts().gridsDiffer);
    grid(3, 4, 2);
    QVERIFY(test.facts().gridsDiffer);
    test.job.calculateMap = false;
    QVERIFY(!test.facts().gridsDiffer);
}

void tst_JobFacts::pointsOfTheFit()
{
    Case test;
    test.job.calculateLcf = true;
    test.data.settings.points[0] = {8250.0, false, true, false};
    test.data.settings.points[1] = {8450.0, false, true, false};
    QCOMPARE(test.facts().lcfPoints, std::optional(4));
    test.data.spectra[SpectrumSet::Target] = nullptr;
    QCOMPARE(test.facts().lcfPoints, std::optional<int>());
}

void tst_JobFacts::missingSpectraOfTheFit()
{
    Case test;
    test.data.spectra.fill(nullptr);
    QVERIFY(test.facts().missingForLcf.empty());
    test.job.calculateLcf = true;
    test.data.settings.points[0].tRatio = test.data.settings.points[1].tRatio = true;
    const std::vector<QString> expected{QStringLiteral("ref1"), QStringLiteral("ref2"),
                                        QStringLiteral("target")};
    QCOMPARE(test.facts().missingForLcf, expected);
}

QTEST_GUILESS_MAIN(tst_JobFacts)
#include "tst_JobFacts.moc"
