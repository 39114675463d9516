#include "jobs/JobFile.h"
#include "jobs/JobSettings.h"

#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <sys/stat.h>

namespace
{

Job parsed(const QByteArray& text)
{
    JobError error;
    const std::optional<Job> job = parseJob(text, QStringLiteral("/data"), error);
    if (!job)
        qFatal("%s", qPrintable(errorText(QStringLiteral("job"), error)));
    return *job;
}

} // namespace

class tst_JobFile : public QObject
{
    Q_OBJECT
private slots:
    void emptyJobKeepsTheForm();
    void everySettingIsTaken();
    void conditionsByTheirWords_data();
    void conditionsByTheirWords();
    void numbersKeepTheirDigits_data();
    void numbersKeepTheirDigits();
    void pathsAreRelativeToTheFolder();
    void aByteOrderMarkIsPartOfAName();
    void calculationsAreChosen();
    void errorsHaveLineAndReason_data();
    void errorsHaveLineAndReason();
    void mapsAreTaken();
    void outputAndHistogramsAreTaken();
    void stackTargetsAreTaken();
    void nonsenseOfStackTargetsIsRefused_data();
    void nonsenseOfStackTargetsIsRefused();
    void nonsenseOfMapsIsRefused_data();
    void nonsenseOfMapsIsRefused();
    void namesThatTheLocaleCannotWrite();
    void spectraOfColumns();
    void nonsenseOfSpectraIsRefused_data();
    void nonsenseOfSpectraIsRefused();
    void stacks();
    void mapsFitTheirJob_data();
    void mapsFitTheirJob();
    void errorTextTakesNamesAsTheyAre();
    void syntaxErrorsHaveALine();
    void unreadableJobs();
};

void tst_JobFile::emptyJobKeepsTheForm()
{
    const Job job = parsed("# nothing\n");
    for (const JobFilePath& spectrum : job.spectra)
        QVERIFY(spectrum.path.isEmpty());
    for (const QString& text :
         {job.edge, job.preEdgeEnd, job.postEdgeStart, job.valence1, job.valence2})
        QVERIFY(text.isEmpty());
    QVERIFY(!job.points);
    QVERIFY(!job.thickness);
    QVERIFY(!job.referencesMinusVictreen);
    QVERIFY(!job.targetMinusVictreen);
    QVERIFY(!job.victreenIsPre);
    QVERIFY(!job.exactMethod);
    QVERIFY(job.calculateTarget);
    QVERIFY(job.calculateLcf);
}

void tst_JobFile::everySettingIsTaken()
{
    const Job job = parsed("[files]\n"
                           "ref1 = \"a.dat\"\n"
                           "ref2 = \"/other/b.dat\"\n"
                           "target = \"sub/c.dat\"\n"
                           "blank = \"../d.dat\"\n"
                           "[edge]\n"
                           "energy = 7120\n"
                           "pre_edge_end = -30\n"
                           "post_edge_start = 100.5\n"
                           "[valences]\n"
                           "ref1 = 2\n"
                           "ref2 = 2.5\n"
                           "[[point]]\n"
                           "energy = 7090\n"
                           "t_ratio = true\n"
                           "[[point]]\n"
                           "energy = 7130.2\n"
                           "use = false\n"
                           "v_point = true\n"
                           "[conditions]\n"
                           "thickness = \"mean\"\n"
                           "references_minus_victreen = false\n"
                           "target_minus_victreen = true\n"
                           "victreen = \"pre\"\n"
                           "method = \"exact\"\n");
    QCOMPARE(job.spectra[SpectrumSet::Ref1].path, QStringLiteral("/data/a.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Ref1].place.line, 2);
    QCOMPARE(job.spectra[SpectrumSet::Ref2].path, QStringLiteral("/other/b.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Target].path, QStringLiteral("/data/sub/c.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Blank].path, QStringLiteral("/data/../d.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Blank].place.line, 5);
    QCOMPARE(job.edge, QStringLiteral("7120"));
    QCOMPARE(job.preEdgeEnd, QStringLiteral("-30"));
    QCOMPARE(job.postEdgeStart, QStringLiteral("100.5"));
    QCOMPARE(job.edgePlace.line, 7);
    QCOMPARE(job.preEdgeEndPlace.line, 8);
    QCOMPARE(job.postEdgeStartPlace.line, 9);
    QCOMPARE(job.valence1, QStringLiteral("2"));
    QCOMPARE(job.valence2, QStringLiteral("2.5"));
    QVERIFY(job.points);
    QCOMPARE(job.points->size(), std::size_t(2));
    const JobPoint& first = job.points->at(0);
    QCOMPARE(first.energy, QStringLiteral("7090"));
    QCOMPARE(first.place.line, 14);
    QVERIFY(first.use && first.tRatio && !first.vPoint);
    const JobPoint& second = job.points->at(1);
    QCOMPARE(second.energy, QStringLiteral("7130.2"));
    QCOMPARE(second.place.line, 17);
    QVERIFY(!second.use && !second.tRatio && second.vPoint);
    QCOMPARE(job.thickness, std::optional(ThicknessType::Mean));
    QCOMPARE(job.referencesMinusVictreen, std::optional(false));
    QCOMPARE(job.targetMinusVictreen, std::optional(true));
    QCOMPARE(job.victreenIsPre, std::optional(true));
    QCOMPARE(job.exactMethod, std::optional(true));
}

void tst_JobFile::conditionsByTheirWords_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<int>("type");
    const auto row = [](const char* word, ThicknessType type) {
        QTest::newRow(word) << QByteArray(word) << static_cast<int>(type);
    };
    row("sum-by-sum", ThicknessType::SumBySum);
    row("mean", ThicknessType::Mean);
    row("least-squares", ThicknessType::LeastSquares);
    row("least-squares-no-blank", ThicknessType::LeastSquaresNoBlank);
    row("victreen", ThicknessType::EdgeJumps);
}

void tst_JobFile::conditionsByTheirWords()
{
    QFETCH(QByteArray, word);
    QFETCH(int, type);
    const Job job = parsed("[conditions]\nthickness = \"" + word +
                           "\"\nvictreen = \"post\"\nmethod = \"least-squares\"\n");
    QCOMPARE(static_cast<int>(job.thickness.value()), type);
    QCOMPARE(job.victreenIsPre, std::optional(false));
    QCOMPARE(job.exactMethod, std::optional(false));
}

void tst_JobFile::numbersKeepTheirDigits_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << QByteArray("8350") << QStringLiteral("8350");
    QTest::newRow("signed") << QByteArray("+8350") << QStringLiteral("8350");
    QTest::newRow("more than six digits")
        << QByteArray("8350.12345") << QStringLiteral("8350.12345");
    QTest::newRow("not exact in binary") << QByteArray("0.1") << QStringLiteral("0.1");
    QTest::newRow("sixteen digits")
        << QByteArray("1.234567890123456") << QStringLiteral("1.234567890123456");
    QTest::newRow("small") << QByteArray("0.0000001") << QStringLiteral("1e-07");
    QTest::newRow("exponent") << QByteArray("8.35e3") << QStringLiteral("8350");
    QTest::newRow("underscores") << QByteArray("8_350") << QStringLiteral("8350");
}

void tst_JobFile::numbersKeepTheirDigits()
{
    QFETCH(QByteArray, number);
    QFETCH(QString, text);
    QCOMPARE(parsed("edge.energy = " + number).edge, text);
}

void tst_JobFile::pathsAreRelativeToTheFolder()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("sub")));
    const QString path = dir.filePath(QStringLiteral("sub/job.toml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[files]\nref1 = \"酸化 100%1.dat\"\n");
    file.close();
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    QVERIFY(job);
    QCOMPARE(job->spectra[SpectrumSet::Ref1].path,
             dir.filePath(QStringLiteral("sub/")) + QStringLiteral("酸化 100%1.dat"));
}

void tst_JobFile::aByteOrderMarkIsPartOfAName()
{
    const Job job = parsed("[files]\nref1 = \"\xEF\xBB\xBFref1.dat\"\n");
    QCOMPARE(job.spectra[SpectrumSet::Ref1].path,
             QStringLiteral("/data/") + QChar(0xFEFF) + QStringLiteral("ref1.dat"));
    JobError error;
    QVERIFY(!parseJob("calculate = [\"\xEF\xBB\xBFlcf\"]", QStringLiteral("/data"), error));
    QCOMPARE(error.reason, QStringLiteral("must be a list of \"target\", \"lcf\", \"map\""));
}

void tst_JobFile::calculationsAreChosen()
{
    const Job target = parsed("calculate = [\"target\"]");
    QVERIFY(target.calculateTarget && !target.calculateLcf);
    const Job lcf = parsed("calculate = [\"lcf\"]");
    QVERIFY(!lcf.calculateTarget && lcf.calculateLcf);
    const Job both = parsed(R"(calculate = ["lcf", "target"])");
    QVERIFY(both.calculateTarget && both.calculateLcf && !both.calculateMap);
    const Job map = parsed(R"(calculate = ["map"])");
    QVERIFY(!map.calculateTarget && !map.calculateLcf && map.calculateMap);
}

void tst_JobFile::errorsHaveLineAndReason_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* text, const char* expected) {
        QTest::newRow(name) << QByteArray(text) << QString::fromUtf8(expected);
    };
    row("unknown key", "\nedges = 1\n",
        "job:2:1: edges: unknown key, did you mean edge; known are: files, edge, valences, point, "
        "conditions, alignment, noise, systematics, rank, target, map, histogram, output, "
        "calculate");
    row("unknown key in a table", "[edge]\nenergy = 1\n  start = 2\n",
        "job:3:3: edge.start: unknown key; known are: energy, pre_edge_end, post_edge_start");
    row("unknown key in a point", "[[point]]\nenergy = 1\nv_point = true\nblank = 2\n",
        "job:4:1: point.blank: unknown key; known are: energy, use, t_ratio, v_point, map");
    row("unknown key of several lines", "\"a\\nb\\u2028c\" = 1\n",
        "job:1:1: a\uFFFDb\uFFFDc: unknown key; known are: files, edge, valences, point, "
        "conditions, alignment, noise, systematics, rank, target, map, histogram, output, "
        "calculate");
    row("the first of several errors", "[files]\nref3 = 1\n[edge]\nenergy = \"x\"\n",
        "job:2:1: files.ref3: unknown key, did you mean ref1; known are: ref1, ref2, target, "
        "targets, blank, map_result");
    row("the first of two, visited last", "[valences]\nref9 = 1\n[edge]\nstart = 2\n",
        "job:2:1: valences.ref9: unknown key, did you mean ref1; known are: ref1, ref2");
    row("the first of two in a line", "edge = {start = 1, energy = \"x\"}\n",
        "job:1:9: edge.start: unknown key; known are: energy, pre_edge_end, post_edge_start");
    row("target and targets",
        "[files]\ntarget = \"a\"\ntargets = [\"b\"]\n[output]\nfolder = \"c\"\n",
        "job:3:12: files.targets: target and targets exclude one another");
    row("targets without a folder", "[files]\ntargets = [\"b\"]\n",
        "job:2:12: files.targets: targets need a folder for their results: [output] folder");
    row("a folder without anything in it", "[output]\nfolder = \"c\"\n",
        "job:2:10: output.folder: is for the results of targets and of [[map]]; there are none");
    row("output without a folder", "[files]\ntarget = \"b\"\n[output]\nreport = true\n",
        "job:3:1: output: [output] needs a folder");
    row("a map with targets",
        "calculate = [\"map\"]\n[files]\ntargets = [\"b\"]\n[output]\nfolder = \"c\"\n",
        "job:1:14: calculate: the maps of a job with [output] folder are [[map]]");
    row("a map's result with targets",
        "[files]\ntargets = [\"b\"]\nmap_result = \"m\"\n[output]\nfolder = \"c\"\n",
        "job:3:14: files.map_result: the result of a [[map]] goes into [output] folder");
    row("no list of targets", "[files]\ntargets = \"b\"\n",
        "job:2:11: files.targets: must be a list of names and patterns of files, each in "
        "quotation marks");
    row("empty list of targets", "[files]\ntargets = []\n",
        "job:2:11: files.targets: must be a list of names and patterns of files, each in "
        "quotation marks");
    row("a number among targets", "[files]\ntargets = [\"b\",\n3]\n[output]\nfolder = \"c\"\n",
        "job:3:1: files.targets: must be a list of names and patterns of files, each in "
        "quotation marks");
    row("an empty name among targets", "[files]\ntargets = [\"b\", \"\"]\n",
        "job:2:17: files.targets: must be a list of names and patterns of files, each in "
        "quotation marks");
    row("no table", "files = 3\n", "job:1:9: files: must be a table: [files]");
    row("text for a number", "[edge]\nenergy = \"8350\"\n",
        "job:2:10: edge.energy: must be a finite number");
    row("not a number", "[edge]\nenergy = nan\n", "job:2:10: edge.energy: must be a finite number");
    row("infinite", "[valences]\nref2 = -inf\n", "job:2:8: valences.ref2: must be a finite number");
    row("truth for a number", "[edge]\nenergy = true\n",
        "job:2:10: edge.energy: must be a finite number");
    row("number for a path", "[files]\nblank = 3\n",
        "job:2:9: files.blank: must be the path of a file, in quotation marks");
    row("empty path", "[files]\nblank = \"\"\n",
        "job:2:9: files.blank: must be the path of a file, in quotation marks");
    row("number for a flag", "[conditions]\ntarget_minus_victreen = 1\n",
        "job:2:25: conditions.target_minus_victreen: must be true or false");
    row("text for a flag in a point", "[[point]]\nenergy = 1\nv_point = \"yes\"\n",
        "job:3:11: point.v_point: must be true or false");
    row("thickness", "[conditions]\nthickness = \"vic2\"\n",
        "job:2:13: conditions.thickness: must be one of \"sum-by-sum\", \"mean\", "
        "\"least-squares\", \"least-squares-no-blank\", \"victreen\"");
    row("victreen", "[conditions]\nvictreen = 1\n",
        R"(job:2:12: conditions.victreen: must be one of "pre", "post")");
    row("method", "[conditions]\nmethod = \"Exact\"\n",
        R"(job:2:10: conditions.method: must be one of "exact", "least-squares")");
    row("point that is no table", "point = [1]\n", "job:1:9: point: must be tables: [[point]]");
    row("no points", "point = []\n", "job:1:9: point: must be tables: [[point]]");
    row("one point, not a list", "[point]\nenergy = 1\n",
        "job:1:1: point: must be tables: [[point]]");
    row("point without energy", "[[point]]\nenergy = 1\nv_point = true\n\n[[point]]\nuse = true\n",
        "job:5:1: point: a [[point]] needs an energy");
    row("no V point", "\n[[point]]\nenergy = 1\n",
        "job:2:1: point: one [[point]] needs v_point = true");
    row("two V points",
        "[[point]]\nenergy = 1\nv_point = true\n[[point]]\nenergy = 2\nv_point = true\n",
        "job:4:1: point: only one [[point]] can have v_point = true");
    row("calculate that is no list", "calculate = \"target\"\n",
        R"(job:1:13: calculate: must be a list of "target", "lcf", "map")");
    row("calculate nothing", "calculate = []\n",
        R"(job:1:13: calculate: must be a list of "target", "lcf", "map")");
    row("calculate something else", "calculate = [\n\"lcf\",\n\"maps\"]\n",
        R"(job:3:1: calculate: must be a list of "target", "lcf", "map")");
    QByteArray nine = "[[point]]\nenergy = 1\nv_point = true\n";
    for (int i = 0; i < 8; ++i)
        nine += "[[point]]\nenergy = 2\n";
    QTest::newRow("nine points") << nine
                                 << QStringLiteral(
                                        "job:18:1: point: there are more than 8 [[point]] tables");
}

void tst_JobFile::mapsAreTaken()
{
    const Job job = parsed("[files]\n"
                           "ref1 = \"a\"\n"
                           "[[point]]\n"
                           "energy = 7090.00\n"
                           "v_point = true\n"
                           "[[point]]\n"
                           "energy = 0x2000\n"
                           "[[map]]\n"
                           "name = \"鉄 1\"\n"
                           "images = [\"m1.txt\", \"\"]\n"
                           "[[map]]\n"
                           "name = \"area 2\"\n"
                           "pattern = \"area2_{row}_{energy}.txt\"\n"
                           "[output]\n"
                           "folder = \"results\"\n");
    QCOMPARE(job.maps.size(), std::size_t(2));
    const JobMap& first = job.maps[0];
    QCOMPARE(first.name, QStringLiteral("鉄 1"));
    QCOMPARE(first.place.line, 9);
    QCOMPARE(first.place.column, 8);
    QCOMPARE(first.place.key, QStringLiteral("map.name"));
    QCOMPARE(first.images.size(), std::size_t(2));
    QCOMPARE(first.images[0].path, QStringLiteral("/data/m1.txt"));
    QCOMPARE(first.images[0].place.column, 11);
    QCOMPARE(first.images[1].path, QString());
    QCOMPARE(first.pattern.path, QString());
    QVERIFY(job.maps[1].images.empty());
    QCOMPARE(job.maps[1].pattern.path, QStringLiteral("area2_{row}_{energy}.txt"));
    // The text of an energy is as it was typed, where it is decimal.
    QCOMPARE(job.points->at(0).energy, QStringLiteral("7090"));
    QCOMPARE(job.points->at(0).energyText, QStringLiteral("7090.00"));
    QCOMPARE(job.points->at(1).energyText, QStringLiteral("8192"));
    const Job inOneLine = parsed("point = [{v_point = true, energy = 7_090}, {energy = 7124.50}]");
    QCOMPARE(inOneLine.points->at(0).energyText, QStringLiteral("7090"));
    QCOMPARE(inOneLine.points->at(1).energyText, QStringLiteral("7124.50"));
    QCOMPARE(job.output.path, QStringLiteral("/data/results"));
    QVERIFY(!job.pictures && job.report && job.mapFiles);
    QVERIFY(!job.tiff && !job.hdf5);
    QVERIFY(job.paints()); // the maps, for the report
    QVERIFY(job.language == Language::English);
}

void tst_JobFile::outputAndHistogramsAreTaken()
{
    const Job job = parsed("[files]\n"
                           "target = \"odd[1].dat\"\n"
                           "[histogram]\n"
                           "valence = {from = 2, to = 3.5, boxes = 16}\n"
                           "thickness = {boxes = 2}\n"
                           "[output]\n"
                           "folder = \"results\"\n"
                           "pictures = true\n"
                           "report = false\n"
                           "map_files = false\n"
                           "tiff = true\n"
                           "hdf5 = true\n"
                           "language = \"ja\"\n");
    QCOMPARE(job.valenceHistogram.from, QStringLiteral("2"));
    QCOMPARE(job.valenceHistogram.to, QStringLiteral("3.5"));
    QCOMPARE(job.valenceHistogram.boxes, QStringLiteral("16"));
    QCOMPARE(job.thicknessHistogram.from, QString());
    const Settings settings = settingsOf(job);
    QCOMPARE(settings.valenceHistogram.first, 2.0);
    QCOMPARE(settings.valenceHistogram.last, 3.5);
    QCOMPARE(settings.valenceHistogram.boxes, 16.0);
    QCOMPARE(settings.thicknessHistogram.first, -0.2); // as the form has it
    QCOMPARE(settings.thicknessHistogram.last, 1.2);
    QCOMPARE(settings.thicknessHistogram.boxes, 2.0);
    QVERIFY(job.pictures && !job.report && !job.mapFiles);
    QVERIFY(job.tiff && job.hdf5);
    QVERIFY(job.language == Language::Japanese);
    // One target with a folder is a list of one.
    QCOMPARE(job.spectra[SpectrumSet::Target].path, QString());
    QCOMPARE(job.targets.size(), std::size_t(1));
    QCOMPARE(job.targets[0].path, QStringLiteral("/data/odd\\[1].dat"));
    QCOMPARE(job.targets[0].place.key, QStringLiteral("files.target"));
}

void tst_JobFile::stackTargetsAreTaken()
{
    const Job job = parsed("[[target]]\n"
                           "name = \"grain 1\"\n"
                           "stack = \"scan.h5\"\n"
                           "values = \"counts\"\n"
                           "dark = 7\n"
                           "shift = 0.5\n"
                           "region = { x = 1, y = 2, width = 3, height = 4 }\n"
                           "[[target]]\n"
                           "name = \"鉄.1\"\n"
                           "stack = \"scan.h5\"\n"
                           "[output]\n"
                           "folder = \"out\"\n");
    QVERIFY(job.targets.empty() && job.hasTargets());
    QCOMPARE(job.stackTargets.size(), std::size_t(2));
    const JobStackTarget& first = job.stackTargets[0];
    QCOMPARE(first.name, QStringLiteral("grain 1"));
    QCOMPARE(first.place.line, 2);
    QCOMPARE(first.place.key, QStringLiteral("target.name"));
    QCOMPARE(first.stack.place.line, 3);
    QCOMPARE(first.stack.source.path, QStringLiteral("/data/scan.h5"));
    QVERIFY(first.stack.source.values == StackValues::Counts);
    QCOMPARE(*first.stack.source.darkLevel, 7.0);
    QCOMPARE(first.stack.source.shift, 0.5);
    QCOMPARE(first.stack.region.height, 4);
    QCOMPARE(first.stack.regionPlace.line, 7);
    QCOMPARE(first.stack.regionPlace.column, 10);
    QCOMPARE(first.stack.regionPlace.key, QStringLiteral("target.region"));
    QCOMPARE(job.stackTargets[1].name, QStringLiteral("鉄.1"));
    QCOMPARE(job.stackTargets[1].stack.region.width, 0);
}

void tst_JobFile::nonsenseOfStackTargetsIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QByteArray& target, const char* expected) {
        QTest::newRow(name) << QByteArray("output.folder = \"out\"\n[[target]]\n" + target)
                            << QString::fromUtf8(expected);
    };
    row("unknown key", "name = \"t\"\nstak = \"s\"\n",
        "job:4:1: target.stak: unknown key, did you mean stack; known are: name, stack, kind, "
        "data, "
        "energies, values, flat, dark, reference, pixel_size, tilt_ev_per_row, row0, shift, "
        "region");
    row("no name", "stack = \"s\"\n", "job:2:1: target: a [[target]] needs a name");
    row("no stack", "name = \"t\"\n", "job:2:1: target: a [[target]] needs a stack");
    row("several folders", "name = \"a/b\"\nstack = \"s\"\n",
        "job:3:8: target.name: cannot be the name of a folder: it has a /");
    row("the same name", "name = \"t\"\nstack = \"s\"\n[[target]]\nname = \"t\"\nstack = \"r\"\n",
        "job:6:8: target.name: another [[target]] has the same name");
    row("region without height", "name = \"t\"\nstack = \"s\"\nregion = { width = 2 }\n",
        "job:2:1: target: a region needs x, y, width and height");
    row("a number for a region", "name = \"t\"\nstack = \"s\"\nregion = 2\n",
        "job:5:10: target.region: must be a table: [target.region]");
    row("unknown side", "name = \"t\"\nstack = \"s\"\nregion = { depth = 2 }\n",
        "job:5:12: target.region.depth: unknown key; known are: x, y, width, height");
    QTest::newRow("no folder") << QByteArray("[[target]]\nname = \"t\"\nstack = \"s\"\n")
                               << QStringLiteral("job:2:8: target.name: a [[target]] needs a "
                                                 "folder for its results: [output] folder");
    QTest::newRow("no tables") << QByteArray("target = 1\n")
                               << QStringLiteral("job:1:10: target: must be tables: [[target]]");
}

void tst_JobFile::nonsenseOfStackTargetsIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    JobError error;
    QVERIFY(!parseJob(text, QStringLiteral("/data"), error));
    QCOMPARE(errorText(QStringLiteral("job"), error), expected);
}

void tst_JobFile::nonsenseOfMapsIsRefused_data()
{
    QTest::addColumn<QByteArray>("map");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QByteArray& map, const char* expected) {
        QTest::newRow(name) << map << QString::fromUtf8(expected);
    };
    row("unknown key", "name = \"m\"\nimage = []\n",
        "job:8:1: map.image: unknown key, did you mean images; known are: name, images, pattern, "
        "stack, kind, data, energies, values, flat, dark, reference, pixel_size, tilt_ev_per_row, "
        "row0, shift, region");
    row("stack and images", "name = \"m\"\nstack = \"s\"\nimages = [\"a\", \"\"]\n",
        "job:6:1: map: a [[map]] needs one of images, pattern and stack");
    row("a key of stacks", "name = \"m\"\npattern = \"a{row}\"\nshift = 1\n",
        "job:6:1: map: only a [[map]] of a stack has other keys than its name");
    row("no kind", "name = \"m\"\nstack = \"s\"\nkind = \"png\"\n",
        "job:9:8: map.kind: must be one of \"fxi\", \"exchange\", \"mistral\", \"nxdata\", "
        "\"tiff\", \"img\", \"his\"");
    row("region without height", "name = \"m\"\nstack = \"s\"\nregion = { width = 2 }\n",
        "job:6:1: map: a region needs x, y, width and height");
    row("region before the stack", "name = \"m\"\nstack = \"s\"\nregion.x = -1\n",
        "job:9:12: map.region.x: must be a whole number from 0 on");
    row("dark of truth", "name = \"m\"\nstack = \"s\"\ndark = true\n",
        "job:9:8: map.dark: must be a file, or a path in an HDF5 file, in quotation marks");
    row("no pixel", "name = \"m\"\nstack = \"s\"\npixel_size = 0\n",
        "job:9:14: map.pixel_size: must be above 0");
    row("a shift without end", "name = \"m\"\nstack = \"s\"\nshift = inf\n",
        "job:9:9: map.shift: must be a finite number");
    row("no name", "pattern = \"{row}\"\n", "job:6:1: map: a [[map]] needs a name");
    row("no images", "name = \"m\"\n",
        "job:6:1: map: a [[map]] needs one of images, pattern and stack");
    row("both", "name = \"m\"\nimages = [\"a\", \"b\"]\npattern = \"{row}\"\n",
        "job:6:1: map: a [[map]] needs one of images, pattern and stack");
    row("number for a name", "name = 3\npattern = \"{row}\"\n",
        "job:7:8: map.name: must be a name, in quotation marks");
    row("empty name", "name = \"\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: must be a name, in quotation marks");
    row("several folders", "name = \"a/b\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: cannot be the name of a folder: it has a /");
    row("the folder itself", "name = \".\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: cannot be the name of a folder: . is one already");
    row("the folder above", "name = \"..\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: cannot be the name of a folder: .. is one already");
    row("a control character", "name = \"a\\u0000b\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: cannot be the name of a folder: it has a control character");
    row("too long", "name = \"" + QByteArray("鉄").repeated(67) + "\"\npattern = \"{row}\"\n",
        "job:7:8: map.name: cannot be the name of a folder: it is longer than 200 bytes");
    row("the same name",
        "name = \"m\"\npattern = \"{row}\"\n[[map]]\nname = \"m\"\npattern = \"{energy}\"\n",
        "job:10:8: map.name: another [[map]] has the same name");
    row("too few images", "name = \"m\"\nimages = [\"a\"]\n",
        "job:8:11: map.images: 1 images for 2 [[point]] tables; \"\" stands for none");
    row("too many images", "name = \"m\"\nimages = [\"a\", \"b\", \"\"]\n",
        "job:8:11: map.images: 3 images for 2 [[point]] tables; \"\" stands for none");
    row("none at the V point", "name = \"m\"\nimages = [\"\", \"b\"]\n",
        "job:8:11: map.images: the [[point]] with v_point needs an image");
    row("no list", "name = \"m\"\nimages = \"a\"\n",
        "job:8:10: map.images: must be a list of files, each in quotation marks");
    row("empty list", "name = \"m\"\nimages = []\n",
        "job:8:10: map.images: must be a list of files, each in quotation marks");
    row("unknown mark", "name = \"m\"\npattern = \"{row}_{Energy}\"\n",
        "job:8:11: map.pattern: {Energy} is not known; known are: {row}, {energy}");
    row("open mark", "name = \"m\"\npattern = \"{row}_{energy\"\n",
        "job:8:11: map.pattern: has a { without a }");
    row("no mark", "name = \"m\"\npattern = \"area.txt\"\n",
        "job:8:11: map.pattern: needs {row} or {energy}, which tell the images of a map apart");
    row("empty pattern", "name = \"m\"\npattern = \"\"\n",
        "job:8:11: map.pattern: must be a pattern of files, in quotation marks");
}

void tst_JobFile::nonsenseOfMapsIsRefused()
{
    QFETCH(QByteArray, map);
    QFETCH(QString, expected);
    const QByteArray text = "output.folder = \"out\"\n"
                            "point = [{energy = 1, v_point = true}, {energy = 2}]\n"
                            "\n\n\n[[map]]\n" +
                            map;
    JobError error;
    QVERIFY(!parseJob(text, QStringLiteral("/data"), error));
    QCOMPARE(errorText(QStringLiteral("job"), error), expected);
}

/// Where names are written in Latin letters two of them would be the same folder.
void tst_JobFile::namesThatTheLocaleCannotWrite()
{
    const QByteArray text = "output.folder = \"out\"\npoint = [{energy = 1, v_point = true}]\n"
                            "map = [{name = \"鉄\", pattern = \"{row}\"}]\n";
    JobError error;
    QVERIFY(parseJob(text, QStringLiteral("/data"), error));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const bool isJob = parseJob(text, QStringLiteral("/data"), error).has_value();
    QTextCodec::setCodecForLocale(nullptr);
    QVERIFY(!isJob);
    QCOMPARE(
        errorText(QStringLiteral("job"), error),
        QStringLiteral("job:3:16: map.name: cannot be the name of a folder in this locale: 鉄"));
}

void tst_JobFile::mapsFitTheirJob_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* text, const char* expected) {
        QTest::newRow(name) << QByteArray(text) << QString::fromUtf8(expected);
    };
    row("no folder",
        "point = [{energy = 1, v_point = true}]\n[[map]]\nname = \"m\"\npattern = \"{row}\"\n",
        "job:3:8: map.name: a [[map]] needs a folder for its results: [output] folder");
    row("no points", "output.folder = \"o\"\n[[map]]\nname = \"m\"\npattern = \"{row}\"\n",
        "job:3:8: map.name: a [[map]] needs [[point]] tables");
    row("images of the points",
        "output.folder = \"o\"\npoint = [{energy = 1, v_point = true, map = \"a\"}]\n"
        "[[map]]\nname = \"m\"\npattern = \"{row}\"\n",
        "job:2:45: point.map: the images of a job with [[map]] are those of its [[map]]");
    row("no table", "map = 3\n", "job:1:7: map: must be tables: [[map]]");
    row("a result file",
        "output.folder = \"o\"\nfiles.map_result = \"r\"\n"
        "point = [{energy = 1, v_point = true}]\n[[map]]\nname = \"m\"\npattern = \"{row}\"\n",
        "job:2:20: files.map_result: the result of a [[map]] goes into [output] folder");
    row("boxes that are no whole number", "histogram.valence.boxes = 4.5\n",
        "job:1:27: histogram.valence.boxes: must be a whole number");
    row("one box", "histogram.thickness.boxes = 1\n",
        "job:1:29: histogram.thickness.boxes: a histogram has 2 to 10000000 boxes");
    row("more boxes than anybody wants", "histogram.valence.boxes = 10_000_001\n",
        "job:1:27: histogram.valence.boxes: a histogram has 2 to 10000000 boxes");
    row("from high to low", "histogram.valence = {from = 3.5, to = 1.5}\n",
        "job:1:29: histogram.valence.from: a histogram goes from a number to a higher one");
    row("boxes of no width", "histogram.valence = {from = 1e300, to = 1e300}\n",
        "job:1:29: histogram.valence.from: a histogram goes from a number to a higher one");
    row("an endless range", "histogram.valence = {from = -1e308, to = 1e308}\n",
        "job:1:29: histogram.valence.from: a histogram goes from a number to a higher one");
    row("language", "output = {folder = \"a\", language = \"fr\"}\n",
        R"(job:1:36: output.language: must be one of "en", "ja")");
}

void tst_JobFile::mapsFitTheirJob()
{
    errorsHaveLineAndReason();
}

void tst_JobFile::errorsHaveLineAndReason()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    JobError error;
    QVERIFY(!parseJob(text, QStringLiteral("/data"), error));
    QCOMPARE(errorText(QStringLiteral("job"), error), expected);
}

void tst_JobFile::errorTextTakesNamesAsTheyAre()
{
    const QString file = QStringLiteral("a%1b%2c%3.toml");
    const QString reason = QStringLiteral("cannot open %1 %2 %3");
    QCOMPARE(errorText(file, {{7, 0, {}}, reason}),
             QStringLiteral("a%1b%2c%3.toml:7: cannot open %1 %2 %3"));
    QCOMPARE(errorText(file, {{}, reason}), QStringLiteral("a%1b%2c%3.toml: cannot open %1 %2 %3"));
    const JobError placed{{7, 3, QStringLiteral("x.%1")}, reason};
    QCOMPARE(errorText(file, placed),
             QStringLiteral("a%1b%2c%3.toml:7:3: x.%1: cannot open %1 %2 %3"));
    QCOMPARE(warningText(file, placed),
             QStringLiteral("a%1b%2c%3.toml:7:3: warning: cannot open %1 %2 %3"));
}

void tst_JobFile::syntaxErrorsHaveALine()
{
    for (const QByteArray& text :
         {QByteArray("\n[files\nref1 = \"a\"\n"), QByteArray("\nref1 = \n"),
          QByteArray("\n\"\xff\" = 1\n"), QByteArray("\n[edge]\n[edge]\n"),
          QByteArray("\na = ") + QByteArray(100000, '[')}) {
        JobError error;
        QVERIFY(!parseJob(text, QString(), error));
        QVERIFY2(error.place.line == 2 || error.place.line == 3, qPrintable(error.reason));
        QVERIFY(!error.reason.isEmpty());
    }
}

void tst_JobFile::unreadableJobs()
{
    QTemporaryDir dir;
    const auto reasonOf = [](const QString& path) {
        JobError error;
        return readJob(path, error) ? QString() : errorText(QStringLiteral("job"), error);
    };
    QCOMPARE(reasonOf(dir.filePath(QStringLiteral("none.toml"))),
             QStringLiteral("job: cannot be opened: there is no such file"));
    QCOMPARE(reasonOf(dir.path()), QStringLiteral("job: cannot be opened: it is a folder"));
    const QString irregular = QStringLiteral("job: cannot be opened: it is no regular file");
    QCOMPARE(reasonOf(QStringLiteral("/dev/zero")), irregular);
    const QString pipe = dir.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(reasonOf(pipe), irregular);
    QFile large(dir.filePath(QStringLiteral("large.toml")));
    QVERIFY(large.open(QIODevice::WriteOnly));
    large.write(QByteArray((1 << 20) + 1, '\n'));
    large.close();
    QCOMPARE(reasonOf(large.fileName()), QStringLiteral("job: is larger than 1 MiB and no job"));
    QVERIFY(large.resize(1 << 20));
    QCOMPARE(reasonOf(large.fileName()), QString());
}

/// A spectrum may say how it is read.
void tst_JobFile::spectraOfColumns()
{
    JobError error;
    const auto job = parseJob("[files]\nref1 = { file = \"a.txt\", format = \"columns\", columns = "
                              "{ energy = 1, i0 = 2, i = 3 }, unit = \"keV\" }\n"
                              "ref2 = { file = \"b.txt\", unit = \"degrees\", d = 3 }\n"
                              "targets = { files = [\"*.xdi\"], format = \"xdi\" }\n"
                              "[output]\nfolder = \"out\"\n",
                              QStringLiteral("/data"), error);
    QVERIFY2(job, qPrintable(errorText(QStringLiteral("job"), error)));
    const JobFilePath& first = job->spectra[SpectrumSet::Ref1];
    QCOMPARE(first.path, QStringLiteral("/data/a.txt"));
    QVERIFY(first.source.kind == FileKind::Columns);
    QVERIFY(first.source.columns.unit == EnergyUnit::KiloElectronVolt);
    QCOMPARE(first.source.columns.energy, 1);
    QCOMPARE(first.source.columns.i0, 2);
    QCOMPARE(first.source.columns.i, 3);
    QCOMPARE(first.source.columns.mut, 0);
    const SpectrumSource& second = job->spectra[SpectrumSet::Ref2].source;
    QVERIFY(second.columns.unit == EnergyUnit::Degrees);
    QCOMPARE(second.columns.spacing, 3.0);
    QCOMPARE(job->targets.size(), std::size_t(1));
    QCOMPARE(job->targets[0].path, QStringLiteral("*.xdi"));
    QVERIFY(job->targetSource.kind == FileKind::Xdi);
}

void tst_JobFile::nonsenseOfSpectraIsRefused_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QByteArray& value, const char* expected) {
        QTest::newRow(name) << value << QString::fromUtf8(expected);
    };
    row("no file", "{ format = \"xdi\" }", "job:1:14: files.ref1: needs the key file");
    row("format", "{ file = \"a\", format = \"png\" }",
        "job:1:37: files.ref1.format: must be one of \"beamline\", \"xdi\", \"columns\"");
    row("column 0", "{ file = \"a\", columns = { mut = 0 } }",
        "job:1:46: files.ref1.columns.mut: must be the number of a column, 1 for the first");
    row("unit", "{ file = \"a\", unit = \"J\" }",
        "job:1:35: files.ref1.unit: must be one of \"eV\", \"keV\", \"degrees\"");
    row("d", "{ file = \"a\", d = -1 }", "job:1:32: files.ref1.d: must be a spacing in angstrom");
    row("other key", "{ file = \"a\", colums = {} }",
        "job:1:28: files.ref1.colums: unknown key, did you mean columns; known are: file, format, "
        "columns, unit, d");
}

void tst_JobFile::nonsenseOfSpectraIsRefused()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, expected);
    JobError error;
    QVERIFY(!parseJob("files.ref1 = " + value + '\n', QStringLiteral("/data"), error));
    QCOMPARE(errorText(QStringLiteral("job"), error), expected);
}

void tst_JobFile::stacks()
{
    JobError error;
    const auto job =
        parseJob("output.folder = \"out\"\npoint = [{energy = 1, v_point = true}]\n[[map]]\nname = "
                 "\"m\"\nstack = \"scan.h5\"\nkind = \"exchange\"\nenergies = \"e.txt\"\nvalues = "
                 "\"counts\"\nflat = \"/exchange/white\"\ndark = 100\npixel_size = 0.5\n"
                 "tilt_ev_per_row = -0.01\nrow0 = 512\nshift = 2\n"
                 "region = { x = 1, y = 2, width = 3, height = 4 }\n",
                 QStringLiteral("/data"), error);
    QVERIFY2(job, qPrintable(errorText(QStringLiteral("job"), error)));
    QVERIFY(job->maps[0].stack.has_value());
    const JobStack& stack = *job->maps[0].stack;
    QCOMPARE(stack.source.path, QStringLiteral("/data/scan.h5"));
    QCOMPARE(stack.source.kind, QStringLiteral("exchange"));
    QCOMPARE(stack.source.energies, QStringLiteral("/data/e.txt"));
    QVERIFY(stack.source.values == StackValues::Counts);
    QCOMPARE(stack.source.flat, QStringLiteral("/exchange/white"));
    QCOMPARE(stack.source.darkLevel.value_or(0), 100.0);
    QCOMPARE(stack.source.pixelSize, 0.5);
    QCOMPARE(stack.source.shift, 2.0);
    QCOMPARE(stack.tilt, -0.01);
    QCOMPARE(stack.row0, 512.0);
    QCOMPARE(stack.region.x, 1);
    QCOMPARE(stack.region.y, 2);
    QCOMPARE(stack.region.width, 3);
    QCOMPARE(stack.region.height, 4);
}

QTEST_GUILESS_MAIN(tst_JobFile)
#include "tst_JobFile.moc"
