#include "analysis/SystematicErrors.h"
#include "batch/TargetFigures.h"
#include "examples/MixedSampleFiles.h"
#include "tests/batch/BatchFolder.h"
#include "tests/batch/TableTypes.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QtTest>

#include <cmath>

namespace
{

bool near(double value, double expected, double part = 1e-9)
{
    return std::abs(value - expected) <= part * std::abs(expected);
}

} // namespace

/// What results.csv says of how sure each target is, and which energies `--rank` prints.
class tst_TargetFigures : public QObject
{
    Q_OBJECT

private:
    BatchFolder m_folder{{35}};

    QMap<QByteArray, QByteArray> rowOf(const QByteArray& more);
    std::optional<JobData> data(const QByteArray& more) const;

private slots:
    void initTestCase();
    void scatterGivesAllFigures();
    void countsTakeTheReadingsForPhotons();
    void gainThatIsNoneIsDoubted();
    void noneLeavesThemOut();
    void verboseTellsWhatCountingDoesNotSee();
    void closureIsToldOnceAJob_data();
    void closureIsToldOnceAJob();
    void farOutsideIsDoubted();
    void thicknessBeyondUseIsDoubted_data();
    void thicknessBeyondUseIsDoubted();
    void unseenErrorsComeBackFromTheRecord();
    void levelWidensTheInterval();
    void keysAreChecked_data();
    void keysAreChecked();
    void energiesAreRanked();
    void rankedEnergiesAreDrawn();
    void pictureReplacesNoInput();
    void rankingNeedsReferences();
};

/// The noisy example instead of the folder's smooth spectra.
void tst_TargetFigures::initTestCase()
{
    const QTemporaryDir made;
    QVERIFY(writeSample(made.path(), MixedSample(), 1).isEmpty());
    for (const char* name : {"ref1.dat", "ref2.dat", "blank.dat"})
        m_folder.write(name, contents(made.filePath(QLatin1String(name))));
    m_folder.write("scans/35.dat", contents(made.filePath(QStringLiteral("target.dat"))));
}

QMap<QByteArray, QByteArray> tst_TargetFigures::rowOf(const QByteArray& more)
{
    m_folder.writeJob(more);
    const BatchOutput output = m_folder.run({QStringLiteral("--again")});
    if (output.status != 0)
        qWarning("%s", qPrintable(output.errors));
    return firstRow(m_folder.results());
}

/// The job with the target as its own.
std::optional<JobData> tst_TargetFigures::data(const QByteArray& more) const
{
    JobError error;
    const auto job = parseJob("[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = "
                              "\"blank.dat\"\ntarget = \"scans/35.dat\"\n" +
                                  BatchFolder::points + more,
                              m_folder.path(), error);
    return job ? readJobData(*job, error) : std::nullopt;
}

void tst_TargetFigures::scatterGivesAllFigures()
{
    const auto row = rowOf("[valences]\nref1 = 2\nref2 = 4\n");
    const auto number = [&](const char* name) { return row[name].toDouble(); };
    const auto job = data({});
    QVERIFY(job);
    const AnalysisInput& input = job->input;
    const auto noise = scatterNoise(input.spectra[SpectrumSet::Target]->points, 8300.0);
    QVERIFY(near(number("noise"), noise->sigma));
    SpectrumNoises noises;
    for (std::size_t i = 0; i < noises.size(); ++i)
        noises[i] = scatterNoise(input.spectra.all[i]->points, 8300.0);
    const TargetUncertainty expected = targetUncertainty(input, Method::FourPointLeastSquares,
                                                         tableCovariances(input, noises), 0.683);
    QVERIFY(near(number("sigma_a"), expected.sigmaA));
    QVERIFY(near(number("sigma_valence"), 2.0 * expected.sigmaA));
    QVERIFY(near(number("sigma_t_ts"), expected.sigmaT));
    QVERIFY(near(number("sigma_a_ref"), expected.sigmaARef));
    QVERIFY(near(number("sigma_valence_ref"), 2.0 * expected.sigmaARef));
    QVERIFY(near(number("sigma_t_ts_ref"), expected.sigmaTRef));
    QVERIFY(near(number("valence_low"), 4.0 - 2.0 * expected.a->high));
    QVERIFY(near(number("valence_high"), 4.0 - 2.0 * expected.a->low));
    QVERIFY(number("lcf_sigma_a") > 0.0 && number("lcf_sigma_a_ref") > 0.0);
    QVERIFY(near(number("lcf_sigma_valence"), 2.0 * number("lcf_sigma_a")));
    QVERIFY(number("lcf_chi2") > 0.5 && number("lcf_chi2") < 5.0);
    QVERIFY(number("gain") > smallestGain && number("gain") < largestGain); // counted photons
    const Closure closure = closureOf(input);
    QVERIFY(near(number("closure_ref1"), *closure.ref1.point));
    QVERIFY(near(number("closure_ref2"), *closure.ref2.point));
    const SystematicErrors errors = systematicErrors(input);
    QVERIFY(near(number("dvalence_shift"), -2.0 * *errors.targetShift.point));
    QVERIFY(near(number("dvalence_leak"), -2.0 * *errors.leakage.point));
    QCOMPARE(row["warnings"], QByteArray());
}

/// sigma^2 is the mean of g0 / I0 + g / I before the edge.
void tst_TargetFigures::countsTakeTheReadingsForPhotons()
{
    const auto row =
        rowOf("[edge]\npre_edge_end = -52\n[noise]\nmodel = \"counts\"\ngain = 1.5\ngain0 = 3\n");
    double sum = 0.0;
    int points = 0;
    for (const QByteArray& line : contents(m_folder.file("scans/35.dat")).split('\n')) {
        const QList<QByteArray> tokens = line.simplified().split(' ');
        if (tokens.size() < 5 || tokens[3].toDouble() < 1e6)
            continue;
        const double angle = tokens[1].toDouble() * 3.1415926535 / 180.0;
        const double energy = 12398.424360387684 / (2.0 * 3.1355316 * std::sin(angle));
        if (energy >= 8298.0)
            continue;
        sum += 3.0 / tokens[3].toDouble() + 1.5 / tokens[4].toDouble();
        ++points;
    }
    QVERIFY(points > 50);
    QVERIFY2(near(row["noise"].toDouble(), std::sqrt(sum / points), 1e-6),
             row["noise"] + " " + QByteArray::number(std::sqrt(sum / points)));
    QVERIFY(row["sigma_a"].toDouble() > 0.0);
}

/// Readings a thousand times as small are no photons of this scatter.
void tst_TargetFigures::gainThatIsNoneIsDoubted()
{
    const QByteArray before = contents(m_folder.file("scans/35.dat"));
    QByteArray text;
    for (const QByteArray& line : before.split('\n')) {
        QList<QByteArray> tokens = line.simplified().split(' ');
        if (tokens.size() >= 5 && tokens[3].toDouble() > 1e6)
            for (const int i : {3, 4})
                tokens[i] = QByteArray::number(tokens[i].toDouble() * 1000.0, 'g', 17);
        text += tokens.join(' ') + '\n';
    }
    m_folder.write("scans/35.dat", text);
    const auto counts = rowOf("[noise]\nmodel = \"counts\"\n");
    const auto scatter = rowOf({});
    const QStringList verbose{QStringLiteral("--again"), QStringLiteral("--verbose")};
    const QString told = m_folder.run(verbose).errors;
    m_folder.write("scans/35.dat", before);
    const QString photons = m_folder.run(verbose).errors;
    QVERIFY(counts["gain"].toDouble() > 100.0);
    QVERIFY2(counts["warnings"].startsWith("these readings are not photons: their scatter has "),
             counts["warnings"]);
    QCOMPARE(scatter["gain"], counts["gain"]);
    QCOMPARE(scatter["warnings"], QByteArray());
    QVERIFY2(
        told.contains(QRegularExpression(QStringLiteral(
            "these readings are not photons: their scatter has [0-9.e+]+ times the variance"))),
        qPrintable(told));
    QVERIFY(!photons.contains(QStringLiteral("not photons")));
}

void tst_TargetFigures::noneLeavesThemOut()
{
    const auto row = rowOf("[noise]\nmodel = \"none\"\n");
    for (const char* name :
         {"sigma_a", "sigma_valence", "sigma_t_ts", "sigma_a_ref", "sigma_valence_ref",
          "sigma_t_ts_ref", "valence_low", "valence_high", "lcf_sigma_a", "lcf_sigma_valence",
          "lcf_sigma_a_ref", "lcf_chi2", "noise", "gain", "shift", "sigma_shift"})
        QCOMPARE(row[name], QByteArray());
    for (const char* name : {"closure_ref1", "closure_ref2", "dvalence_shift", "dvalence_leak"})
        QVERIFY(!row[name].isEmpty());
    const auto with = rowOf({});
    for (const char* name : {"a", "valence", "t_ts", "lcf_a", "lcf_r_factor"})
        QCOMPARE(row[name], with[name]);
}

/// Each on a line of its own, the changes with their signs.
void tst_TargetFigures::verboseTellsWhatCountingDoesNotSee()
{
    m_folder.writeJob("[systematics]\nuneven = 0.05\n");
    const BatchOutput output =
        m_folder.run({QStringLiteral("--again"), QStringLiteral("--verbose")});
    const auto job = data({});
    const SystematicErrors errors = systematicErrors(job->input, 0.05);
    const auto line = [](const char* before, double change) {
        const QString number = QString::number(change, 'g', 3);
        return QStringLiteral("scans/35.dat: ") + QLatin1String(before) +
               (change > 0.0 ? QStringLiteral("+") : QString()) + number;
    };
    const QString absolute = QStringLiteral(", if mu-t is absolute");
    const QStringList lines = output.errors.split(QLatin1Char('\n'));
    for (const QString& expected :
         {line("target 0.1 eV higher: valence ", -*errors.targetShift.point),
          line("Ref 1 0.1 eV higher: valence ", -*errors.ref1Shift.point),
          line("Ref 2 0.1 eV higher: valence ", -*errors.ref2Shift.point),
          line("1 % of the light past the target: valence ", -*errors.leakage.point) + absolute,
          line("uneven thickness: valence ", -*errors.thickness.point) + absolute})
        QVERIFY2(lines.contains(expected),
                 qPrintable(expected + QLatin1Char('\n') + output.errors));
    for (const char* begin :
         {"three points: valence ", "linear combination fit: valence ", "closure: valence off by ",
          "weights of the fit: sum ", "fit: reduced chi-square ",
          "noise of the references: valence of the fit ", "largest mu-t ", "edge jump "})
        QCOMPARE(lines.filter(QStringLiteral("scans/35.dat: ") + QLatin1String(begin)).size(), 1);
    QCOMPARE(lines.filter(QStringLiteral("outside")).size(), 0);
    m_folder.writeJob();
    QVERIFY(
        !m_folder.run({QStringLiteral("--again")}).errors.contains(QStringLiteral("eV higher")));
}

void tst_TargetFigures::closureIsToldOnceAJob_data()
{
    const Closure good{{1.007, {}}, {-0.002, {}}};
    const Closure bad{{0.74, {}}, {-0.055, {}}};
    QTest::addColumn<Closure>("closure");
    QTest::addColumn<QVector<double>>("fractions");
    QTest::addColumn<QString>("line");
    // 0.34 * 0.007 - 0.66 * 0.002 = 0.00106 of a, in valence the other way round
    QTest::newRow("measured") << good << QVector<double>{0.9, 0.34, 0.1}
                              << "closure: Ref 1 as target has a = 1.007, Ref 2 a = -0.002; they "
                                 "should have 1 and 0. At a = 0.340, the targets' median, a "
                                 "valence is off by -0.001";
    QTest::newRow("no target") << good << QVector<double>()
                               << "closure: Ref 1 as target has a = 1.007, Ref 2 a = -0.002; they "
                                  "should have 1 and 0";
    QTest::newRow("wrong") << bad << QVector<double>{1.0}
                           << "warning: closure: Ref 1 as target has a = 0.740, Ref 2 a = -0.055; "
                              "they should have 1 and 0. At a = 1.000, the targets' median, a "
                              "valence is off by 0.260";
    QTest::newRow("none") << Closure() << QVector<double>{0.5} << QString();
}

void tst_TargetFigures::closureIsToldOnceAJob()
{
    QFETCH(Closure, closure);
    QFETCH(QVector<double>, fractions);
    QFETCH(QString, line);
    QCOMPARE(closureLine(closure, {fractions.begin(), fractions.end()}, {2.0, 3.0}), line);
}

/// More of Ref 1 than all, by more than noise does: never clipped, but said.
void tst_TargetFigures::farOutsideIsDoubted()
{
    const QByteArray before = contents(m_folder.file("scans/35.dat"));
    const QTemporaryDir made;
    MixedSample sample;
    sample.fraction = 1.1;
    QVERIFY(writeSample(made.path(), sample, 2).isEmpty());
    m_folder.write("scans/35.dat", contents(made.filePath(QStringLiteral("target.dat"))));
    const auto row = rowOf("[conditions]\nthickness = \"sum-by-sum\"\n"
                           "references_minus_victreen = false\n");
    m_folder.write("scans/35.dat", before);
    const double a = row["a"].toDouble();
    QVERIFY2(std::abs(a - 1.1) < 0.02, row["a"]);
    const double sigma = std::hypot(row["sigma_a"].toDouble(), row["sigma_a_ref"].toDouble());
    QCOMPARE(row["warnings"], "a lies " + QByteArray::number((a - 1.0) / sigma, 'g', 3) +
                                  " standard deviations outside 0 to 1");
}

void tst_TargetFigures::thicknessBeyondUseIsDoubted_data()
{
    QTest::addColumn<double>("factor"); ///< on the transmitted light's logarithm
    QTest::addColumn<QByteArray>("what");
    QTest::newRow("thick") << 12.0 << QByteArray("mu-t goes up to ");
    QTest::newRow("thin") << 0.1 << QByteArray("the edge jump is ");
}

/// Of a sample that is so many times as thick.
void tst_TargetFigures::thicknessBeyondUseIsDoubted()
{
    QFETCH(double, factor);
    QFETCH(QByteArray, what);
    const QByteArray before = contents(m_folder.file("scans/35.dat"));
    QByteArray text;
    for (const QByteArray& line : before.split('\n')) {
        QList<QByteArray> tokens = line.simplified().split(' ');
        if (tokens.size() >= 5 && tokens[3].toDouble() > 1e6) {
            const double mut = std::log(tokens[3].toDouble() / tokens[4].toDouble());
            tokens[4] = QByteArray::number(tokens[3].toDouble() * std::exp(-factor * mut), 'g', 17);
        }
        text += tokens.join(' ') + '\n';
    }
    m_folder.write("scans/35.dat", text);
    const auto row = rowOf({});
    m_folder.write("scans/35.dat", before);
    QVERIFY2(row["warnings"].contains(what), row["warnings"]);
    QCOMPARE(row["warnings"].count("the edge jump is ") + row["warnings"].count("mu-t goes up to "),
             1);
}

void tst_TargetFigures::unseenErrorsComeBackFromTheRecord()
{
    UnseenErrors errors;
    errors.targetShift = 0.1;
    errors.sigmasOutside = 2.0 / 3.0;
    errors.edgeJump = -1e-300;
    errors.gain = 0.02;
    const UnseenErrors back = unseenFromText(unseenText(errors));
    QCOMPARE(back.targetShift, errors.targetShift);
    QCOMPARE(back.sigmasOutside, errors.sigmasOutside);
    QCOMPARE(back.edgeJump, errors.edgeJump);
    QCOMPARE(unseenText(back), unseenText(errors));
    QCOMPARE(back.gain, errors.gain);
    QCOMPARE(unseenLines(back).size(), 4);
    QVERIFY(unseenLines(unseenFromText("0.1,0.2")).isEmpty());
}

void tst_TargetFigures::levelWidensTheInterval()
{
    const auto one = rowOf({});
    const auto two = rowOf("[noise]\nlevel = 0.954\n");
    const auto width = [](const auto& row) {
        return row["valence_high"].toDouble() - row["valence_low"].toDouble();
    };
    QCOMPARE(one["sigma_a"], two["sigma_a"]);
    QVERIFY(width(two) / width(one) > 1.99 && width(two) / width(one) < 2.3);
}

void tst_TargetFigures::keysAreChecked_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("why");
    QTest::newRow("model") << QByteArray("[noise]\nmodel = \"shot\"\n")
                           << "must be one of \"scatter\", \"counts\", \"none\"";
    QTest::newRow("gain") << QByteArray("[noise]\ngain = 0\n") << "must be above 0";
    QTest::newRow("gain0") << QByteArray("[noise]\ngain0 = -1.0\n") << "must be above 0";
    QTest::newRow("level 0") << QByteArray("[noise]\nlevel = 0.0\n") << "must be above 0";
    QTest::newRow("level 1") << QByteArray("[noise]\nlevel = 1\n") << "must be below 1";
    QTest::newRow("uneven 0") << QByteArray("[systematics]\nuneven = 0\n") << "must be above 0";
    QTest::newRow("uneven 1") << QByteArray("[systematics]\nuneven = 1.0\n") << "must be below 1";
    QTest::newRow("counts") << QByteArray("[rank]\ncounts = 0\n") << "must be above 0";
    QTest::newRow("t_ts") << QByteArray("[rank]\nt_ts = -0.5\n") << "must be above 0";
}

void tst_TargetFigures::keysAreChecked()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, why);
    JobError error;
    QVERIFY(!parseJob(text, QStringLiteral("/data"), error));
    QCOMPARE(error.reason, why);
}

void tst_TargetFigures::energiesAreRanked()
{
    m_folder.writeJob("[rank]\ncounts = 1e6\nt_ts = 0.8\n[conditions]\nthickness = \"sum-by-sum\"\n"
                      "references_minus_victreen = false\n");
    const BatchOutput output = m_folder.run({QStringLiteral("--rank")});
    QCOMPARE(output.status, 0);
    QCOMPARE(output.errors, QString());
    QVERIFY(output.text.startsWith(
        "rank,v,points,sigma_a_0,sigma_a_half,sigma_a_1,dvalence_shift,closure_ref1,closure_ref2,"
        "sigma_t_ts,robust,gain_of_one_more,front\r\n1,"));
    const auto best = firstRow(output.text);
    QCOMPARE(best["points"].split(' ').size(), 3);
    QCOMPARE(best["front"], QByteArray("true"));
    // The best is there again, to be copied into a job.
    const QByteArray block = output.text.mid(output.text.indexOf("\n[[point]]"));
    QCOMPARE(block.count("[[point]]"), 4);
    QVERIFY(block.contains("energy = " + best["v"] + "\nv_point = true\n"));
    JobError error;
    QVERIFY2(parseJob(block, QStringLiteral("/data"), error), qPrintable(error.reason));
    // Four times the photons halve the deviations.
    m_folder.writeJob("[rank]\ncounts = 4e6\nt_ts = 0.8\n[conditions]\nthickness = \"sum-by-sum\"\n"
                      "references_minus_victreen = false\n");
    const auto more = firstRow(m_folder.run({QStringLiteral("--rank")}).text);
    QCOMPARE(more["points"], best["points"]);
    QVERIFY(near(2.0 * more["sigma_a_half"].toDouble(), best["sigma_a_half"].toDouble()));
}

/// In the language of the job; the best choice is a dot of its own in both.
void tst_TargetFigures::rankedEnergiesAreDrawn()
{
    QVector<QImage> images;
    for (const QByteArray& language : {QByteArray("en"), QByteArray("ja")}) {
        m_folder.writeJob(
            "[conditions]\nthickness = \"sum-by-sum\"\nreferences_minus_victreen = false\n");
        QByteArray job = contents(m_folder.file("job.toml"));
        job.replace("[output]\n", "[output]\nlanguage = \"" + language + "\"\n");
        m_folder.write("job.toml", job);
        const QString picture = m_folder.file(QString::fromLatin1("rank-" + language + ".png"));
        const BatchOutput output =
            m_folder.run({QStringLiteral("--rank"), QStringLiteral("--picture"), picture});
        QCOMPARE(output.errors, QString());
        QCOMPARE(output.status, 0);
        QVERIFY(output.text.startsWith("rank,v,points,"));
        images.append(QImage(picture));
        QCOMPARE(images.last().size(), QSize(900, 900));
        int best = 0;
        for (int y = 470; y < 830; ++y)
            for (int x = 80; x < 540; ++x) // beside the legend
                best += images.last().pixel(x, y) == qRgb(138, 28, 0) ? 1 : 0;
        QVERIFY2(best > 60 && best < 300, qPrintable(QString::number(best)));
    }
    QVERIFY(images[0] != images[1]);
    QVERIFY(!QFileInfo::exists(m_folder.file("out")));
}

void tst_TargetFigures::pictureReplacesNoInput()
{
    m_folder.writeJob();
    for (const char* name : {"ref1.dat", "job.toml", "scans/35.dat"}) {
        const QByteArray before = contents(m_folder.file(name));
        QVERIFY(!before.isEmpty());
        const BatchOutput output = m_folder.run(
            {QStringLiteral("--rank"), QStringLiteral("--picture"), QString::fromUtf8(name)});
        QCOMPARE(output.status, 2);
        QCOMPARE(output.text, QByteArray());
        QCOMPARE(output.errors, QLatin1String(name) +
                                    QStringLiteral(": would be written over what the job reads\n"));
        QCOMPARE(contents(m_folder.file(name)), before);
    }
}

void tst_TargetFigures::rankingNeedsReferences()
{
    m_folder.write("job.toml", "[files]\nref1 = \"ref1.dat\"\n");
    const BatchOutput output = m_folder.run({QStringLiteral("--rank")});
    QCOMPARE(output.status, 1);
    QCOMPARE(output.text, QByteArray());
    QCOMPARE(output.errors,
             QStringLiteral("No energies were found: the references need common energies below the "
                            "edge, and two crossings above it.\n"));
}

QTEST_GUILESS_MAIN(tst_TargetFigures)
#include "tst_TargetFigures.moc"
