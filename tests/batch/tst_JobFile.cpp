#include "batch/JobFile.h"

#include <QTemporaryDir>
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
    QCOMPARE(job.spectra[SpectrumSet::Ref1].line, 2);
    QCOMPARE(job.spectra[SpectrumSet::Ref2].path, QStringLiteral("/other/b.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Target].path, QStringLiteral("/data/sub/c.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Blank].path, QStringLiteral("/data/../d.dat"));
    QCOMPARE(job.spectra[SpectrumSet::Blank].line, 5);
    QCOMPARE(job.edge, QStringLiteral("7120"));
    QCOMPARE(job.preEdgeEnd, QStringLiteral("-30"));
    QCOMPARE(job.postEdgeStart, QStringLiteral("100.5"));
    QCOMPARE(job.edgeLine, 7);
    QCOMPARE(job.preEdgeEndLine, 8);
    QCOMPARE(job.postEdgeStartLine, 9);
    QCOMPARE(job.valence1, QStringLiteral("2"));
    QCOMPARE(job.valence2, QStringLiteral("2.5"));
    QVERIFY(job.points);
    QCOMPARE(job.points->size(), std::size_t(2));
    const JobPoint& first = job.points->at(0);
    QCOMPARE(first.energy, QStringLiteral("7090"));
    QCOMPARE(first.line, 14);
    QVERIFY(first.use && first.tRatio && !first.vPoint);
    const JobPoint& second = job.points->at(1);
    QCOMPARE(second.energy, QStringLiteral("7130.2"));
    QCOMPARE(second.line, 17);
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
    QCOMPARE(error.reason, QStringLiteral("calculate is a list of \"target\", \"lcf\", \"map\""));
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
        "job:2: unknown key \"edges\", did you mean edge; known are: files, edge, valences, point, "
        "conditions, output, "
        "calculate");
    row("unknown key in a table", "[edge]\nenergy = 1\nstart = 2\n",
        "job:3: unknown key \"start\" in [edge]; known are: energy, pre_edge_end, "
        "post_edge_start");
    row("unknown key in a point", "[[point]]\nenergy = 1\nv_point = true\nblank = 2\n",
        "job:4: unknown key \"blank\" in [[point]]; known are: energy, use, t_ratio, v_point, "
        "map");
    row("the first of several errors", "[files]\nref3 = 1\n[edge]\nenergy = \"x\"\n",
        "job:2: unknown key \"ref3\" in [files], did you mean ref1; known are: ref1, ref2, target, "
        "targets, blank, map_result");
    row("the first of two, visited last", "[valences]\nref9 = 1\n[edge]\nstart = 2\n",
        "job:2: unknown key \"ref9\" in [valences], did you mean ref1; known are: ref1, ref2");
    row("the first of two in a line", "edge = {start = 1, energy = \"x\"}\n",
        "job:1: energy is a finite number");
    row("target and targets",
        "[files]\ntarget = \"a\"\ntargets = [\"b\"]\n[output]\nfolder = \"c\"\n",
        "job:3: target and targets exclude one another");
    row("targets without a folder", "[files]\ntargets = [\"b\"]\n",
        "job:2: targets need a folder for their results: [output] folder");
    row("a folder without targets", "[output]\nfolder = \"c\"\n",
        "job:2: [output] is for targets; there are none");
    row("a map with targets",
        "calculate = [\"map\"]\n[files]\ntargets = [\"b\"]\n[output]\nfolder = \"c\"\n",
        "job:1: a map is not calculated together with targets");
    row("a map's result with targets",
        "[files]\ntargets = [\"b\"]\nmap_result = \"m\"\n[output]\nfolder = \"c\"\n",
        "job:3: map_result is not written together with targets");
    row("no list of targets", "[files]\ntargets = \"b\"\n",
        "job:2: targets is a list of names and patterns of files, each in quotation marks");
    row("empty list of targets", "[files]\ntargets = []\n",
        "job:2: targets is a list of names and patterns of files, each in quotation marks");
    row("a number among targets", "[files]\ntargets = [\"b\",\n3]\n[output]\nfolder = \"c\"\n",
        "job:3: targets is a list of names and patterns of files, each in quotation marks");
    row("no table", "files = 3\n", "job:1: files is a table: [files]");
    row("text for a number", "[edge]\nenergy = \"8350\"\n", "job:2: energy is a finite number");
    row("not a number", "[edge]\nenergy = nan\n", "job:2: energy is a finite number");
    row("infinite", "[valences]\nref2 = -inf\n", "job:2: ref2 is a finite number");
    row("truth for a number", "[edge]\nenergy = true\n", "job:2: energy is a finite number");
    row("number for a path", "[files]\nblank = 3\n",
        "job:2: blank is the path of a file, in quotation marks");
    row("empty path", "[files]\nblank = \"\"\n",
        "job:2: blank is the path of a file, in quotation marks");
    row("number for a flag", "[conditions]\ntarget_minus_victreen = 1\n",
        "job:2: target_minus_victreen is true or false");
    row("text for a flag in a point", "[[point]]\nenergy = 1\nv_point = \"yes\"\n",
        "job:3: v_point is true or false");
    row("thickness", "[conditions]\nthickness = \"vic2\"\n",
        "job:2: thickness is one of \"sum-by-sum\", \"mean\", \"least-squares\", "
        "\"least-squares-no-blank\", \"victreen\"");
    row("victreen", "[conditions]\nvictreen = 1\n", R"(job:2: victreen is one of "pre", "post")");
    row("method", "[conditions]\nmethod = \"Exact\"\n",
        R"(job:2: method is one of "exact", "least-squares")");
    row("point that is no table", "point = [1]\n", "job:1: points are tables: [[point]]");
    row("no points", "point = []\n", "job:1: points are tables: [[point]]");
    row("one point, not a list", "[point]\nenergy = 1\n", "job:1: points are tables: [[point]]");
    row("point without energy", "[[point]]\nenergy = 1\nv_point = true\n\n[[point]]\nuse = true\n",
        "job:5: a [[point]] needs an energy");
    row("no V point", "\n[[point]]\nenergy = 1\n", "job:2: one [[point]] needs v_point = true");
    row("two V points",
        "[[point]]\nenergy = 1\nv_point = true\n[[point]]\nenergy = 2\nv_point = true\n",
        "job:4: only one [[point]] can have v_point = true");
    row("calculate that is no list", "calculate = \"target\"\n",
        R"(job:1: calculate is a list of "target", "lcf", "map")");
    row("calculate nothing", "calculate = []\n",
        R"(job:1: calculate is a list of "target", "lcf", "map")");
    row("calculate something else", "calculate = [\n\"lcf\",\n\"maps\"]\n",
        R"(job:3: calculate is a list of "target", "lcf", "map")");
    QByteArray nine = "[[point]]\nenergy = 1\nv_point = true\n";
    for (int i = 0; i < 8; ++i)
        nine += "[[point]]\nenergy = 2\n";
    QTest::newRow("nine points") << nine
                                 << QStringLiteral(
                                        "job:18: there are more than 8 [[point]] tables");
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
    QCOMPARE(errorText(file, {7, reason}),
             QStringLiteral("a%1b%2c%3.toml:7: cannot open %1 %2 %3"));
    QCOMPARE(errorText(file, {0, reason}), QStringLiteral("a%1b%2c%3.toml: cannot open %1 %2 %3"));
}

void tst_JobFile::syntaxErrorsHaveALine()
{
    for (const QByteArray& text :
         {QByteArray("\n[files\nref1 = \"a\"\n"), QByteArray("\nref1 = \n"),
          QByteArray("\n\"\xff\" = 1\n"), QByteArray("\n[edge]\n[edge]\n"),
          QByteArray("\na = ") + QByteArray(100000, '[')}) {
        JobError error;
        QVERIFY(!parseJob(text, QString(), error));
        QVERIFY2(error.line == 2 || error.line == 3, qPrintable(error.reason));
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

QTEST_GUILESS_MAIN(tst_JobFile)
#include "tst_JobFile.moc"
