#include "tests/support/PanelActions.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using Action = std::function<void(FourPs&)>;
Q_DECLARE_METATYPE(Action)

namespace
{

const QString examples = QStringLiteral(EXAMPLES);
const QByteArray files = "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
                         "target = \"target.dat\"\nblank = \"blank.dat\"\n";

struct Output {
    int status = -1;
    QString text;
    QString errors;
};

/// Runs the real program as a machine without any display would.
Output runBatch(const QStringList& arguments, const QString& runtimeDir,
                const QString& locale = QStringLiteral("C.UTF-8"), const QString& outputFile = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDir);
    environment.insert(QStringLiteral("LC_ALL"), locale);
    QProcess process;
    process.setProcessEnvironment(environment);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    process.start(QStringLiteral(BATCH_PROGRAM), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
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

void addRow(const char* name, const char* settings, const Action& action)
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
        const QString path = m_dir.filePath(name);
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? path
                                                                                  : QString();
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
    void onlyWhatTheJobAsksFor();
    void refusals_data();
    void refusals();
    void badJobs_data();
    void badJobs();
    void badCalls_data();
    void badCalls();
    void reportOnAFullDisk();
    void helpAndVersion();
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
    QTest::addColumn<Action>("action");
    addInputs();
    addConditions();
}

void tst_Batch::windowAndBatchAgree()
{
    QFETCH(QByteArray, settings);
    QFETCH(Action, action);
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
    const QDir example(examples + QStringLiteral("/nickel-map"));
    for (const QString& name :
         example.entryList({QStringLiteral("*.dat"), QStringLiteral("*.toml")}))
        QVERIFY(QFile::copy(example.filePath(name), dir.filePath(name)));
    QFile::remove(dir.filePath(QStringLiteral("map-result.dat")));
    const Output output = run({dir.filePath(QStringLiteral("map-job.toml"))});
    QCOMPARE(output.errors, QString());
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
    QCOMPARE(noFile.errors, missing + QStringLiteral(":5: cannot open ") +
                                m_dir.filePath(QStringLiteral("no.dat")) + QLatin1Char('\n'));
    QCOMPARE(noFile.status, 2);
    write(QStringLiteral("plain.dat"), "1 2 3 4\n");
    const QString plain = write(QStringLiteral("plain.toml"), point + "\"plain.dat\"\n");
    const Output noAxes = run({plain});
    QCOMPARE(noAxes.errors, plain + QStringLiteral(":4: no 2D data with axes in ") +
                                m_dir.filePath(QStringLiteral("plain.dat")) + QLatin1Char('\n'));
    QCOMPARE(noAxes.status, 2);
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
                               << QStringLiteral("JOB:3: edge is a table: [edge]\n");
    QTest::newRow("missing spectrum")
        << QByteArray("[files]\nref1 = \"ref1.dat\"\nref2 = \"ref3.dat\"\n")
        << QStringLiteral("JOB:3: cannot open DIR/ref3.dat\n");
    QTest::newRow("no data") << QByteArray("[files]\nref1 = \"ref1.dat\"\nref2 = \"bad.toml\"\n")
                             << QStringLiteral("JOB:3: no spectrum in DIR/bad.toml\n");
    QTest::newRow("folder") << QByteArray("[files]\nblank = \".\"\n")
                            << QStringLiteral("JOB:2: cannot open DIR/.\n");
    QTest::newRow("nowhere") << QByteArray("[files]\n\ntarget = \"/none/100%1 \\\"x\\\".dat\"\n")
                             << QStringLiteral("JOB:3: cannot open /none/100%1 \"x\".dat\n");
    QTest::newRow("device") << QByteArray("[files]\nref1 = \"/dev/zero\"\n")
                            << QStringLiteral("JOB:2: cannot open /dev/zero\n");
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
    QTest::newRow("no such job") << QStringList{QStringLiteral("/none/job.toml")}
                                 << QStringLiteral("/none/job.toml: cannot be opened as a file\n");
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
    QCOMPARE(output.status, 2);
}

void tst_Batch::helpAndVersion()
{
    const Output help = run({QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY(help.text.contains(QStringLiteral("JOB.toml")));
    const QString words = help.text.simplified(); // the lines are broken to the terminal's width
    QVERIFY(words.contains(
        QStringLiteral("2 a bad job, an unreadable file or a report that cannot be written.")));
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
