#include "batch/PreparedJob.h"
#include "batch/ResultTables.h"
#include "formats/MapFiles.h"
#include "formats/StackProcess.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QtTest>

#include <cmath>

/// Results for the programs of others, as others' readers find them.
class tst_TiffAndHdf5 : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void valuesAreThoseOfTheMap();
    void missingPixelsAreNotANumber();
    void fileOfTheRun();
    void threePointsHaveNoThickness();
    void pixelSizeIsTheResolution();
    void positionsOfTheirOwn();
    void sameBytesHoweverRun();
    void jobWithAnotherComment();
    void nothingUnlessAsked();
    void mapCalledTargets();
    void fullDisk_data();
    void fullDisk();
    void watchedRunHasNoFileOfAll();
    void inputIsNotWrittenOver();

private:
    QString file(const char* name) const { return m_folder->file(name); }
    /// @param keys  of [output]
    void writeJob(const QByteArray& more, const QByteArray& keys = "tiff = true\nhdf5 = true\n");

    std::unique_ptr<BatchFolder> m_folder;
};

namespace
{

/// What others' readers print of files: "PATH TYPE SHAPE" and "PATH@ATTRIBUTE" with their texts.
QMap<QString, QString> readBack(const QStringList& files)
{
    QProcess reader;
    reader.start(QStringLiteral(SOURCE_FOLDER "/tests/batch/read_outputs"), files);
    if (!reader.waitForFinished() || reader.exitCode() != 0)
        qFatal("%s", reader.readAllStandardError().constData());
    QMap<QString, QString> found;
    for (const QString& line :
         QString::fromUtf8(reader.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        const int colon = line.indexOf(QStringLiteral(": "));
        found[line.left(colon)] = line.mid(colon + 2);
    }
    return found;
}

std::vector<double> numbers(const QString& text)
{
    std::vector<double> found;
    for (const QString& word : text.split(QLatin1Char(' ')))
        found.push_back(word.toDouble());
    return found;
}

/// A column of the lines of a map's result file, which has six digits.
std::vector<double> column(const QString& path, int which)
{
    std::vector<double> found;
    for (const QByteArray& line : contents(path).split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() >= 5 && !line.startsWith('#'))
            found.push_back(words[which].toDouble());
    }
    return found;
}

bool areNear(const std::vector<double>& found, const std::vector<double>& expected)
{
    if (found.size() != expected.size())
        return false;
    for (std::size_t i = 0; i < found.size(); ++i)
        if (!(std::fabs(found[i] - expected[i]) <= 1e-5 * std::fabs(expected[i]) + 1e-9))
            return false;
    return true;
}

} // namespace

void tst_TiffAndHdf5::init()
{
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    m_folder = std::make_unique<BatchFolder>();
}

void tst_TiffAndHdf5::writeJob(const QByteArray& more, const QByteArray& keys)
{
    m_folder->writeJob(more);
    QByteArray job = contents(file("job.toml"));
    job.replace("folder = \"results\"\n", "folder = \"results\"\nreport = false\n" + keys);
    m_folder->write("job.toml", job);
}

void tst_TiffAndHdf5::valuesAreThoseOfTheMap()
{
    writeJob(m_folder->addMap("m"));
    QCOMPARE(m_folder->run().status, 0);
    const QString result = file("results/maps/m/m.dat");
    const auto found =
        readBack({file("results/maps/m/m.h5"), file("results/maps/m/m-a.tif"),
                  file("results/maps/m/m-valence.tif"), file("results/maps/m/m-t_ts.tif")});
    for (const auto& [name, which] :
         {std::pair("a", 2), std::pair("valence", 3), std::pair("t_ts", 4)}) {
        const QString group = QStringLiteral("/m/") + QLatin1String(name);
        const QString data = group + QLatin1Char('/') + QLatin1String(name);
        QVERIFY(areNear(numbers(found[data + QStringLiteral(" float64 (2, 3)")]),
                        column(result, which)));
        QCOMPARE(found[group + QStringLiteral("@NX_class")], QStringLiteral("NXdata"));
        QCOMPARE(found[group + QStringLiteral("@signal")], QLatin1String(name));
        QCOMPARE(found[group + QStringLiteral("@axes")], QStringLiteral("y x"));
        QCOMPARE(found[data + QStringLiteral("@units")], QStringLiteral("1"));
        QCOMPARE(found[group + QStringLiteral("/x float64 (3,)")], QStringLiteral("0.0 1.0 2.0"));
        QCOMPARE(found[group + QStringLiteral("/y float64 (2,)")], QStringLiteral("0.0 1.0"));
        const auto single =
            numbers(found[QStringLiteral("m-%1.tif float32 (2, 3)").arg(QLatin1String(name))]);
        const auto all = numbers(found[data + QStringLiteral(" float64 (2, 3)")]);
        QCOMPARE(single.size(), all.size());
        for (std::size_t i = 0; i < all.size(); ++i)
            QCOMPARE(single[i], static_cast<double>(static_cast<float>(all[i])));
        QVERIFY(!found.contains(QStringLiteral("m-%1.tif XResolution").arg(QLatin1String(name))));
    }
}

/// A scan that was stopped before its last pixel.
void tst_TiffAndHdf5::missingPixelsAreNotANumber()
{
    const QByteArray map = m_folder->addMap("m");
    QByteArray image = contents(file("images/m_4.txt"));
    image.chop(image.size() - image.lastIndexOf('\n', -2) - 1);
    m_folder->write("images/m_4.txt", image);
    writeJob(map);
    QCOMPARE(m_folder->run().status, 0);
    const auto found = readBack({file("results/results.h5"), file("results/maps/m/m-a.tif"),
                                 file("results/maps/m/m-valence.tif")});
    for (const char* const key : {"/m/a/a float64 (2, 3)", "/m/valence/valence float64 (2, 3)",
                                  "/m/t_ts/t_ts float64 (2, 3)", "m-a.tif float32 (2, 3)",
                                  "m-valence.tif float32 (2, 3)"}) {
        const auto values = numbers(found[QLatin1String(key)]);
        QCOMPARE(values.size(), std::size_t(6));
        for (std::size_t i = 0; i < values.size(); ++i)
            QCOMPARE(std::isnan(values[i]), i == 5);
    }
}

void tst_TiffAndHdf5::fileOfTheRun()
{
    m_folder->write("scans/bad.dat", "no spectrum\n");
    writeJob(m_folder->addMap("upper") + m_folder->addMap("lower"));
    QCOMPARE(m_folder->run().status, 1);
    const auto found = readBack({file("results/results.h5")});
    QCOMPARE(found[QStringLiteral("@NX_class")], QStringLiteral("NXroot"));
    QCOMPARE(found[QStringLiteral("@default")], QStringLiteral("upper"));
    QCOMPARE(found[QStringLiteral("/lower@NX_class")], QStringLiteral("NXentry"));
    QCOMPARE(found[QStringLiteral("/lower@default")], QStringLiteral("valence"));
    QCOMPARE(found[QStringLiteral("/lower/process@NX_class")], QStringLiteral("NXprocess"));
    QCOMPARE(found[QStringLiteral("/lower/process/program text ()")], QStringLiteral("drovik"));
    QProcess sums;
    sums.setWorkingDirectory(m_folder->path());
    sums.start(QStringLiteral("sha256sum"), {QStringLiteral("ref1.dat")});
    QVERIFY(sums.waitForFinished());
    QCOMPARE(found[QStringLiteral("/lower/process/inputs text ()")],
             QString::fromUtf8(sums.readAllStandardOutput()).trimmed());
    QCOMPARE(found[QStringLiteral("/lower/process/job text ()")], QStringLiteral("[files]"));
    // The table has what results.csv has, in its order.
    QCOMPARE(found[QStringLiteral("/targets/target text (4,)")],
             QStringLiteral("scans/10.dat scans/35.dat scans/80.dat scans/bad.dat"));
    const QList<QByteArray> lines = m_folder->results().trimmed().split('\n');
    const QByteArrayList columns = lines.first().trimmed().split(',');
    for (const char* const name : {"a", "valence", "t_ts", "lcf_a", "sigma_a", "valence_low"}) {
        const auto values =
            numbers(found[QStringLiteral("/targets/%1 float64 (4,)").arg(QLatin1String(name))]);
        QCOMPARE(values.size(), std::size_t(4));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(values[static_cast<std::size_t>(i)],
                     lines[i + 1].split(',')[columns.indexOf(name)].toDouble());
        QVERIFY(std::isnan(values[3]));
    }
    for (const auto& [errors, sigma] :
         {std::pair("a_errors", "sigma_a"), std::pair("valence_errors", "sigma_valence"),
          std::pair("lcf_a_errors", "lcf_sigma_a")}) {
        const QString key = QStringLiteral("/targets/%1 float64 (4,)");
        QVERIFY(found.contains(key.arg(QLatin1String(errors))));
        QCOMPARE(found[key.arg(QLatin1String(errors))], found[key.arg(QLatin1String(sigma))]);
    }
    QVERIFY(found[QStringLiteral("/targets/refusal text (4,)")].contains(
        QStringLiteral("no spectrum")));
}

void tst_TiffAndHdf5::threePointsHaveNoThickness()
{
    writeJob(m_folder->addMap("m"));
    QByteArray job = contents(file("job.toml"));
    job.replace("energy = 8404.5\n", "energy = 8404.5\nuse = false\n");
    m_folder->write("job.toml", job);
    QCOMPARE(m_folder->run().status, 0);
    QVERIFY(QFile::exists(file("results/maps/m/m-valence.tif")));
    QVERIFY(!QFile::exists(file("results/maps/m/m-t_ts.tif")));
    const auto found = readBack({file("results/results.h5")});
    QVERIFY(found.contains(QStringLiteral("/m/valence@signal")));
    QVERIFY(!found.contains(QStringLiteral("/m/t_ts@signal")));
}

void tst_TiffAndHdf5::pixelSizeIsTheResolution()
{
    const auto positions = std::make_shared<MapPositions>();
    QVERIFY(positions->resize(2));
    (*positions)[0] = {0.0, 0.0};
    (*positions)[1] = {0.5, 0.0};
    ResultImages map{"m", 2, 1, positions, 0.5, 0.25, {}};
    map.images.push_back({"valence", "valence", [](std::size_t i) { return 0.1 + double(i); },
                          [](std::size_t i) { return 0.01 * double(i + 1); }});
    QVERIFY(writeTiff(file("m.tif"), map, map.images.front()) == WriteOutcome::Written);
    QVERIFY(writeHdf5(file("m.h5"), map) == WriteOutcome::Written);
    const auto found = readBack({file("m.tif"), file("m.h5")});
    QCOMPARE(found[QStringLiteral("m.tif ResolutionUnit")], QStringLiteral("3")); // a centimetre
    QCOMPARE(found[QStringLiteral("m.tif XResolution")], QStringLiteral("(20000, 1)"));
    QCOMPARE(found[QStringLiteral("m.tif YResolution")], QStringLiteral("(40000, 1)"));
    QCOMPARE(found[QStringLiteral("m.tif ImageDescription")], QStringLiteral("valence"));
    QCOMPARE(found[QStringLiteral("/m/pixel_size float64 (2,)")], QStringLiteral("0.5 0.25"));
    QCOMPARE(found[QStringLiteral("/m/pixel_size@units")], QStringLiteral("um"));
    QCOMPARE(found[QStringLiteral("/m/valence/x@units")], QStringLiteral("um"));
    QCOMPARE(found[QStringLiteral("/m/valence/valence float64 (1, 2)")], QStringLiteral("0.1 1.1"));
    QCOMPARE(found[QStringLiteral("/m/valence/valence_errors float64 (1, 2)")],
             QStringLiteral("0.01 0.02"));
}

/// A stage that went astray, and a scan of which the last row is missing.
void tst_TiffAndHdf5::positionsOfTheirOwn()
{
    const auto positions = std::make_shared<MapPositions>();
    QVERIFY(positions->resize(4));
    for (std::size_t i = 0; i < 4; ++i)
        (*positions)[i] = {double(i % 2), 5.0 - 2.0 * double(i / 2)};
    ResultImages map{"m", 2, 3, positions, 0.0, 0.0, {}};
    const auto axes = axesOf(map);
    QVERIFY(axes);
    QCOMPARE(axes->x, (std::vector<double>{0, 1}));
    QCOMPARE(axes->y, (std::vector<double>{5, 3, 1}));
    (*positions)[3].first = 1.25;
    QVERIFY(!axesOf(map));
    map.images.push_back({"a", "a", [](std::size_t) { return 1.0; }});
    QVERIFY(writeHdf5(file("m.h5"), map) == WriteOutcome::Written);
    const auto found = readBack({file("m.h5")});
    QCOMPARE(found[QStringLiteral("/m/a/x float64 (3, 2)")],
             QStringLiteral("0.0 1.0 0.0 1.25 nan nan"));
    QCOMPARE(found[QStringLiteral("/m/a/y float64 (3, 2)")],
             QStringLiteral("5.0 5.0 3.0 3.0 nan nan"));
    QCOMPARE(found[QStringLiteral("/m/a@x_indices")], QStringLiteral("0 1"));
    // All at one place, or at none.
    for (std::size_t i = 0; i < 4; ++i)
        (*positions)[i] = {1.0, 1.0};
    QVERIFY(!axesOf(map));
    (*positions)[0].first = std::nan("");
    QVERIFY(!axesOf(map));
    map.positions = nullptr;
    QVERIFY(!axesOf(map));
}

void tst_TiffAndHdf5::sameBytesHoweverRun()
{
    writeJob(m_folder->addMap("upper") + m_folder->addMap("lower"));
    QCOMPARE(m_folder->run({QStringLiteral("--jobs"), QStringLiteral("1")}).status, 0);
    const QMap<QString, QByteArray> expected = m_folder->resultFiles();
    QVERIFY(expected.contains(QStringLiteral("results.h5")));
    QVERIFY(expected.contains(QStringLiteral("maps/upper/upper.h5")));
    QVERIFY(expected.contains(QStringLiteral("maps/lower/lower-t_ts.tif")));
    QCOMPARE(
        m_folder->run({QStringLiteral("--again"), QStringLiteral("--jobs"), QStringLiteral("3")})
            .status,
        0);
    QCOMPARE(m_folder->resultFiles(), expected);
    // What is missing is made again.
    QVERIFY(QFile::remove(file("results/results.h5")));
    QVERIFY(QFile::remove(file("results/maps/lower/lower.h5")));
    QVERIFY(QFile::remove(file("results/maps/upper/upper-a.tif")));
    QCOMPARE(m_folder->run().status, 0);
    QCOMPARE(m_folder->resultFiles(), expected);
    QDir(file("results")).removeRecursively();
    for (const char* const shard : {"2/2", "1/2"}) {
        QCOMPARE(m_folder->run({QStringLiteral("--shard"), QLatin1String(shard)}).status, 0);
        QVERIFY(!QFile::exists(file("results/results.h5")));
    }
    QCOMPARE(m_folder->run({QStringLiteral("--merge")}).status, 0);
    QCOMPARE(m_folder->resultFiles(), expected);
    const BatchOutput replay =
        m_folder->runPlainly({QStringLiteral("--replay"), QStringLiteral("results/run.sqlite")});
    QCOMPARE(replay.status, 0);
    QCOMPARE(replay.text.count(": the same\n"), 5);
}

/// The maps are not calculated again, and yet the file has the job as it is now.
void tst_TiffAndHdf5::jobWithAnotherComment()
{
    writeJob(m_folder->addMap("m"));
    QCOMPARE(m_folder->run().status, 0);
    m_folder->write("job.toml", "# another\n" + contents(file("job.toml")));
    const BatchOutput second = m_folder->run({QStringLiteral("--verbose")});
    QVERIFY(second.errors.contains(QStringLiteral("m: there already\n")));
    const QMap<QString, QByteArray> resumed = m_folder->resultFiles();
    QDir(file("results")).removeRecursively();
    QCOMPARE(m_folder->run().status, 0);
    QCOMPARE(m_folder->resultFiles(), resumed);
}

void tst_TiffAndHdf5::nothingUnlessAsked()
{
    writeJob(m_folder->addMap("m"), {});
    QCOMPARE(m_folder->run().status, 0);
    for (const QString& name : m_folder->resultFiles().keys())
        QVERIFY2(!name.endsWith(QStringLiteral(".tif")) && !name.endsWith(QStringLiteral(".h5")),
                 qPrintable(name));
}

void tst_TiffAndHdf5::mapCalledTargets()
{
    writeJob(m_folder->addMap("targets"));
    QCOMPARE(m_folder->run().status, 0);
    const auto found = readBack({file("results/results.h5")});
    QCOMPARE(found[QStringLiteral("/targets@NX_class")], QStringLiteral("NXentry"));
    QCOMPARE(found[QStringLiteral("/targets_@NX_class")], QStringLiteral("NXcollection"));
}

void tst_TiffAndHdf5::fullDisk_data()
{
    QTest::addColumn<int>("limit"); ///< bytes of a file
    QTest::addColumn<QString>("failed");
    // Of 100 x 100 numbers an image in single precision, three in double with as many deviations,
    // and twice these.
    QTest::newRow("TIFF") << 38000 << "Can't write the file [%1/maps/wide1/wide1-valence.tif]";
    QTest::newRow("HDF5 of a map") << 200000 << "Can't write the file [%1/maps/wide1/wide1.h5]";
    QTest::newRow("HDF5 of the run") << 700000 << "cannot write %1/results.h5";
}

void tst_TiffAndHdf5::fullDisk()
{
    QFETCH(int, limit);
    QFETCH(QString, failed);
    QByteArray maps;
    for (const char* const name : {"wide1", "wide2"}) {
        maps += m_folder->addMap(name);
        for (int row = 1; row <= 4; ++row) {
            QByteArray text = "# AXIS 0 a b c d 100\n# AXIS 1 a b c d 100\n";
            for (int i = 0; i < 10000; ++i)
                text += QByteArray::number(i % 100) + ' ' + QByteArray::number(i / 100) + ' ' +
                        QByteArray::number(900 - 90 * row - i % 7 * row) + " 1000\n";
            m_folder->write(QStringLiteral("images/%1_%2.txt")
                                .arg(QLatin1String(name))
                                .arg(row)
                                .toUtf8()
                                .constData(),
                            text);
        }
    }
    // The record must fit below the limits.
    writeJob(maps, "map_files = false\ntiff = true\nhdf5 = true\n");
    QByteArray job = contents(file("job.toml"));
    job.replace("targets = [\"scans/*.dat\"]\n", "");
    m_folder->write("job.toml", job);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
    m_folder->write("results/results.h5", "earlier");
    QProcess process;
    m_folder->start(process,
                    {QStringLiteral("--fsize=%1").arg(limit), QStringLiteral(BATCH_PROGRAM),
                     QStringLiteral("--quiet"), QStringLiteral("job.toml")},
                    QStringLiteral("prlimit"));
    const BatchOutput output = BatchFolder::outputOf(process);
    QCOMPARE(output.status, 3);
    // Lines of the calculation go before.
    QCOMPARE(output.errors.trimmed().section(QLatin1Char('\n'), -1),
             failed.arg(m_folder->file("results")));
    QCOMPARE(output.errors.count(QStringLiteral(" write ")), 1);
    QCOMPARE(contents(file("results/results.h5")), QByteArray("earlier"));
    for (const QString& name : m_folder->resultFiles().keys())
        QVERIFY2(!name.contains(QStringLiteral(".drovik-")), qPrintable(name));
    QCOMPARE(m_folder->run().status, 0);
    QVERIFY(contents(file("results/results.h5")).size() > 700000);
}

/// It would be copied whole after every few files.
void tst_TiffAndHdf5::watchedRunHasNoFileOfAll()
{
    writeJob(m_folder->addMap("m"));
    QCOMPARE(m_folder->run().status, 0);
    const QMap<QString, QByteArray> expected = m_folder->resultFiles();
    QVERIFY(QFile::remove(file("results/results.h5")));
    JobError error;
    const QByteArray text = contents(file("job.toml"));
    const auto job = readJob(file("job.toml"), error);
    auto prepared = prepareJob(file("job.toml"), text, *job, {}, error);
    QVERIFY(prepared);
    RunRecord record(file("results/run.sqlite"), RunRecord::Access::Write);
    prepared->isWatched = true;
    QCOMPARE(writeResults(record, *prepared).failed, QString());
    QVERIFY(!QFile::exists(file("results/results.h5")));
    prepared->isWatched = false;
    QCOMPARE(writeResults(record, *prepared).failed, QString());
    QCOMPARE(m_folder->resultFiles(), expected);
}

void tst_TiffAndHdf5::inputIsNotWrittenOver()
{
    writeJob(m_folder->addMap("m"));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("results")));
    QVERIFY(QFile::link(file("ref1.dat"), file("results/results.h5")));
    const QByteArray before = contents(file("ref1.dat"));
    const BatchOutput output = m_folder->run();
    QCOMPARE(output.status, 2);
    QCOMPARE(output.errors,
             QStringLiteral("job.toml:7:10: output.folder: %1 would be written over ref1\n")
                 .arg(file("results/results.h5")));
    QCOMPARE(contents(file("ref1.dat")), before);
}

QTEST_GUILESS_MAIN(tst_TiffAndHdf5)
#include "tst_TiffAndHdf5.moc"
