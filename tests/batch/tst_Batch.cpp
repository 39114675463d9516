#include "tests/support/Files.h"
#include "tests/support/PanelActions.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QString examples = QStringLiteral(BUILD_FOLDER "/examples");
const QByteArray files = "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
                         "target = \"target.dat\"\nblank = \"blank.dat\"\n";

struct Output {
    int status = -1;
    QString text;
    QString errors;
};

/// Runs the real program as a machine without any display would.
/// @param starter  a command that starts the program with limits of its own
Output runBatch(const QStringList& arguments, const QString& runtimeDir,
                const QString& locale = QStringLiteral("C.UTF-8"), const QString& outputFile = {},
                const QStringList& starter = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDir);
    environment.insert(QStringLiteral("LC_ALL"), locale);
    // What a limit breaks off must not be the counts of the lines that all other runs reach; and
    // another user can write them here only.
    const QTemporaryDir counts;
    chmod(QFile::encodeName(counts.path()).constData(), 0777);
    if (!starter.isEmpty())
        environment.insert(QStringLiteral("GCOV_PREFIX"), counts.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    const QStringList command = starter + QStringList{QStringLiteral(BATCH_PROGRAM)} + arguments;
    process.start(command.constFirst(), command.mid(1));
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void copyMapExample(const QTemporaryDir& dir)
{
    const QDir example(examples + QStringLiteral("/nickel-map"));
    for (const QString& name :
         example.entryList({QStringLiteral("*.dat"), QStringLiteral("*.toml")}))
        QVERIFY(QFile::copy(example.filePath(name), dir.filePath(name)));
    QFile::remove(dir.filePath(QStringLiteral("map-result.dat")));
}

/// The numbers of a result line, in their order.
QVector<double> numbersIn(const QString& line)
{
    static const QRegularExpression number(QStringLiteral("= (-?[0-9][0-9.e+-]*)"));
    QVector<double> result;
    for (auto it = number.globalMatch(line); it.hasNext();)
        result += it.next().captured(1).toDouble();
    return result;
}

void addRow(const char* name, const char* settings, const user::Act& action)
{
    QTest::newRow(name) << QByteArray(settings) << action;
}

/// Edge, valences and points, in a job and as typed and clicked.
void addInputs()
{
    addRow("as the form starts", "", [](FourPs&) {});
    addRow("edge", "[edge]\nenergy = 8349.25\npre_edge_end = -40\npost_edge_start = 120.5\n",
           [](FourPs& panel) {
               user::type(panel.EdgeE, QStringLiteral("8349.25"));
               user::type(panel.PreEEndDE, QStringLiteral("-40"));
               user::type(panel.PostEStartDE, QStringLiteral("120.5"));
           });
    addRow("valences", "[valences]\nref1 = 2.5\nref2 = 4\n", [](FourPs& panel) {
        user::type(panel.Valence1, QStringLiteral("2.5"));
        user::type(panel.Valence2, QStringLiteral("4"));
    });
    addRow("three rows",
           "[[point]]\nenergy = 8313\nt_ratio = true\n"
           "[[point]]\nenergy = 8404.5\nt_ratio = true\n"
           "[[point]]\nenergy = 8390\nv_point = true\n",
           [](FourPs& panel) {
               user::click(panel.ePoints[3]->UseCB);
               user::click(panel.ePoints[0]->TRatCB);
               user::click(panel.ePoints[1]->TRatCB);
               user::type(panel.ePoints[1]->Energy, QStringLiteral("8404.5"));
           });
    addRow("six rows, V point last",
           "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8381\nt_ratio = true\n"
           "[[point]]\nenergy = 8475\nt_ratio = true\n[[point]]\nenergy = 8404.5\n"
           "[[point]]\nenergy = 8460\n[[point]]\nenergy = 8390\nv_point = true\n"
           "[conditions]\nthickness = \"mean\"\n",
           [](FourPs& panel) {
               user::type(panel.ePoints[2]->Energy, QStringLiteral("8475"));
               user::type(panel.ePoints[5]->Energy, QStringLiteral("8390"));
               user::click(panel.ePoints[4]->UseCB);
               user::click(panel.ePoints[5]->UseCB);
               user::click(panel.ePoints[1]->TRatCB);
               user::click(panel.ePoints[2]->TRatCB);
               user::click(panel.ePoints[5]->VPointCB);
               user::click(panel.TRMean);
           });
}

/// Conditions, in a job and as clicked.
void addConditions()
{
    addRow("exact, least-squares thickness",
           "[conditions]\nmethod = \"exact\"\n"
           "thickness = \"least-squares\"\n",
           [](FourPs& panel) {
               user::click(panel.TypeTMKisExact);
               user::click(panel.TRLSquare);
           });
    addRow("thickness without blank", "[conditions]\nthickness = \"least-squares-no-blank\"\n",
           [](FourPs& panel) { user::click(panel.TRLSquareNB); });
    addRow("no line from the references",
           "[conditions]\nreferences_minus_victreen = false\nthickness = \"sum-by-sum\"\n",
           [](FourPs& panel) {
               user::click(panel.UseVicCB);
               user::click(panel.TRSbyS);
           });
    addRow("pre-edge line from all",
           "[conditions]\ntarget_minus_victreen = true\nvictreen = \"pre\"\n", [](FourPs& panel) {
               user::click(panel.UseVicForTargetCB);
               user::click(panel.TheVicIs1);
           });
}

} // namespace

class tst_Batch : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString write(const QString& name, const QByteArray& text) const
    {
        return create(m_dir.filePath(name), text);
    }
    Output run(const QStringList& arguments) const { return runBatch(arguments, m_dir.path()); }

private slots:
    void initTestCase();
    void windowAndBatchAgree_data();
    void windowAndBatchAgree();
    void exampleIsRecovered_data();
    void exampleIsRecovered();
    void mapExampleIsRecovered();
    void refusedMap();
    void mapTooLarge();
    void spectrumTooLarge();
    void refusedMapLeavesItsFile();
    void limitOfFileSize();
    void nothingReadIsWritten();
    void doubts_data();
    void doubts();
    void unreadablePermission();
    void noMemory();
    void deepJobOnASmallStack_data();
    void deepJobOnASmallStack();
    void onlyWhatTheJobAsksFor();
    void refusals_data();
    void refusals();
    void badJobs_data();
    void badJobs();
    void badCalls_data();
    void badCalls();
    void reportOnAFullDisk();
    void helpAndVersion();
    void templateIsAJobOfMissingFiles();
    void localeChangesNothing();
};

void tst_Batch::initTestCase()
{
    for (const QString& name : {QStringLiteral("ref1.dat"), QStringLiteral("ref2.dat"),
                                QStringLiteral("target.dat"), QStringLiteral("blank.dat")})
        QVERIFY(QFile::copy(examples + QStringLiteral("/nickel/") + name, m_dir.filePath(name)));
}

void tst_Batch::windowAndBatchAgree_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<user::Act>("action");
    addInputs();
    addConditions();
}

void tst_Batch::windowAndBatchAgree()
{
    QFETCH(QByteArray, settings);
    QFETCH(user::Act, action);
    const QString job = write(QStringLiteral("job.toml"), files + settings);
    const Output batch = run({job});

    FourPs panel;
    panel.DispCondsB->setChecked(true);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    action(panel);
    const QStringList names = {QStringLiteral("ref1.dat"), QStringLiteral("ref2.dat"),
                               QStringLiteral("target.dat"), QStringLiteral("blank.dat")};
    for (int i = 0; i < names.size(); ++i)
        user::drop(panel.xafsSelects[i], m_dir.filePath(names[i]));
    const int before = user::messages(panel).size();
    user::click(panel.CalcTargetB);
    user::click(panel.LCFB);

    QStringList expected = user::messagesSince(panel, before);
    const bool refused = expected.contains(
        QStringLiteral("Energy Range is not selected, which should by selected by CB of TR."));
    expected += QStringLiteral("CalcRes: ") + panel.CalcRes->text();
    expected += QStringLiteral("LCFRes: ") + panel.LCFRes->text();
    QVERIFY(panel.CalcRes->text().contains(QStringLiteral("a = 0.3")));
    QCOMPARE(batch.text.split(QLatin1Char('\n')), expected + QStringList{QString()});
    QCOMPARE(batch.errors, QString());
    QCOMPARE(batch.status, refused ? 1 : 0);
}

void tst_Batch::exampleIsRecovered_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::newRow("least squares") << QByteArray("method = \"least-squares\"\n");
    QTest::newRow("exact") << QByteArray("method = \"exact\"\n");
    QTest::newRow("mean") << QByteArray("thickness = \"mean\"\n");
}

// What was mixed, a = 0.35 of thickness 0.42 on references of 0.55 and 0.50, comes back to four
// digits where the method's assumptions hold.
void tst_Batch::exampleIsRecovered()
{
    QFETCH(QByteArray, settings);
    const QString folder = examples + QStringLiteral("/nickel-noise-free/");
    QFile shipped(folder + QStringLiteral("job.toml"));
    QVERIFY(shipped.open(QIODevice::ReadOnly));
    QByteArray text = shipped.readAll();
    text.replace("\"ref", "\"" + folder.toUtf8() + "ref");
    text.replace("\"target.", "\"" + folder.toUtf8() + "target.");
    text.replace("\"blank.", "\"" + folder.toUtf8() + "blank.");
    if (settings.startsWith("thickness"))
        text.replace("thickness = \"sum-by-sum\"\n", "");
    text.replace("[conditions]\n", "[conditions]\n" + settings);
    const Output output = run({write(QStringLiteral("recover.toml"), text)});
    QCOMPARE(output.errors, QString());
    QCOMPARE(output.status, 0);
    const QString line =
        output.text.section(QStringLiteral("CalcRes: "), 1).section(QLatin1Char('\n'), 0, 0);
    const QVector<double> found = numbersIn(line);
    QCOMPARE(found.size(), 3);
    QVERIFY2(qAbs(found[0] - 0.35) < 5e-5, qPrintable(line));
    QVERIFY2(qAbs(found[1] - 2.65) < 5e-5, qPrintable(line));
    QVERIFY2(qAbs(found[2] - 0.8) < 5e-5, qPrintable(line));
    const QString fit = output.text.section(QStringLiteral("LCFRes: a : (1-a) = "), 1);
    QVERIFY2(qAbs(fit.section(QLatin1Char(' '), 0, 0).toDouble() - 0.35) < 1e-3, qPrintable(fit));
}

/// The shipped job of the map, in a folder of its own with its files.
void tst_Batch::mapExampleIsRecovered()
{
    const QTemporaryDir dir;
    copyMapExample(dir);
    const Output output = run({dir.filePath(QStringLiteral("map-job.toml"))});
    QCOMPARE(output.errors, QStringLiteral("Written: ") +
                                dir.filePath(QStringLiteral("map-result.dat")) + QLatin1Char('\n'));
    QCOMPARE(output.status, 0);
    const QStringList lines = output.text.split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines[0].startsWith(QStringLiteral("sbys = ")));
    QCOMPARE(lines[1], QStringLiteral("Map: 24 x 16 pixels"));

    QFile file(dir.filePath(QStringLiteral("map-result.dat")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    int pixel = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QByteArrayList numbers = line.simplified().split(' ');
        if (line.startsWith('#') || numbers.size() != 5)
            continue;
        const double a = (pixel % 24) / 23.0;
        const int row = pixel / 24;
        QVERIFY2(qAbs(numbers[2].toDouble() - a) < 5e-5, line.constData());
        QVERIFY2(qAbs(numbers[3].toDouble() - (3.0 - a)) < 5e-5, line.constData());
        QVERIFY2(qAbs(numbers[4].toDouble() - (0.25 + 0.75 * row / 15.0)) < 5e-5, line.constData());
        ++pixel;
    }
    QCOMPARE(pixel, 24 * 16);
}

void tst_Batch::refusedMap()
{
    const Output noData = run({write(QStringLiteral("m.toml"), "calculate = [\"map\"]\n" + files)});
    QCOMPARE(noData.text, QStringLiteral("V Point is not selected\nMap: 0 x 0 pixels\n"));
    QCOMPARE(noData.status, 1);
    const QByteArray point = "[[point]]\nenergy = 8390\nv_point = true\nmap = ";
    const QString missing =
        write(QStringLiteral("missing.toml"), "calculate = [\"map\"]\n" + point + "\"no.dat\"\n");
    const Output noFile = run({missing});
    QCOMPARE(noFile.errors, missing + QStringLiteral(":5:7: point.map: cannot open ") +
                                m_dir.filePath(QStringLiteral("no.dat")) +
                                QStringLiteral(": there is no such file\n"));
    QCOMPARE(noFile.status, 2);
    write(QStringLiteral("plain.dat"), "1 2 3 4\n");
    const QString plain = write(QStringLiteral("plain.toml"), point + "\"plain.dat\"\n");
    const Output noAxes = run({plain});
    QCOMPARE(noAxes.errors, plain + QStringLiteral(":4:7: point.map: no 2D data with axes in ") +
                                m_dir.filePath(QStringLiteral("plain.dat")) + QLatin1Char('\n'));
    QCOMPARE(noAxes.status, 2);
}

void tst_Batch::mapTooLarge()
{
    write(QStringLiteral("huge.dat"),
          "# AXIS 0 x mm 0 0.5 1\n# AXIS 1 y mm 0 0.5 1\n0 0 " + QByteArray(64 << 20, '5'));
    const QString job =
        write(QStringLiteral("huge.toml"), "[[point]]\nenergy = 8390\nv_point = true\n"
                                           "map = \"huge.dat\"\n");
    const Output output = run({job});
    QCOMPARE(output.errors, job + QStringLiteral(":4:7: point.map: The 2D data file [") +
                                m_dir.filePath(QStringLiteral("huge.dat")) +
                                QStringLiteral("] is too large.\n"));
    QCOMPARE(output.text, QString());
    QCOMPARE(output.status, 2);
}

void tst_Batch::spectrumTooLarge()
{
    QFile file(m_dir.filePath(QStringLiteral("sparse.dat")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(qint64{20} << 30));
    const QString job = write(QStringLiteral("sparse.toml"), "\n[files]\nref1 = \"sparse.dat\"\n");
    const Output output = run({job});
    QCOMPARE(output.errors, job + QStringLiteral(":3:8: files.ref1: The spectrum file [") +
                                file.fileName() + QStringLiteral("] is too large.\n"));
    QCOMPARE(output.status, 2);
}

void tst_Batch::refusedMapLeavesItsFile()
{
    const QString result = write(QStringLiteral("kept.dat"), "earlier");
    const QString job = write(QStringLiteral("kept.toml"),
                              "calculate = [\"map\"]\n" + files + "map_result = \"kept.dat\"\n");
    const Output output = run({job});
    QCOMPARE(output.text, QStringLiteral("V Point is not selected\nMap: 0 x 0 pixels\n"));
    QCOMPARE(output.errors, QString());
    QCOMPARE(output.status, 1);
    QCOMPARE(contents(result), QByteArray("earlier"));
}

/// As under `ulimit -f`, which ends a program that does not expect it.
void tst_Batch::limitOfFileSize()
{
    const QTemporaryDir dir;
    copyMapExample(dir);
    const QString result = dir.filePath(QStringLiteral("map-result.dat"));
    QFile earlier(result);
    QVERIFY(earlier.open(QIODevice::WriteOnly) && earlier.write("earlier") == 7);
    earlier.close();
    const QStringList before = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
    const QString job = dir.filePath(QStringLiteral("map-job.toml"));
    const Output output = runBatch({job}, m_dir.path(), QStringLiteral("C.UTF-8"), {},
                                   {QStringLiteral("prlimit"), QStringLiteral("--fsize=4096")});
    QCOMPARE(output.status, 3);
    QCOMPARE(output.text.section(QLatin1Char('\n'), 1),
             QStringLiteral("Can't write the file [%1]\nMap: 24 x 16 pixels\n").arg(result));
    QCOMPARE(output.errors,
             QStringLiteral("%1:15:14: files.map_result: cannot write %2\n").arg(job, result));
    QCOMPARE(contents(result), QByteArray("earlier"));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), before);
}

/// Refused before anything else: the files named here hold no data.
void tst_Batch::nothingReadIsWritten()
{
    write(QStringLiteral("read.dat"), "measured");
    const QByteArray text = "[files]\nref1 = \"read.dat\"\nmap_result = \"./read.dat\"\n";
    const QString job = write(QStringLiteral("over.toml"), text);
    const Output output = run({job});
    QCOMPARE(
        output.errors,
        job + QStringLiteral(":3:14: files.map_result: map_result would be written over ref1: ") +
            m_dir.filePath(QStringLiteral("./read.dat\n")));
    QCOMPARE(output.text, QString());
    QCOMPARE(output.status, 2);
    QCOMPARE(contents(m_dir.filePath(QStringLiteral("read.dat"))), QByteArray("measured"));
}

void tst_Batch::doubts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, const QByteArray& text, const char* expected,
                        int status) {
        QTest::newRow(name) << text << QString::fromUtf8(expected) << status;
    };
    const QByteArray target = "calculate = [\"target\"]\n" + files;
    const QByteArray points = "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8404.5\n[[point]]\n"
                              "v_point = true\nenergy = ";
    row("keV", target + points + "8.39\n[conditions]\nreferences_minus_victreen = false\n",
        "JOB:13:10: warning: energy 8.39 looks like keV; energies are in eV\n"
        "JOB: warning: a = * of the point method is far outside 0 to 1\n",
        0);
    row("beyond the spectra",
        target + "[[point]]\nenergy = 8381\n" + points +
            "9999\n[conditions]\nreferences_minus_victreen = false\n",
        "JOB:15:10: warning: energy 9999 is outside ref1 (8000 to 9250 eV), ref2 (8000 to 9250 "
        "eV), "
        "target (8000 to 9250 eV), blank (8000 to 9250 eV)\n"
        "JOB: warning: the result of the point method is no finite number\n",
        1);
    row("edge and range of another element",
        target + points + "8390\n[edge]\nenergy = 11103\npost_edge_start = 20\n",
        "JOB:15:10: warning: edge 11103 is outside ref1 (8000 to 9250 eV), ref2 (8000 to 9250 eV)\n"
        "JOB:16:19: warning: the post-edge line of ref1 goes through 0 points; it needs 3\n"
        "JOB:16:19: warning: the post-edge line of ref2 goes through 0 points; it needs 3\n"
        "JOB: warning: the result of the point method is no finite number\n",
        1);
    row("falling spectrum",
        "calculate = [\"target\"]\n[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
        "blank = \"blank.dat\"\ntarget = \"falling.dat\"\n" +
            points + "8390\n",
        "JOB:6:10: warning: the energies of target fall at 9248 eV; from row to row they are taken "
        "to "
        "rise\n",
        0);
    row("fit without a target",
        "calculate = [\"lcf\"]\n[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
        "[[point]]\nenergy = 8313\nt_ratio = true\nv_point = true\n"
        "[[point]]\nenergy = 8400\nt_ratio = true\n",
        "JOB: warning: the linear combination fit has no target\n"
        "JOB: warning: the result of the linear combination fit is no finite number\n",
        1);
}

void tst_Batch::doubts()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    QFETCH(int, status);
    const QByteArray rising = contents(m_dir.filePath(QStringLiteral("target.dat")));
    const int head = rising.indexOf('\n', rising.indexOf("Offset")) + 1;
    QByteArrayList rows = rising.mid(head).trimmed().split('\n');
    std::reverse(rows.begin(), rows.end());
    write(QStringLiteral("falling.dat"), rising.left(head) + rows.join('\n') + '\n');
    const QString job = write(QStringLiteral("doubts.toml"), text);
    const Output output = run({job});
    QString errors = output.errors;
    errors.replace(QRegularExpression(QStringLiteral("a = [0-9.e+-]+ of")),
                   QStringLiteral("a = * of"));
    QCOMPARE(errors, expected.replace(QStringLiteral("JOB"), job));
    QCOMPARE(output.status, status);
}

void tst_Batch::unreadablePermission()
{
    const QTemporaryDir dir;
    const QString job = dir.filePath(QStringLiteral("job.toml"));
    QFile file(job);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[files]\nref1 = \"job.toml\"\n") > 0);
    file.close();
    QCOMPARE(chmod(QFile::encodeName(dir.path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(job).constData(), 0), 0);
    QStringList plainUser;
    if (geteuid() == 0)
        plainUser = QStringList{QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
                                QStringLiteral("--clear-groups")};
    const Output output = runBatch({job}, dir.path(), QStringLiteral("C.UTF-8"), {}, plainUser);
    QCOMPARE(output.errors.section(QLatin1Char('\n'), -2),
             job + QStringLiteral(": cannot be opened: there is no permission to read it\n"));
    QCOMPARE(output.status, 2);
}

/// In as little memory as the program starts with, a large job does not fit.
void tst_Batch::noMemory()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the sanitizer takes all addresses");
#endif
    const auto runWithin = [this](int megabytes, const QString& job) {
        return runBatch(
            {job}, m_dir.path(), QStringLiteral("C.UTF-8"), {},
            {QStringLiteral("prlimit"), QStringLiteral("--as=%1000000").arg(megabytes)});
    };
    const QString small = write(QStringLiteral("small.toml"), "a0 = []\n");
    QByteArray keys;
    for (int i = 0; i < 100000; ++i)
        keys += "a" + QByteArray::number(i) + "=[]\n";
    const QString large = write(QStringLiteral("large.toml"), keys);
    constexpr int most = 1000;
    int megabytes = 20;
    while (megabytes < most && runWithin(megabytes, small).status != 2)
        megabytes += 4;
    QVERIFY(megabytes < most);
    const Output output = runWithin(megabytes, large);
    QCOMPARE(output.errors, QStringLiteral("There is not enough memory.\n"));
    QCOMPARE(output.text, QString());
    QCOMPARE(output.status, 2);
    QVERIFY(
        runWithin(most, large).errors.startsWith(large + QStringLiteral(":1:1: a0: unknown key")));
}

void tst_Batch::deepJobOnASmallStack_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    constexpr int megabyte = 1 << 20;
    const auto times = [](const char* text, int size) {
        return QByteArray(text).repeated(size / static_cast<int>(qstrlen(text)));
    };
    QTest::newRow("dotted key") << "\n" + times("a.", megabyte - 10) + "a = 1\n" << 2;
    QTest::newRow("header") << "\n[" + times("a.", megabyte - 10) + "a]\n" << 2;
    QTest::newRow("header of a list") << "\n[[" + times("a.", megabyte - 10) + "a]]\n" << 2;
    QTest::newRow("lists") << "\na = " + times("[", megabyte - 10) << 2;
    QTest::newRow("lists over lines") << "a = " + times("[\n", megabyte - 10) << 17;
    QTest::newRow("tables in lines") << "\na = " + times("{a=", megabyte - 10) << 2;
    QTest::newRow("lists of tables") << "\na = " + times("[{a=", megabyte - 10) << 2;
    QTest::newRow("quoted parts") << "\n" + times("\"a.b\".", megabyte - 20) + "a = 1\n" << 2;
}

void tst_Batch::deepJobOnASmallStack()
{
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    const QString job = write(QStringLiteral("deep.toml"), text);
    const Output output = runBatch({job}, m_dir.path(), QStringLiteral("C.UTF-8"), {},
                                   {QStringLiteral("prlimit"), QStringLiteral("--stack=1048576")});
    QCOMPARE(output.errors,
             QStringLiteral("%1:%2: is nested too deeply for a job\n").arg(job).arg(line));
    QCOMPARE(output.status, 2);
}

void tst_Batch::onlyWhatTheJobAsksFor()
{
    const Output target =
        run({write(QStringLiteral("t.toml"), "calculate = [\"target\"]\n" + files)});
    QCOMPARE(target.status, 0);
    const QStringList lines = target.text.split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0].startsWith(QStringLiteral("sbys = ")));
    QVERIFY(lines[1].startsWith(QStringLiteral("4ps2: a = ")));
    QCOMPARE(lines[2], QStringLiteral("CalcRes: ") + lines[1]);

    const Output lcf =
        run({write(QStringLiteral("l.toml"), "calculate = [\"lcf\"]\n" + files +
                                                 "[[point]]\nenergy = 8330\nt_ratio = true\n"
                                                 "[[point]]\nenergy = 8400\nt_ratio = true\n"
                                                 "[[point]]\nenergy = 8390\nv_point = true\n")});
    QCOMPARE(lcf.status, 0);
    const QStringList fit = lcf.text.split(QLatin1Char('\n'));
    QCOMPARE(fit.size(), 3);
    QVERIFY(fit[0].startsWith(QStringLiteral("Result of LCF : 0.3")));
    QVERIFY(fit[1].startsWith(QStringLiteral("LCFRes: a : (1-a) = 0.3")));
}

void tst_Batch::refusals_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QByteArray& text, const char* expected) {
        QTest::newRow(name) << "calculate = [\"target\"]\n" + text
                            << QString::fromLatin1(expected) + QStringLiteral("\nCalcRes: \n");
    };
    row("no files", "", "Ref File1 is not valid.");
    row("no Ref 2", "[files]\nref1 = \"ref1.dat\"\ntarget = \"target.dat\"\n",
        "Ref File2 is not valid.");
    row("no target", "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n",
        "Target File1 is not valid.");
    row("unused V point", files + "[[point]]\nenergy = 8390\nv_point = true\nuse = false\n",
        "V Point is not selected.");
    row("two rows", files + "[[point]]\nenergy = 8313\n[[point]]\nenergy = 8390\nv_point = true\n",
        "Number of selected data sets 2 is not 4.");
}

void tst_Batch::refusals()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    const Output output = run({write(QStringLiteral("refused.toml"), text)});
    QCOMPARE(output.text, expected);
    QCOMPARE(output.errors, QString());
    QCOMPARE(output.status, 1);
}

void tst_Batch::badJobs_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("wrong key") << QByteArray("\n\nedge = 8350\n")
                               << QStringLiteral("JOB:3:8: edge: must be a table: [edge]\n");
    QTest::newRow("missing spectrum")
        << QByteArray("[files]\nref1 = \"ref1.dat\"\nref2 = \"ref3.dat\"\n")
        << QStringLiteral("JOB:3:8: files.ref2: cannot open DIR/ref3.dat: there is no such file\n");
    QTest::newRow("no data") << QByteArray("[files]\nref1 = \"ref1.dat\"\nref2 = \"bad.toml\"\n")
                             << QStringLiteral(
                                    "JOB:3:8: files.ref2: no spectrum in DIR/bad.toml\n");
    QTest::newRow("folder") << QByteArray("[files]\nblank = \".\"\n")
                            << QStringLiteral(
                                   "JOB:2:9: files.blank: cannot open DIR/.: it is a folder\n");
    QTest::newRow("nowhere") << QByteArray("[files]\n\ntarget = \"/none/100%1 \\\"x\\\".dat\"\n")
                             << QStringLiteral("JOB:3:10: files.target: cannot open /none/100%1 "
                                               "\"x\".dat: there is no such file\n");
    QTest::newRow("device")
        << QByteArray("[files]\nref1 = \"/dev/zero\"\n")
        << QStringLiteral("JOB:2:8: files.ref1: cannot open /dev/zero: it is no regular file\n");
}

void tst_Batch::badJobs()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    const QString job = write(QStringLiteral("bad.toml"), text);
    const Output output = run({job});
    expected.replace(QStringLiteral("JOB"), job);
    expected.replace(QStringLiteral("DIR"), m_dir.path());
    QCOMPARE(output.errors, expected);
    QCOMPARE(output.text, QString());
    QCOMPARE(output.status, 2);
}

void tst_Batch::badCalls_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const QString one = QStringLiteral("One job file is expected: drovik-batch JOB.toml\n");
    QTest::newRow("nothing") << QStringList{} << one;
    QTest::newRow("two jobs") << QStringList{QStringLiteral("a"), QStringLiteral("b")} << one;
    QTest::newRow("unknown option")
        << QStringList{QStringLiteral("--fast")} << QStringLiteral("Unknown option 'fast'.\n");
    QTest::newRow("no such job")
        << QStringList{QStringLiteral("/none/job.toml")}
        << QStringLiteral("/none/job.toml: cannot be opened: there is no such file\n");
}

void tst_Batch::badCalls()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const Output output = run(arguments);
    QCOMPARE(output.errors, expected);
    QCOMPARE(output.text, QString());
    QCOMPARE(output.status, 2);
}

void tst_Batch::reportOnAFullDisk()
{
    const Output output = runBatch({examples + QStringLiteral("/nickel/job.toml")}, m_dir.path(),
                                   QStringLiteral("C.UTF-8"), QStringLiteral("/dev/full"));
    QCOMPARE(output.errors, QStringLiteral("The report cannot be written.\n"));
    QCOMPARE(output.status, 3);
}

void tst_Batch::templateIsAJobOfMissingFiles()
{
    const Output output = run({QStringLiteral("--template")});
    QCOMPARE(output.status, 0);
    QCOMPARE(output.errors, QString());
    const QString job = write(QStringLiteral("template.toml"), output.text.toUtf8());
    const int line = 1 + output.text.left(output.text.indexOf(QStringLiteral("\ntargets = ")) + 1)
                             .count(QLatin1Char('\n'));
    const Output check = run({QStringLiteral("--check"), job});
    QCOMPARE(check.errors, QStringLiteral("%1:%2:12: files.targets: no file is named, or matched "
                                          "by, %3/scans/*.dat\n")
                               .arg(job, QString::number(line), m_dir.path()));
    QCOMPARE(check.status, 2);
}

void tst_Batch::helpAndVersion()
{
    const Output help = run({QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY(help.text.contains(QStringLiteral("JOB.toml")));
    const QString words = help.text.simplified(); // the lines are broken to the terminal's width
    QVERIFY(words.contains(QStringLiteral(
        "Exit status: 0 all done, 1 some calculations were refused or found no finite number and "
        "the rest is done, 2 a bad job or an unreadable file and nothing was written, 3 the disk "
        "or a file failed.")));
    const Output version = run({QStringLiteral("--version")});
    QCOMPARE(version.status, 0);
    QVERIFY(QRegularExpression(QStringLiteral("^drovik-batch [0-9]+\\.[0-9]+\\.[0-9]+\n$"))
                .match(version.text)
                .hasMatch());
}

void tst_Batch::localeChangesNothing()
{
    const QStringList job = {examples + QStringLiteral("/nickel/job.toml")};
    const Output plain = run(job);
    QCOMPARE(plain.status, 0);
    QVERIFY(plain.text.contains(QStringLiteral("CalcRes: 4ps2: a = 0.3")));
    for (const char* const locale : {"de_DE.UTF-8", "ja_JP.UTF-8", "C"})
        QCOMPARE(runBatch(job, m_dir.path(), QString::fromLatin1(locale)).text, plain.text);
}

QTEST_MAIN(tst_Batch)
#include "tst_Batch.moc"
