#include "batch/MapsRun.h"
#include "batch/TargetRow.h"
#include "examples/NightSample.h"
#include "jobs/TargetList.h"
#include "system/InputFile.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>

namespace
{

/// Fields of a table without quotation marks, a list for each line.
QList<QByteArrayList> table(const QByteArray& text)
{
    QList<QByteArrayList> lines;
    for (const QByteArray& line : text.split('\n'))
        if (!line.isEmpty())
            lines += line.trimmed().split(',');
    return lines;
}

double number(const QByteArray& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? value : std::nan("");
}

} // namespace

/// The example of a night, which the program analyses to what it was made with.
class tst_NightSample : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void truthOfTheSamples();
    void truthOfTheMaps();
    void targetsHoldTheTruth();
    void mapsHoldTheTruth();
    void unwritableFolderIsNamed();

private:
    QTemporaryDir m_dir;
    std::optional<Job> m_job;
    std::optional<JobData> m_common;
};

void tst_NightSample::initTestCase()
{
    QCOMPARE(night::write(m_dir.path()), QString());
    const QString path = m_dir.filePath(QStringLiteral("night-job.toml"));
    QVERIFY(QFile::copy(QStringLiteral(SOURCE_FOLDER "/examples/night-job.toml"), path));
    JobError error;
    m_job = readJob(path, error);
    QVERIFY2(m_job, qPrintable(errorText(path, error)));
    m_job->report = false; // its pictures need fonts
    m_common = readJobData(*m_job, error);
    QVERIFY2(m_common, qPrintable(errorText(path, error)));
}

void tst_NightSample::truthOfTheSamples()
{
    QCOMPARE(night::sample(0).fraction, 0.9);
    QVERIFY(std::abs(night::sample(199).fraction - 0.1) < 1e-15);
    QVERIFY(night::sample(10).fraction > 0.89); // slowly at first
    for (int i = 1; i < night::samples; ++i)
        QVERIFY(night::sample(i).fraction < night::sample(i - 1).fraction);
    QVERIFY(std::abs(night::sample(0).thicknessT - 0.48) < 1e-15);
    for (int i = 0; i < night::samples; ++i)
        QVERIFY(std::abs(night::sample(i).thicknessT - 0.4) < 0.4 * 0.2 + 1e-15);
    QCOMPARE(night::sampleFile(0), QStringLiteral("scans/sample_001.dat"));
    QCOMPARE(night::sampleFile(199), QStringLiteral("scans/sample_200.dat"));
    const std::vector<double> energies = night::quickEnergies();
    for (std::size_t i = 1; i < energies.size(); ++i)
        QVERIFY(energies[i] > energies[i - 1]);
    for (const double point : {8313.0, 8381.0, 8390.0, 8404.5})
        QVERIFY(std::count(energies.begin(), energies.end(), point) == 1);
}

void tst_NightSample::truthOfTheMaps()
{
    const QList<QByteArrayList> lines =
        table(contents(m_dir.filePath(QStringLiteral("truth-maps.csv"))));
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[1][0], QByteArray("wedge"));
    QCOMPARE(number(lines[1][5]), 2.5);
    QCOMPARE(number(lines[1][6]), 2.5);
    QCOMPARE(number(lines[1][8]), 0.625);
    // Of 1536 pixels 317 lie within 10 of the grain's centre: Gauss's circle problem.
    const double grain = (317 * (3.0 - 0.95) + (1536 - 317) * (3.0 - 0.1)) / 1536;
    QCOMPARE(lines[2][5], QByteArray::number(grain, 'g', 10));
    QCOMPARE(lines[2][6], QByteArray("2.9"));
    QCOMPARE(lines[2][10], QByteArray("0"));  // one thickness
    QCOMPARE(lines[4][4], QByteArray("240")); // 5 rows of 48
}

/// Counts of 2e8 photons behind mu-t of at most 2.5 scatter it by 0.00027; over the states'
/// difference of 0.2 times the thinnest sample's edge of 0.32, with the scatter of the other
/// points, that is 0.006 in the fraction. The fit averages over more than a hundred points.
void tst_NightSample::targetsHoldTheTruth()
{
    constexpr double scatter = 0.006;
    JobError error;
    const auto targets = targetJobs(*m_job, error);
    QVERIFY(targets);
    const QList<QByteArrayList> truth =
        table(contents(m_dir.filePath(QStringLiteral("truth-targets.csv"))));
    QCOMPARE(targets->size(), std::size_t(night::samples));
    QCOMPARE(truth.size(), night::samples + 1);
    double sum = 0.0;
    for (int i = 0; i < night::samples; ++i) {
        const TargetJob& target = (*targets)[static_cast<std::size_t>(i)];
        const QString name = targetName(*m_job, target);
        QString why;
        FileDigests digests;
        const auto source = openTarget(*m_job, target, name, digests, why);
        QVERIFY2(source, qPrintable(why));
        const TargetRow row = analyseTarget(*m_job, *m_common, {name, *source});
        QVERIFY2(row.isGood(), qPrintable(row.refusal));
        QCOMPARE(row.warnings, QStringList());
        QCOMPARE(row.target.toUtf8(), truth[i + 1][0]);
        const double a = number(truth[i + 1][1]);
        QVERIFY2(std::abs(row.result->a - a) < 4 * scatter, qPrintable(row.target));
        QVERIFY2(std::abs(row.result->valence - number(truth[i + 1][2])) < 4 * scatter,
                 qPrintable(row.target));
        QVERIFY2(std::abs(row.result->thickness - number(truth[i + 1][3])) < 6 * scatter,
                 qPrintable(row.target));
        QVERIFY2(std::abs(row.fit->share1() - a) < scatter, qPrintable(row.target));
        sum += row.result->a - a;
    }
    QVERIFY(std::abs(sum / night::samples) < scatter);
}

/// The maps have no noise; what is left is that of the references.
void tst_NightSample::mapsHoldTheTruth()
{
    constexpr double scatter = 0.006;
    JobError error;
    const auto maps = mapList(*m_job, error);
    QVERIFY2(maps, qPrintable(error.reason));
    const QList<QByteArrayList> truth =
        table(contents(m_dir.filePath(QStringLiteral("truth-maps.csv"))));
    QList<QByteArrayList> rows;
    Workers workers(2);
    QVERIFY(runMaps(
        *m_job, *m_common, *maps,
        [&](const MapJob&, const MapOutcome& outcome) {
            rows += mapFields(outcome.row);
            return outcome.row.isGood() && outcome.row.warnings.isEmpty() && !outcome.fileFailed;
        },
        workers));
    QCOMPARE(rows.size(), truth.size() - 1);
    for (int i = 0; i < rows.size(); ++i) {
        for (int column = 0; column < truth[0].size(); ++column) {
            const int at = mapColumns().indexOf(truth[0][column]);
            QVERIFY(at >= 0);
            const QByteArray& found = rows[i][at];
            const QByteArray& expected = truth[i + 1][column];
            if (column < 5)
                QCOMPARE(found, expected);
            else
                QVERIFY2(std::abs(number(found) - number(expected)) < scatter,
                         found + " for " + expected);
        }
        QCOMPARE(rows[i][mapColumns().indexOf("below")], QByteArray("0"));
        QCOMPARE(rows[i][mapColumns().indexOf("above")], QByteArray("0"));
    }
}

void tst_NightSample::unwritableFolderIsNamed()
{
    const QTemporaryDir dir;
    create(dir.filePath(QStringLiteral("images")), {});
    QCOMPARE(night::write(dir.path()), dir.filePath(QStringLiteral("images")));
}

QTEST_GUILESS_MAIN(tst_NightSample)
#include "tst_NightSample.moc"
