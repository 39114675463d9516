#include "batch/JobRun.h"
#include "batch/TargetRow.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"
#include "text/NumberText.h"

#include <QDir>
#include <QtTest>

namespace
{

/// A field of a table without quotation marks, by the names of its row and column.
QByteArray field(const QByteArray& table, const QByteArray& target, const QByteArray& column)
{
    const QList<QByteArray> lines = table.split('\n');
    const int index = lines.first().trimmed().split(',').indexOf(column);
    for (const QByteArray& line : lines)
        if (line.startsWith(target + ','))
            return line.trimmed().split(',').value(index);
    return "no such row";
}

} // namespace

/// Many targets in one command.
class tst_Targets : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void aRowForEachTarget();
    void figuresAreThoseOfOneTarget_data();
    void figuresAreThoseOfOneTarget();
    void threadsChangeNothing();
    void aBadTargetStopsNoOther();
    void rFactorIsWhatTheFitMisses();
    void listed();
    void checkWritesNothing();
    void nothingReadIsWritten();
    void folderThatCannotBe();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    QByteArray results() const { return m_folder->results(); }
    std::unique_ptr<BatchFolder> m_folder;
};

void tst_Targets::init()
{
    m_folder = std::make_unique<BatchFolder>();
}

void tst_Targets::aRowForEachTarget()
{
    m_folder->writeJob(
        "[conditions]\nthickness = \"sum-by-sum\"\nreferences_minus_victreen = false\n");
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 0);
    QCOMPARE(output.text, QByteArray());
    // Under these conditions the method is exact, so that the example closes.
    QCOMPARE(output.errors, QStringLiteral("closure: Ref 1 as target has a = 1.000, Ref 2 a = "
                                           "0.000; they should have 1 and 0. At a = 0.350, the "
                                           "targets' median, a valence is off by 0.000\n"
                                           "Written: %1\nWritten: %2\n")
                                .arg(file("results/results.csv"), file("results/report.html")));
    const QByteArray table = results();
    QCOMPARE(
        table.left(table.indexOf('\n') + 1),
        QByteArray(
            "target,method,a,valence,t_ts,sbys,mean,ls_a,ls_b,ls_a_nb,ls_b_nb,vic2,"
            "edge_jump,edge_jump_noc,lcf_w1,lcf_w2,lcf_const,lcf_a,lcf_valence,"
            "lcf_r_factor,refusal,sigma_a,sigma_valence,sigma_t_ts,sigma_a_ref,sigma_valence_ref,"
            "sigma_t_ts_ref,valence_low,valence_high,lcf_sigma_a,lcf_sigma_valence,"
            "lcf_sigma_a_ref,lcf_chi2,noise,gain,closure_ref1,closure_ref2,"
            "dvalence_shift,dvalence_leak,shift,sigma_shift,warnings\r\n"));
    QCOMPARE(table.count("\r\n"), 4);
    QCOMPARE(table.count('\n'), 4);
    // Sorted by the bytes of the paths; what was mixed comes back.
    QVERIFY(table.indexOf("scans/10.dat") < table.indexOf("scans/35.dat"));
    for (const int percent : {10, 35, 80}) {
        const QByteArray name = "scans/" + QByteArray::number(percent) + ".dat";
        QVERIFY(std::abs(field(table, name, "a").toDouble() - percent / 100.0) < 1e-5);
        QVERIFY(std::abs(field(table, name, "valence").toDouble() - (3 - percent / 100.0)) < 1e-5);
        QVERIFY(std::abs(field(table, name, "lcf_a").toDouble() - percent / 100.0) < 5e-3);
        QCOMPARE(field(table, name, "method"), QByteArray("4ps2"));
    }
}

void tst_Targets::figuresAreThoseOfOneTarget_data()
{
    QTest::addColumn<QByteArray>("conditions");
    QTest::newRow("defaults") << QByteArray();
    QTest::newRow("exact") << QByteArray("[conditions]\nmethod = \"exact\"\n");
    QTest::newRow("victreen of the target")
        << QByteArray("[conditions]\ntarget_minus_victreen = true\nvictreen = \"pre\"\n");
}

// To six digits they are the window's, which a job of one target prints.
void tst_Targets::figuresAreThoseOfOneTarget()
{
    QFETCH(QByteArray, conditions);
    m_folder->writeJob(conditions);
    QCOMPARE(m_folder->run().status, 0);
    const QByteArray table = results();
    for (const char* name : {"scans/10.dat", "scans/35.dat", "scans/80.dat"}) {
        JobError error;
        const QByteArray text = "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = "
                                "\"blank.dat\"\ntarget = \"" +
                                QByteArray(name) + "\"\n" + BatchFolder::points + conditions;
        const auto job = parseJob(text, m_folder->path(), error);
        QVERIFY2(job, qPrintable(error.reason));
        const auto data = readJobData(*job, error);
        QVERIFY(data);
        const QString report = reportText(*job, runJob(*job, *data));
        const auto six = [&](const char* column) {
            return textFromNumber(field(table, name, column).toDouble());
        };
        QVERIFY(report.contains(QStringLiteral("a = %1, Valence = %2, t/ts = %3\n")
                                    .arg(six("a"), six("valence"), six("t_ts"))));
        QVERIFY(report.contains(
            QStringLiteral("sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, "
                           "Vic2 = %7\n")
                .arg(six("sbys"), six("mean"), six("ls_a"), six("ls_b"), six("ls_a_nb"),
                     six("ls_b_nb"), six("vic2"))));
        QVERIFY(report.contains(QStringLiteral("Result of LCF : %1 %2 %3\n")
                                    .arg(six("lcf_w1"), six("lcf_w2"), six("lcf_const"))));
        QVERIFY(report.contains(QStringLiteral("a : (1-a) = %1 : ").arg(six("lcf_a"))));
        QVERIFY(report.contains(QStringLiteral(",  Valence = %1\n").arg(six("lcf_valence"))));
        const AXafsData& target = *data->spectra[SpectrumSet::Target];
        QCOMPARE(field(table, name, "edge_jump").toDouble(), target.edgeJump());
        QCOMPARE(field(table, name, "edge_jump_noc").toDouble(), target.edgeJumpNoC());
    }
}

void tst_Targets::threadsChangeNothing()
{
    for (int i = 0; i < 60; ++i)
        QVERIFY(QFile::copy(file("scans/35.dat"),
                            m_folder->file(QStringLiteral("scans/copy%1.dat").arg(i))));
    m_folder->writeJob();
    QByteArray first;
    for (const char* threads : {"1", "2", "7"}) {
        QCOMPARE(m_folder
                     ->run({QStringLiteral("--again"), QStringLiteral("--jobs"),
                            QString::fromLatin1(threads), QStringLiteral("--quiet")})
                     .status,
                 0);
        if (first.isEmpty())
            first = results();
        QCOMPARE(results(), first);
    }
    QCOMPARE(first.count('\n'), 64);
    for (const char* wrong : {"0", "-1", "x", "100000"}) {
        const BatchOutput output =
            m_folder->run({QStringLiteral("--jobs"), QString::fromLatin1(wrong)});
        QCOMPARE(output.status, 2);
        QCOMPARE(output.errors, QStringLiteral("--jobs takes a number from 1 to 1024.\n"));
    }
}

void tst_Targets::aBadTargetStopsNoOther()
{
    m_folder->write("scans/20.dat", "no spectrum\n");
    m_folder->write("scans/30.dat", "Offset\n0 13 0 2 1\n");
    m_folder->writeJob();
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 1);
    const QByteArray table = results();
    QCOMPARE(table.count('\n'), 6);
    QCOMPARE(field(table, "scans/20.dat", "refusal"), QByteArray("no spectrum in scans/20.dat"));
    QCOMPARE(field(table, "scans/20.dat", "a"), QByteArray());
    QVERIFY(output.errors.contains(QStringLiteral("scans/20.dat: no spectrum in ")));
    // One point is a spectrum, of which nothing finite comes.
    QCOMPARE(field(table, "scans/30.dat", "refusal"), QByteArray());
    QVERIFY(output.errors.contains(
        QStringLiteral("scans/30.dat: warning: the result of the linear combination fit is no "
                       "finite number\n")));
    QVERIFY(!field(table, "scans/35.dat", "a").isEmpty());
}

void tst_Targets::rFactorIsWhatTheFitMisses()
{
    m_folder->writeJob();
    QCOMPARE(m_folder->run().status, 0);
    AXafsData ref1;
    AXafsData ref2;
    AXafsData target;
    for (auto& [spectrum, name] : {std::pair(&ref1, "ref1.dat"), std::pair(&ref2, "ref2.dat"),
                                   std::pair(&target, "scans/35.dat")}) {
        spectrum->setBounds(Settings().bounds());
        QVERIFY(spectrum->read(file(name)));
    }
    const QByteArray table = results();
    const auto number = [&](const char* column) {
        return field(table, "scans/35.dat", column).toDouble();
    };
    double missed = 0.0;
    double whole = 0.0;
    for (const SpectrumPoint& point : target.points) {
        if (point.energy < 8313.0 || point.energy > 8404.5)
            continue;
        const double y = target.normalizedAt(point.energy);
        const double fitted = number("lcf_w1") * ref1.normalizedAt(point.energy) +
                              number("lcf_w2") * ref2.normalizedAt(point.energy) +
                              number("lcf_const");
        missed += (y - fitted) * (y - fitted);
        whole += y * y;
    }
    QVERIFY(missed > 0.0);
    QVERIFY(std::abs(number("lcf_r_factor") / (missed / whole) - 1.0) < 1e-6);
}

void tst_Targets::listed()
{
    m_folder->writeJob({}, "\"scans/[38]*.dat\"");
    const QByteArray first = file("scans/35.dat").toUtf8();
    const QByteArray second = file("scans/80.dat").toUtf8();
    QCOMPARE(m_folder->run({QStringLiteral("--list")}).text, first + '\n' + second + '\n');
    QCOMPARE(m_folder->run({QStringLiteral("--list"), QStringLiteral("-0")}).text,
             first + '\0' + second + '\0');
    QVERIFY(!QFile::exists(file("results")));
}

void tst_Targets::checkWritesNothing()
{
    m_folder->writeJob();
    const BatchOutput output = m_folder->run({QStringLiteral("--check")});
    QCOMPARE(output.status, 0);
    QCOMPARE(output.errors, QString());
    QVERIFY(!QFile::exists(file("results")));
    m_folder->writeJob({}, "\"scans/*.csv\"");
    const BatchOutput bad = m_folder->run({QStringLiteral("--check")});
    QCOMPARE(bad.status, 2);
    QCOMPARE(bad.errors,
             QStringLiteral("job.toml:5:12: files.targets: no file is named, or matched by, %1\n")
                 .arg(file("scans/*.csv")));
}

void tst_Targets::nothingReadIsWritten()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
    QVERIFY(QFile::link(file("scans/35.dat"), file("results/results.csv")));
    const QByteArray before = contents(file("scans/35.dat"));
    m_folder->writeJob();
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(
        output.errors,
        QStringLiteral("job.toml:7:10: output.folder: %1 would be written over the target %2\n")
            .arg(file("results/results.csv"), file("scans/35.dat")));
    QCOMPARE(contents(file("scans/35.dat")), before);
}

void tst_Targets::folderThatCannotBe()
{
    m_folder->write("results", "a file");
    m_folder->writeJob();
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("job.toml:7:10: output.folder: the output folder is a file: %1\n")
                 .arg(file("results")));
    QCOMPARE(contents(file("results")), QByteArray("a file"));
}

QTEST_GUILESS_MAIN(tst_Targets)
#include "tst_Targets.moc"
