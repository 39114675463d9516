#include "batch/JobRun.h"

#include <QtTest>

#include <array>
#include <limits>
#include <memory>

/// What the calculations of a job leave behind, on data that no file holds.
class tst_JobRun : public QObject
{
    Q_OBJECT

private slots:
    void onePixelWithAResultIsEnough_data();
    void onePixelWithAResultIsEnough();
    void messagesAreSimplified();
};

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Three points of a map of two pixels, the V point's values as given.
JobData dataOf(double first, double second)
{
    JobData data;
    auto spectrum = std::make_shared<AXafsData>();
    spectrum->setPoints({{0.0, 8300, 1.0}, {0.0, 8500, 2.0}});
    for (const auto index : {SpectrumSet::Ref1, SpectrumSet::Ref2}) {
        data.spectra[index] = spectrum;
        data.input.spectra.all[index] = data.spectra[index].get();
    }
    data.maps.resize(3);
    for (std::size_t row = 0; row < 3; ++row) {
        PointRow point;
        point.use = true;
        point.vPoint = row == 2;
        point.energy = 8310.0 + 10.0 * static_cast<double>(row);
        point.mut1 = 1.0 + static_cast<double>(row * row);
        point.mut2 = 2.0 + static_cast<double>(row);
        data.input.table.push_back(point);
        MapData& map = data.maps[row];
        map.valid = true;
        map.columns = 2;
        map.rows = 1;
        const std::array<double, 2> values{row == 2 ? first : 1.0 + static_cast<double>(row),
                                           row == 2 ? second : 2.0 + static_cast<double>(row * 2)};
        map.mut.append(values.data(), values.size());
    }
    return data;
}

} // namespace

void tst_JobRun::onePixelWithAResultIsEnough_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::addColumn<bool>("any");
    QTest::newRow("both") << 1.0 << 2.0 << true;
    QTest::newRow("the first") << 1.0 << infinity << true;
    QTest::newRow("the second") << infinity << 2.0 << true;
    QTest::newRow("none") << infinity << -infinity << false;
}

void tst_JobRun::onePixelWithAResultIsEnough()
{
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(bool, any);
    Job job;
    job.calculateTarget = job.calculateLcf = false;
    job.calculateMap = true;
    const RunReport report = runJob(job, dataOf(first, second));
    QVERIFY2(!report.refused, qPrintable(report.messages.join(QLatin1Char('\n'))));
    QCOMPARE(report.map, QStringLiteral("2 x 1 pixels"));
    QCOMPARE(report.results.anyFinitePixel, std::optional(any));
}

/// As the message pane shows them: blanks of a path count once.
void tst_JobRun::messagesAreSimplified()
{
    Job job;
    job.calculateTarget = job.calculateLcf = false;
    job.calculateMap = true;
    job.mapResult.path = QStringLiteral("/no  folder/a.dat");
    const RunReport report = runJob(job, dataOf(1.0, 2.0));
    QVERIFY(report.resultNotWritten);
    QCOMPARE(report.messages,
             QStringList({QStringLiteral("Can't open the file [/no folder/a.dat]")}));
}

QTEST_GUILESS_MAIN(tst_JobRun)
#include "tst_JobRun.moc"
