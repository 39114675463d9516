#include "batch/Alignment.h"
#include "batch/Watch.h"
#include "examples/AbsorptionModel.h"
#include "tests/batch/BatchFolder.h"
#include "tests/support/Files.h"
#include "tests/support/NormalNoise.h"

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

#include <cmath>

namespace
{

const char* const columns = "columns = { energy = 1, mut = 2 }";

/// A spectrum of the model in two columns, whose energies are told too low by the shift.
/// @param part  of the state of Ref 1
QByteArray spectrum(double part, double thickness, double shift, double noise = 0.0)
{
    NormalNoise random(static_cast<std::uint_fast64_t>(1000 * (part + thickness + 2 * shift) + 7));
    QByteArray text = "# made\n";
    const auto add = [&](double from, double to, double step) {
        for (int i = 0; from + i * step < to; ++i) {
            const double energy = from + i * step;
            const double mut =
                part * absorption::ofState(absorption::State::Two, energy + shift) +
                (1.0 - part) * absorption::ofState(absorption::State::Three, energy + shift);
            text += QByteArray::number(energy, 'g', 17) + ' ' +
                    QByteArray::number(thickness * mut + noise * random.next(), 'g', 17) + '\n';
        }
    };
    add(8150.0, 8310.0, 4.0);
    add(8310.0, 8480.0, 0.5);
    add(8480.0, 8600.0, 4.0);
    return text;
}

} // namespace

/// Spectra whose energies are off, and jobs that put them right.
class tst_Alignment : public QObject
{
    Q_OBJECT

private:
    BatchFolder m_folder{QList<int>{35}};

    QString file(const char* name) const { return m_folder.file(name); }
    void writeJob(const QByteArray& more, const QByteArray& before = {});
    void lower(const QByteArray& name);
    QMap<QByteArray, QByteArray> rowOf(const QByteArray& alignment);
    QString complaintOf(const QByteArray& alignment);
    std::optional<Job> job(const QByteArray& alignment) const;

private slots:
    void init();
    void keysAreChecked_data();
    void keysAreChecked();
    void withoutItNothingIsShifted();
    void givenShiftsPutTheSpectraRight_data();
    void givenShiftsPutTheSpectraRight();
    void oneTargetIsShiftedToo();
    void mapsHaveShiftedReferences();
    void foilsTellTheShift();
    void foundShiftIsInTheErrors();
    void numberTakesThePlaceOfAFoil();
    void foilThatIsOfNoUse_data();
    void foilThatIsOfNoUse();
    void tableGivesTheShifts();
    void tableIsChecked_data();
    void tableIsChecked();
    void foilsAndTableBelongToTheKey();
    void foilsOfReferencesBelongToTheKey();
    void nothingIsWrittenOverThem();
    void watchWaitsForFoils();
};

/// Ref 1, Ref 2 and the target without noise, and foils of the same energies.
void tst_Alignment::init()
{
    QDir(m_folder.path()).mkpath(QStringLiteral("foil"));
    QDir(file("results")).removeRecursively();
    QFile::remove(file("scans/35.dat"));
    m_folder.write("ref1.txt", spectrum(1.0, 1.1, 0.0));
    m_folder.write("ref2.txt", spectrum(0.0, 1.0, 0.0));
    m_folder.write("scans/s.01.txt", spectrum(0.35, 0.8, 0.0));
}

void tst_Alignment::writeJob(const QByteArray& more, const QByteArray& before)
{
    const auto of = [](const QByteArray& key) {
        return key + " = { file = \"" + key + ".txt\", " + columns + " }\n";
    };
    m_folder.write("job.toml", before + "[files]\n" + of("ref1") + of("ref2") +
                                   "targets = { files = [\"scans/*.txt\"], " + columns +
                                   " }\n[output]\nfolder = \"results\"\nreport = false\n"
                                   "[conditions]\nthickness = \"sum-by-sum\"\n"
                                   "references_minus_victreen = false\n" +
                                   BatchFolder::points + more);
}

/// Takes 0.25 eV from each energy of a file.
void tst_Alignment::lower(const QByteArray& name)
{
    QByteArray low;
    for (const QByteArray& line : contents(m_folder.file(QString::fromLatin1(name))).split('\n'))
        if (const QList<QByteArray> words = line.split(' '); line.startsWith('8'))
            low += QByteArray::number(words[0].toDouble() - 0.25, 'g', 17) + ' ' + words[1] + '\n';
    m_folder.write(name.constData(), low);
}

QMap<QByteArray, QByteArray> tst_Alignment::rowOf(const QByteArray& alignment)
{
    writeJob(alignment);
    const BatchOutput output = m_folder.run();
    if (output.status > 1)
        qWarning("%s", qPrintable(output.errors));
    return firstRow(m_folder.results());
}

QString tst_Alignment::complaintOf(const QByteArray& alignment)
{
    writeJob({}, alignment);
    const BatchOutput output = m_folder.run();
    return output.status == 2 ? output.errors : QStringLiteral("status %1").arg(output.status);
}

std::optional<Job> tst_Alignment::job(const QByteArray& alignment) const
{
    JobError error;
    return parseJob("[files]\nref1 = \"ref1.txt\"\ntargets = [\"scans/*.txt\"]\n[output]\nfolder = "
                    "\"results\"\n" +
                        alignment,
                    m_folder.path(), error);
}

void tst_Alignment::keysAreChecked_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("why");
    const auto row = [](const char* name, const char* text, const char* why) {
        QTest::newRow(name) << QByteArray(text) << QString::fromLatin1(why);
    };
    row("no number", "target = \"0.1\"\n", "2:10: alignment.target: must be a finite number");
    row("far", "ref1 = -100.5\n", "2:8: alignment.ref1: must be between -100 and 100 eV");
    row("two sources", "shifts = \"a.csv\"\nfoil = \"{name}\"\n",
        "3:8: alignment.foil: shifts and foil exclude one another");
    row("number and table", "blank = 0.1\nshifts = \"a.csv\"\n",
        "3:10: alignment.shifts: blank and shifts exclude one another: the table has the shifts of "
        "all files");
    row("number and foil", "foil = \"{name}\"\ntarget = 0.1\n",
        "3:10: alignment.target: target and foil exclude one another");
    row("scale and foil", "foil = \"{name}\"\nref1 = 0.1\n",
        "3:8: alignment.ref1: ref1 and foil exclude one another");
    row("one foil for all", "foil = { file = \"foil.dat\" }\n",
        "2:17: alignment.foil.file: needs {name}, the name of a spectrum's file without its "
        "suffix");
    row("no Ref 1", "foil = \"{name}\"\n",
        "2:8: alignment.foil: needs files.ref1, whose foil sets the scale");
    row("unknown", "ref3 = 1\n",
        "2:1: alignment.ref3: unknown key, did you mean ref1; known are: ref1, ref2, target, "
        "blank, shifts, foil");
}

void tst_Alignment::keysAreChecked()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, why);
    QByteArray files = "[files]\nref1 = \"ref1.dat\"\n";
    if (why.contains(QStringLiteral("files.ref1")))
        files.clear();
    JobError error;
    QVERIFY(!parseJob("[alignment]\n" + text + files, QStringLiteral("/data"), error));
    QCOMPARE(errorText(QStringLiteral("job"), error), QStringLiteral("job:") + why);
}

/// The columns are empty without [alignment]; with shifts of 0 they are all that changes.
void tst_Alignment::withoutItNothingIsShifted()
{
    auto without = rowOf({});
    QCOMPARE(without["shift"], QByteArray());
    QCOMPARE(without["sigma_shift"], QByteArray());
    auto zero = rowOf("[alignment]\ntarget = 0.0\nref1 = 0\n");
    QCOMPARE(zero["shift"], QByteArray("0"));
    QCOMPARE(zero["sigma_shift"], QByteArray());
    zero["shift"].clear();
    QCOMPARE(zero, without);
}

void tst_Alignment::givenShiftsPutTheSpectraRight_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("target") << QByteArray("target") << QByteArray("scans/s.01.txt");
    QTest::newRow("Ref 1") << QByteArray("ref1") << QByteArray("ref1.txt");
    QTest::newRow("Ref 2") << QByteArray("ref2") << QByteArray("ref2.txt");
}

/// A quarter of an electronvolt less in each line of a file, and more in the job: the same numbers.
void tst_Alignment::givenShiftsPutTheSpectraRight()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, name);
    auto right = rowOf({});
    lower(name);
    auto wrong = rowOf({});
    QVERIFY(std::abs(wrong["a"].toDouble() - right["a"].toDouble()) > 1e-3);
    auto aligned = rowOf("[alignment]\n" + key + " = 0.25\n");
    QCOMPARE(aligned.take("shift"), QByteArray(key == "target" ? "0.25" : "0"));
    right.remove("shift");
    QCOMPARE(aligned, right);
}

/// Of a job that prints its results.
void tst_Alignment::oneTargetIsShiftedToo()
{
    const auto print = [&](const QByteArray& alignment) {
        QByteArray files = "[files]\n";
        for (const auto& [key, name] :
             {std::pair("ref1", "ref1.txt"), std::pair("ref2", "ref2.txt"),
              std::pair("target", "scans/s.01.txt")})
            files += QByteArray(key) + " = { file = \"" + name + "\", " + columns + " }\n";
        m_folder.write("job.toml", files + "[conditions]\nreferences_minus_victreen = false\n" +
                                       BatchFolder::points + alignment);
        return m_folder.run().text;
    };
    const QByteArray right = print({});
    QVERIFY(right.contains("CalcRes: ") && right.contains("LCFRes: "));
    lower("scans/s.01.txt");
    QVERIFY(print({}) != right);
    QCOMPARE(print("[alignment]\ntarget = 0.25\n"), right);
}

void tst_Alignment::mapsHaveShiftedReferences()
{
    const QByteArray map = m_folder.addMap("m");
    writeJob(map);
    QCOMPARE(m_folder.run().status, 0);
    const QByteArray right = contents(file("results/maps/m/m.dat"));
    lower("ref1.txt");
    writeJob(map);
    QCOMPARE(m_folder.run().status, 0);
    QVERIFY(contents(file("results/maps/m/m.dat")) != right);
    writeJob(map + "[alignment]\nref1 = 0.25\n");
    QCOMPARE(m_folder.run().status, 0);
    QCOMPARE(contents(file("results/maps/m/m.dat")), right);
}

/// A night at 0.3 eV, and Ref 2 of another: the foils put the valence right.
void tst_Alignment::foilsTellTheShift()
{
    constexpr double noise = 0.002;
    const double right = rowOf({})["lcf_a"].toDouble(); // off by what its lines are no model of
    m_folder.write("ref2.txt", spectrum(0.0, 1.0, -0.2));
    m_folder.write("scans/s.01.txt", spectrum(0.35, 0.8, 0.3));
    m_folder.write("foil/ref1.txt", spectrum(1.0, 1.0, 0.0, noise));
    m_folder.write("foil/ref2.txt", spectrum(1.0, 0.9, -0.2, noise));
    m_folder.write("foil/s.01.txt", spectrum(1.0, 0.7, 0.3, noise));
    const double wrong = rowOf({})["a"].toDouble();
    QVERIFY(std::abs(wrong - 0.35) > 0.03);
    const auto row =
        rowOf("[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n");
    QCOMPARE(row["refusal"], QByteArray());
    const double error = std::abs(row["shift"].toDouble() - 0.3);
    const double sigma = row["sigma_shift"].toDouble();
    QVERIFY2(error < 0.02, row["shift"]);
    QVERIFY2(sigma > 0.001 && sigma < 0.01 && error < 3.0 * sigma, row["sigma_shift"]);
    QVERIFY2(std::abs(row["a"].toDouble() - 0.35) < 0.004, row["a"]);
    QVERIFY2(std::abs(row["lcf_a"].toDouble() - right) < 0.004,
             row["lcf_a"] + " " + QByteArray::number(right));
}

/// sigma^2 = counting^2 + (change for 0.1 eV times ten times sigma of the shift)^2, the target's in
/// the own part, that of Ref 2 in the common one.
void tst_Alignment::foundShiftIsInTheErrors()
{
    m_folder.write("scans/s.01.txt", spectrum(0.35, 0.8, 0.3, 1e-4));
    m_folder.write("ref1.txt", spectrum(1.0, 1.1, 0.0, 1e-4));
    m_folder.write("ref2.txt", spectrum(0.0, 1.0, 0.0, 1e-4));
    m_folder.write("foil/ref1.txt", spectrum(1.0, 1.0, 0.0, 0.003));
    m_folder.write("foil/ref2.txt", spectrum(1.0, 1.01, 0.0, 0.003));
    m_folder.write("foil/s.01.txt", spectrum(1.0, 1.0, 0.3, 0.003));
    const QByteArray foil =
        "[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n";
    const auto found = rowOf(foil);
    const auto given = rowOf("[alignment]\ntarget = " + found["shift"] + "\n");
    const auto refGiven = rowOf(foil + "ref2 = 0\n");
    const auto number = [](const auto& row, const char* name) { return row[name].toDouble(); };
    const double sigma = number(found, "sigma_shift");
    const double expected =
        std::hypot(number(given, "sigma_valence"), 10.0 * sigma * number(found, "dvalence_shift"));
    QVERIFY2(expected > 1.2 * number(given, "sigma_valence"),
             given["sigma_valence"] + " " + QByteArray::number(expected));
    QVERIFY2(std::abs(number(found, "sigma_valence") / expected - 1.0) < 0.05,
             found["sigma_valence"] + " " + QByteArray::number(expected));
    QVERIFY(number(found, "lcf_sigma_valence") > 1.5 * number(given, "lcf_sigma_valence"));
    QVERIFY(number(found, "valence_high") - number(found, "valence_low") >
            1.9 * number(found, "sigma_valence"));
    // The foils of Ref 2 and of the target are equally noisy.
    static const QRegularExpression ref2(QStringLiteral("Ref 2 0.1 eV higher: valence (\\S+)\n"));
    const QString told =
        m_folder.run({QStringLiteral("--again"), QStringLiteral("--verbose")}).errors;
    const double ofRef2 = 10.0 * sigma * ref2.match(told).captured(1).toDouble();
    const double common = std::hypot(number(refGiven, "sigma_valence_ref"), ofRef2);
    QVERIFY(common > 1.1 * number(refGiven, "sigma_valence_ref"));
    QVERIFY2(std::abs(number(found, "sigma_valence_ref") / common - 1.0) < 0.03,
             found["sigma_valence_ref"] + " " + QByteArray::number(common));
    QVERIFY(number(found, "lcf_sigma_a_ref") > 1.2 * number(refGiven, "lcf_sigma_a_ref"));
    QVERIFY(std::abs(number(refGiven, "sigma_valence") / number(found, "sigma_valence") - 1.0) <
            0.02);
}

/// A reference whose shift the job gives needs no foil.
void tst_Alignment::numberTakesThePlaceOfAFoil()
{
    m_folder.write("foil/ref1.txt", spectrum(1.0, 1.0, 0.0));
    m_folder.write("foil/s.01.txt", spectrum(1.0, 1.0, 0.0));
    QFile::remove(file("foil/ref2.txt"));
    const QByteArray foil =
        "[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n";
    QCOMPARE(rowOf(foil + "ref2 = 0.0\n")["refusal"], QByteArray());
    QCOMPARE(complaintOf(foil), QStringLiteral("job.toml:2:17: alignment.foil.file: cannot open "
                                               "foil/ref2.txt: there is no such file\n"));
}

void tst_Alignment::foilThatIsOfNoUse_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("why");
    QTest::newRow("none") << QByteArray()
                          << QByteArray("cannot open foil/s.01.txt: there is no such file");
    QTest::newRow("another edge")
        << QByteArray("7000 0.1\n7001 0.2\n7002 0.3\n")
        << QByteArray("no shift up to 5 eV brings foil/s.01.txt upon foil/ref1.txt");
    QTest::newRow("no spectrum") << QByteArray("nothing\n") << QByteArray();
}

/// The row is refused; other targets are not.
void tst_Alignment::foilThatIsOfNoUse()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, why);
    m_folder.write("foil/ref1.txt", spectrum(1.0, 1.0, 0.0));
    m_folder.write("foil/ref2.txt", spectrum(1.0, 1.0, 0.0));
    m_folder.write("foil/s.02.txt", spectrum(1.0, 1.0, 0.0));
    m_folder.write("scans/s.02.txt", contents(file("scans/s.01.txt")));
    QFile::remove(file("foil/s.01.txt"));
    if (!text.isEmpty())
        m_folder.write("foil/s.01.txt", text);
    const auto row =
        rowOf("[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n");
    QVERIFY(QFile::remove(file("scans/s.02.txt")));
    QVERIFY(!row["refusal"].isEmpty());
    if (!why.isEmpty())
        QCOMPARE(row["refusal"], why);
    QCOMPARE(row["shift"], QByteArray());
    const QList<QByteArray> lines = m_folder.results().split('\n');
    QVERIFY2(lines.value(2).startsWith("scans/s.02.txt,4ps2,0.3499"), lines.value(2));
}

void tst_Alignment::tableGivesTheShifts()
{
    m_folder.write("scans/s.01.txt", spectrum(0.35, 0.8, 0.3));
    m_folder.write("shifts.csv",
                   "\xEF\xBB\xBFshift, file ,by\r\n0,ref1.txt,me\r\n0.0,./ref2.txt,\r\n"
                   "\r\n0.3,\"scans/s.01.txt\",\"a \"\"b\"\",\r\nc\"\r\n7,other.txt,");
    const auto row = rowOf("[alignment]\nshifts = \"shifts.csv\"\n");
    QCOMPARE(row["shift"], QByteArray("0.3"));
    QCOMPARE(row["sigma_shift"], QByteArray());
    QCOMPARE(row, rowOf("[alignment]\ntarget = 0.3\n"));
}

void tst_Alignment::tableIsChecked_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<QString>("why");
    const QByteArray good = "file,shift\nref1.txt,0\nref2.txt,0\n";
    const QByteArray target = "scans/s.01.txt,0\n";
    QTest::newRow("none") << QByteArray() << "cannot open shifts.csv: there is no such file";
    QTest::newRow("columns") << QByteArray("name,shift\n")
                             << "shifts.csv:1: needs the columns file and shift";
    QTest::newRow("twice") << good + target + "\"x\ny\",0\nscans/../ref2.txt,1\n"
                           << "shifts.csv:7: names scans/../ref2.txt again, as line 3 does";
    QTest::newRow("no number") << good + "scans/s.01.txt,0.1 eV\n"
                               << "shifts.csv:4: \"0.1 eV\" is no shift between -100 and 100 eV";
    QTest::newRow("far") << good + "scans/s.01.txt,1e3\n"
                         << "shifts.csv:4: \"1e3\" is no shift between -100 and 100 eV";
    QTest::newRow("short line") << good + "scans/s.01.txt\n"
                                << "shifts.csv:4: \"\" is no shift between -100 and 100 eV";
    QTest::newRow("no file") << good + ",1\n"
                             << "shifts.csv:4: names no file";
    QTest::newRow("target") << good << "shifts.csv has no shift of scans/s.01.txt";
    QTest::newRow("reference") << "file,shift\nref1.txt,0\n" + target
                               << "shifts.csv has no shift of ref2.txt";
}

void tst_Alignment::tableIsChecked()
{
    QFETCH(QByteArray, table);
    QFETCH(QString, why);
    QFile::remove(file("shifts.csv"));
    if (!table.isEmpty())
        m_folder.write("shifts.csv", table);
    QCOMPARE(complaintOf("[alignment]\nshifts = \"shifts.csv\"\n"),
             QStringLiteral("job.toml:2:10: alignment.shifts: %1\n").arg(why));
    QVERIFY(!QFile::exists(file("results/results.csv")));
}

/// What has changed is calculated again, and told by a replay.
void tst_Alignment::foilsAndTableBelongToTheKey()
{
    const QStringList verbose{QStringLiteral("--verbose")};
    const QStringList replay{QStringLiteral("--replay"), QStringLiteral("results/run.sqlite")};
    m_folder.write("foil/ref1.txt", spectrum(1.0, 1.0, 0.0));
    m_folder.write("foil/ref2.txt", spectrum(1.0, 1.0, 0.0));
    QFile::remove(file("foil/s.01.txt"));
    writeJob("[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n");
    QCOMPARE(m_folder.run().status, 1);
    m_folder.write("foil/s.01.txt", spectrum(1.0, 1.0, 0.0));
    QCOMPARE(m_folder.run().status, 0); // the foil has come
    QVERIFY(m_folder.run(verbose).errors.contains(QStringLiteral("s.01.txt: there already\n")));
    QCOMPARE(m_folder.runPlainly(replay).text, QByteArray("scans/s.01.txt: the same\n"));
    m_folder.write("foil/s.01.txt", spectrum(1.0, 1.0, 0.1));
    QCOMPARE(m_folder.runPlainly(replay).text,
             QByteArray("scans/s.01.txt: foil/s.01.txt changed\n"));
    QVERIFY(m_folder.run(verbose).errors.contains(QStringLiteral("s.01.txt: calculated in ")));
    QVERIFY(std::abs(firstRow(m_folder.results())["shift"].toDouble() - 0.1) < 0.01);
    m_folder.write("shifts.csv", "file,shift\nref1.txt,0\nref2.txt,0\nscans/s.01.txt,0\n");
    writeJob("[alignment]\nshifts = \"shifts.csv\"\n");
    QCOMPARE(m_folder.run().status, 0);
    m_folder.write("shifts.csv", "file,shift\nref1.txt,0\nref2.txt,0\nscans/s.01.txt,1\n");
    QVERIFY(
        m_folder.runPlainly(replay).text.startsWith("scans/s.01.txt: shifts.csv changed; a was "));
    QVERIFY(m_folder.run(verbose).errors.contains(QStringLiteral("s.01.txt: calculated in ")));
    QCOMPARE(firstRow(m_folder.results())["shift"], QByteArray("1"));
}

void tst_Alignment::foilsOfReferencesBelongToTheKey()
{
    for (const char* name : {"foil/ref1.txt", "foil/ref2.txt", "foil/s.01.txt"})
        m_folder.write(name, spectrum(1.0, 1.0, 0.0));
    writeJob("[alignment]\nfoil = { file = \"foil/{name}.txt\", " + QByteArray(columns) + " }\n");
    QCOMPARE(m_folder.run().status, 0);
    m_folder.write("foil/ref2.txt", spectrum(1.0, 1.0, 0.2));
    const QStringList replay{QStringLiteral("--replay"), QStringLiteral("results/run.sqlite")};
    QVERIFY(m_folder.runPlainly(replay).text.startsWith(
        "scans/s.01.txt: foil/ref2.txt changed; a was "));
    QVERIFY(m_folder.run({QStringLiteral("--verbose")})
                .errors.contains(QStringLiteral("s.01.txt: calculated in ")));
}

void tst_Alignment::nothingIsWrittenOverThem()
{
    QDir(m_folder.path()).mkpath(QStringLiteral("results"));
    m_folder.write("results/results.csv", "file,shift\nref1.txt,0\nref2.txt,0\nscans/s.01.txt,0\n");
    writeJob("[alignment]\nshifts = \"results/results.csv\"\n");
    const QByteArray table = contents(file("results/results.csv"));
    QVERIFY(m_folder.run().errors.contains(
        QStringLiteral("would be written over the table of shifts")));
    QCOMPARE(contents(file("results/results.csv")), table);
    const QByteArray foil = spectrum(1.0, 1.0, 0.0);
    for (const char* name : {"ref1.csv", "ref2.csv", "results.csv"})
        m_folder.write(("results/" + QByteArray(name)).constData(), foil);
    QVERIFY(QFile::rename(file("scans/s.01.txt"), file("scans/results.txt")));
    writeJob("[alignment]\nfoil = { file = \"results/{name}.csv\", " + QByteArray(columns) +
             " }\n");
    const BatchOutput output = m_folder.run();
    QVERIFY(QFile::remove(file("scans/results.txt")));
    QCOMPARE(output.status, 2);
    QVERIFY2(output.errors.contains(QStringLiteral("would be written over the foil ")),
             qPrintable(output.errors));
    QCOMPARE(contents(file("results/results.csv")), foil);
}

/// The folder of the foils is watched, and a foil is looked at with its target.
void tst_Alignment::watchWaitsForFoils()
{
    const auto with = job("[alignment]\nfoil = \"foil/{name}.txt\"\n");
    QVERIFY(with);
    QVERIFY(watchedFolders(*with).contains(QFile::encodeName(file("foil"))));
    const auto without = job({});
    QVERIFY(!watchedFolders(*without).contains(QFile::encodeName(file("foil"))));
    m_folder.write("foil/s.01.txt", spectrum(1.0, 1.0, 0.0));
    WatchedFiles seen;
    lookAt(*with, {{{file("scans/s.01.txt"), {}, {}}}, {}}, seen);
    QVERIFY(seen.isKnown(QFile::encodeName(file("foil/s.01.txt"))));
}

QTEST_GUILESS_MAIN(tst_Alignment)
#include "tst_Alignment.moc"
