#include "input/AXafsData.h"
#include "input/SpectrumReader.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Exact.h"
#include "tests/support/PlainReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/Random.h"
#include "tests/support/SpectrumFile.h"

#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <sys/stat.h>

namespace
{

constexpr double pi = 3.1415926535;

double energyAt(double angle, double d = 3.1355316)
{
    return 12.398424360387684 / (2.0 * d * std::sin(angle * pi / 180)) * 1000;
}

/// Reads bytes with the program's reader.
SpectrumPoints points(const QByteArray& bytes)
{
    SpectrumPoints found;
    if (readSpectrum(ArrayBytes(bytes), found) != ReadOutcome::Read)
        qFatal("the bytes are refused");
    return found;
}

SpectrumPoints plainPoints(const QByteArray& bytes)
{
    QString text = plain::text(bytes);
    QTextStream in(&text);
    return plain::readSpectrum(in);
}

bool samePoints(const SpectrumPoints& a, const SpectrumPoints& b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!same(a[i].angle, b[i].angle) || !same(a[i].energy, b[i].energy) ||
            !same(a[i].mut, b[i].mut))
            return false;
    return true;
}

/// Angles of the points that are read from the bytes.
QVector<double> angles(const QByteArray& bytes)
{
    QVector<double> found;
    for (const SpectrumPoint& point : points(bytes))
        found.append(point.angle);
    return found;
}

/// The lattice spacing in force at a row of 30 degrees after these header lines.
double spacingAfter(const QByteArray& header)
{
    const SpectrumPoints found = points(header + "\n0 30 0 1 1\n");
    if (found.size() != 1)
        return -1;
    return 12.398424360387684 / (2 * std::sin(30 * pi / 180) * found[0].energy) * 1000;
}

double mutOf(const QByteArray& incident, const QByteArray& transmitted)
{
    return points("Offset\n0 30 0 " + incident + ' ' + transmitted + '\n').at(0).mut;
}

/// A record that holds a spectrum already, so that what a read leaves of it can be seen.
AXafsData loaded(const QTemporaryDir& dir)
{
    AXafsData data;
    data.read(spectra::write(dir, "loaded.dat", "Offset\n0 30 0 2 1\n0 20 0 3 1\n"));
    return data;
}

bool isAsLoaded(const AXafsData& data, const QTemporaryDir& dir)
{
    return data.valid && data.points.size() == 2 &&
           data.fileName == dir.filePath(QStringLiteral("loaded.dat")) && data.angleMin == 20 &&
           data.angleMax == 30;
}

bool isCleared(const AXafsData& data)
{
    return !data.valid && data.points.empty() && data.angleMin == 1e300 &&
           data.angleMax == -1e300 && data.energyMin == 1e300 && data.energyMax == -1e300 &&
           data.mutMin == 1e300 && data.mutMax == -1e300;
}

/// Pieces that files are spoiled with.
QByteArray oddity(Random& random)
{
    static const QList<QByteArray> oddities{"Offset",
                                            "offset",
                                            "D=",
                                            " D= ",
                                            "D= 3.1 ",
                                            "\n",
                                            "\r",
                                            "\r\n",
                                            "\n\r",
                                            " ",
                                            "\t",
                                            "\v",
                                            "\f",
                                            QByteArray(1, '\0'),
                                            "\x1a",
                                            "\x1c",
                                            "\x85",
                                            "\xA0",
                                            "\xE9",
                                            "\x83\x49",
                                            "\x81\x40",
                                            "\xE3\x80\x80",
                                            "\xC2\xA0",
                                            "\xC2\x85",
                                            "\xE2\x80\xA8",
                                            "\xE2\x88\x92",
                                            "\xEF\xBB\xBF",
                                            "\xEF\xBB",
                                            "\xED\xA0\x80",
                                            "\xF0\x9F\x92\xA1",
                                            "\xFF",
                                            "\xFE\xFF",
                                            "\x1B$B",
                                            "\x1B(B",
                                            "~{",
                                            "nan",
                                            "inf",
                                            "-inf",
                                            "1e400",
                                            "1e-400",
                                            "0x10",
                                            "1,5",
                                            "+",
                                            "-",
                                            ".",
                                            "e",
                                            "\n0 30 0 2 1\n",
                                            "\n1 2 3 4\n",
                                            "\n1 2 3 4 5 6 7\n",
                                            "00000000000000000000000000000001",
                                            "#",
                                            "1e5"};
    return oddities[random.below(oddities.size())];
}

QByteArray validText(Random& random)
{
    QByteArray text = " 9809 AichiSR\n Mono : SI(111) D=  3.13551 A  Initial angle= 14 deg\n";
    if (random.oneIn(4))
        text += "1 2 3 4 5 6 7 8\n";
    text += "  Offset 0 0 0\n";
    for (int row = random.below(8); row >= 0; --row)
        text += " 14.1  " + QByteArray::number(random.uniform(10, 20), 'f', 5) + " 1.00  " +
                QByteArray::number(random.below(100000)) + "  " +
                QByteArray::number(random.uniform(-10, 1e5)) + (random.oneIn(5) ? "  7\n" : "\n");
    return text;
}

QByteArray mutated(Random& random)
{
    QByteArray text = validText(random);
    // Pushes what follows over the borders of the pieces that a file is converted in.
    if (random.oneIn(10))
        text.prepend(QByteArray((64 + 4) * 1024 - random.below(text.size() + 8),
                                random.oneIn(2) ? ' ' : '7'));
    for (int count = random.below(12); count > 0; --count) {
        const int at = random.below(text.size() + 1);
        switch (random.below(4)) {
        case 0:
            text.remove(at, random.below(10));
            break;
        case 1:
            text.insert(at, static_cast<char>(random.below(256)));
            break;
        default:
            text.insert(at, oddity(random));
        }
    }
    if (random.oneIn(20))
        text.prepend("\xEF\xBB\xBF");
    return text;
}

} // namespace

class tst_SpectrumReader : public QObject
{
    Q_OBJECT
private slots:
    void pointsAndRangesByHand();
    void fileNameAndFit();
    void energyUsesTenDecimalsOfPi();
    void absorptionOfARow_data();
    void absorptionOfARow();
    void spacing_data();
    void spacing();
    void spacingChangesBetweenRows();
    void startOfTheData_data();
    void startOfTheData();
    void linesAfterTheStart_data();
    void linesAfterTheStart();
    void zeroAngleGivesInfiniteEnergy();
    void notANumberLeavesTheRanges();
    void secondFileReplacesTheFirst();
    void fileWithoutDataClears_data();
    void fileWithoutDataClears();
    void whatCannotBeOpenedChangesNothing_data();
    void whatCannotBeOpenedChangesNothing();
    void pipeDoesNotHang();
    void noSpectrumIsThatLarge();
    void strangeNames();
    void oddRealFiles_data();
    void oddRealFiles();
    void encodings();
    void everyBlankOfTheToolkit();
    void bytesAtTheBordersOfPieces_data();
    void bytesAtTheBordersOfPieces();
    void aFileThatBreaksOffIsRefused();
    void pointsLargerThanMemory();
    void aLineTooLongIsRefused();
    void longLinesAndTokens();
    void commaLocale();
    void agreesWithThePlainReader();
};

void tst_SpectrumReader::pointsAndRangesByHand()
{
    QTemporaryDir dir;
    AXafsData data;
    QVERIFY(data.read(spectra::write(dir, "a.dat",
                                     "title\n Mono : D= 2 A\n Offset 0 0\n"
                                     "10.5 30 1.0 8 4 99\n10.6 20 1.0 1 4\n10.7 45 1.0 5 5\n")));
    QVERIFY(data.valid);
    QCOMPARE(data.points.size(), std::size_t{3});
    const double angle[] = {30, 20, 45};
    const double mut[] = {std::log(2.0), std::log(0.25), 0};
    for (std::size_t i = 0; i < 3; ++i) {
        COMPARE_EXACT(data.points[i].angle, angle[i]);
        COMPARE_EXACT(data.points[i].energy, energyAt(angle[i], 2));
        COMPARE_EXACT(data.points[i].mut, mut[i]);
    }
    COMPARE_EXACT(data.angleMin, 20.0);
    COMPARE_EXACT(data.angleMax, 45.0);
    COMPARE_EXACT(data.energyMin, energyAt(45, 2));
    COMPARE_EXACT(data.energyMax, energyAt(20, 2));
    COMPARE_EXACT(data.mutMin, std::log(0.25));
    COMPARE_EXACT(data.mutMax, std::log(2.0));
}

void tst_SpectrumReader::fileNameAndFit()
{
    QTemporaryDir dir;
    const SpectrumPoints made = spectra::sampled(
        spectra::grid(6900, 7800, 5), spectra::step(7120, spectra::victreen(0.1, 0.02, 0.003),
                                                    spectra::victreen(0.4, 0.5, -0.04)));
    const QString path = spectra::write(dir, "iron.dat", spectra::fileText(made));
    AXafsData data;
    data.preEdgeEnd = 7090;
    data.edge = 7120;
    data.postEdgeStart = 7200;
    QVERIFY(data.read(path));
    QCOMPARE(data.fileName, path);
    QCOMPARE(data.points.size(), made.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        QVERIFY(std::abs(data.points[i].energy - made[i].energy) < 1e-9);
        QVERIFY(std::abs(data.points[i].mut - made[i].mut) < 1e-14);
    }
    const auto pre = formulas::fitVictreen(data.points, [](double e) { return e < 7090; });
    const auto post = formulas::fitVictreen(data.points, [](double e) { return e > 7200; });
    COMPARE_EXACT(data.preVic.a, pre.a);
    COMPARE_EXACT(data.postVicNoC.b, post.bNoC);
    QVERIFY(std::abs(data.edgeJump() - (spectra::victreen(0.4, 0.5, -0.04)(7120) -
                                        spectra::victreen(0.1, 0.02, 0.003)(7120))) < 1e-6);
    // The range parameters are those of the record, not of the file.
    COMPARE_EXACT(data.preEdgeEnd, 7090.0);
}

void tst_SpectrumReader::energyUsesTenDecimalsOfPi()
{
    const double energy = points("Offset\n0 30 0 1 1\n").at(0).energy;
    QVERIFY(std::abs(energy - 3954.17) < 0.005);
    COMPARE_EXACT(energy,
                  12.398424360387684 / (2 * 3.1355316 * std::sin(30 * 3.1415926535 / 180)) * 1000);
    QVERIFY(energy != 12.398424360387684 / (2 * 3.1355316 * std::sin(30 * M_PI / 180)) * 1000);
}

void tst_SpectrumReader::absorptionOfARow_data()
{
    QTest::addColumn<QByteArray>("incident");
    QTest::addColumn<QByteArray>("transmitted");
    QTest::addColumn<double>("mut");
    const auto row = [](const char* incident, const char* transmitted, double mut) {
        QTest::addRow("ln(%s / %s)", incident, transmitted)
            << QByteArray(incident) << QByteArray(transmitted) << mut;
    };
    row("8", "2", std::log(4.0));
    row("2", "8", std::log(0.25));
    row("-8", "-2", std::log(4.0));
    row("8", "0", 0);
    row("8", "-0", 0);
    row("0", "8", 0);
    row("0", "0", 0);
    row("-8", "2", 0);
    row("nan", "2", 0);
    row("2", "nan", 0);
    row("word", "2", 0);
    row("2", "word", 0);
    row("inf", "2", std::numeric_limits<double>::infinity());
    row("1e400", "2", std::numeric_limits<double>::infinity());
    row("2", "inf", 0);
    row("inf", "inf", 0);
    row("0x10", "2", 0);
    row("1,5", "2", 0);
    row("+8", "2.", std::log(4.0));
    row("8e0", ".2E1", std::log(4.0));
}

void tst_SpectrumReader::absorptionOfARow()
{
    QFETCH(QByteArray, incident);
    QFETCH(QByteArray, transmitted);
    QFETCH(double, mut);
    COMPARE_EXACT(mutOf(incident, transmitted), mut);
}

void tst_SpectrumReader::spacing_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<double>("d");
    const auto header = [](const char* name, const char* text, double d) {
        QTest::newRow(name) << QByteArray(text) << d;
    };
    header("default", "Offset", 3.1355316);
    header("stands anywhere", "Mono : SI(111) D= 3.5 A\nOffset", 3.5);
    header("last token changes nothing", "a D=\n4 D=\nOffset", 3.1355316);
    header("later line overrides", "D= 2\nD= 4\nOffset", 4);
    header("first in a line counts", "D= 2 D= 4\nOffset", 2);
    header("no number is 0", "D= abc\nOffset", 0);
    header("twice in a row is no number", "D= D= 4\nOffset", 0);
    header("whole token only", "D=4 D 5 xD= 6 d= 7\nOffset", 3.1355316);
    header("in the line of the marker", "D= 2 Offset", 2);
    header("the marker may be its value", "D= Offset", 0);
    header("after the marker, four tokens", "Offset\na b D= 2", 2);
    header("after the marker, five tokens are data", "Offset\nD= 2 0 0 0\n", 3.1355316);
    header("long header lines count", "a b c d e f g D= 2 h i\nOffset", 2);
    header("comma", "D= 3,5\nOffset", 0);
    header("several blanks", "  D= \t\t 2.5  \nOffset", 2.5);
}

void tst_SpectrumReader::spacing()
{
    QFETCH(QByteArray, header);
    QFETCH(double, d);
    if (d == 0) {
        QVERIFY(std::isinf(points(header + "\n0 30 0 1 1\n").back().energy));
        return;
    }
    if (header.endsWith("0 0 0\n")) {
        COMPARE_EXACT(points(header + "0 30 0 1 1\n").at(1).energy, energyAt(30, d));
        return;
    }
    QVERIFY(std::abs(spacingAfter(header) - d) < 1e-12);
}

void tst_SpectrumReader::spacingChangesBetweenRows()
{
    const SpectrumPoints found = points("Offset\n0 30 0 1 1\nD= 2\n0 30 0 1 1\nD= 4\n0 30 0 1 1\n");
    QCOMPARE(found.size(), std::size_t{3});
    COMPARE_EXACT(found[0].energy, energyAt(30));
    COMPARE_EXACT(found[1].energy, energyAt(30, 2));
    COMPARE_EXACT(found[2].energy, energyAt(30, 4));
}

void tst_SpectrumReader::startOfTheData_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVector<double>>("expected");
    using Angles = QVector<double>;
    QTest::newRow("alone") << QByteArray("0 1 0 1 1\nOffset\n0 2 0 1 1\n") << Angles{2};
    QTest::newRow("anywhere in the line, which is not data itself")
        << QByteArray("a 1 b Offset 5 6 7 8\n0 2 0 1 1\n") << Angles{2};
    QTest::newRow("lower case") << QByteArray("offset\n0 2 0 1 1\n") << Angles{};
    QTest::newRow("part of a token") << QByteArray("Offsets xOffset\n0 2 0 1 1\n") << Angles{};
    QTest::newRow("on the last line") << QByteArray("0 1 0 1 1\nOffset") << Angles{};
    QTest::newRow("twice") << QByteArray("Offset\n0 2 0 1 1\nOffset\n0 3 0 1 1\n") << Angles{2, 3};
    QTest::newRow("in a row of data") << QByteArray("Offset\nOffset 2 0 1 1\n") << Angles{2};
}

void tst_SpectrumReader::startOfTheData()
{
    QFETCH(QByteArray, text);
    QTEST(angles(text), "expected");
}

void tst_SpectrumReader::linesAfterTheStart_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("rows");
    QTest::newRow("empty") << QByteArray("") << 0;
    QTest::newRow("blanks") << QByteArray(" \t ") << 0;
    QTest::newRow("comment") << QByteArray("# end") << 0;
    QTest::newRow("4 tokens") << QByteArray("1 2 3 4") << 0;
    QTest::newRow("5 tokens") << QByteArray("1 2 3 4 5") << 1;
    QTest::newRow("6 tokens") << QByteArray("1 2 3 4 5 6") << 1;
    QTest::newRow("5 words") << QByteArray("this is no row at all") << 1;
}

void tst_SpectrumReader::linesAfterTheStart()
{
    QFETCH(QByteArray, line);
    QFETCH(int, rows);
    QCOMPARE(angles("Offset\n0 7 0 1 1\n" + line + "\n0 8 0 1 1\n").size(), 2 + rows);
    QCOMPARE(angles("Offset\n" + line).size(), rows);
}

void tst_SpectrumReader::zeroAngleGivesInfiniteEnergy()
{
    QTemporaryDir dir;
    AXafsData data;
    QVERIFY(data.read(spectra::write(dir, "a.dat", "Offset\n0 0 0 1 1\n0 30 0 1 1\n0 - 0 1 1\n")));
    const double infinity = std::numeric_limits<double>::infinity();
    COMPARE_EXACT(data.points[0].energy, infinity);
    COMPARE_EXACT(data.points[2].energy, infinity);
    COMPARE_EXACT(data.energyMax, infinity);
    COMPARE_EXACT(data.energyMin, energyAt(30));
}

void tst_SpectrumReader::notANumberLeavesTheRanges()
{
    QTemporaryDir dir;
    AXafsData data;
    QVERIFY(data.read(spectra::write(dir, "a.dat", "Offset\n0 nan 0 1 1\n")));
    QVERIFY(std::isnan(data.points[0].energy));
    COMPARE_EXACT(data.angleMin, 1e300);
    COMPARE_EXACT(data.angleMax, -1e300);
    COMPARE_EXACT(data.energyMin, 1e300);
    COMPARE_EXACT(data.mutMin, 0.0);
}

void tst_SpectrumReader::secondFileReplacesTheFirst()
{
    QTemporaryDir dir;
    AXafsData data = loaded(dir);
    QVERIFY(isAsLoaded(data, dir));
    QVERIFY(data.read(spectra::write(dir, "b.dat", "D= 2\nOffset\n0 40 0 1 1\n")));
    QCOMPARE(data.points.size(), std::size_t{1});
    COMPARE_EXACT(data.angleMin, 40.0);
    COMPARE_EXACT(data.angleMax, 40.0);
    COMPARE_EXACT(data.energyMax, energyAt(40, 2));
    COMPARE_EXACT(data.mutMax, 0.0);
    // The spacing of an earlier file is forgotten.
    QVERIFY(data.read(spectra::write(dir, "c.dat", "Offset\n0 40 0 1 1\n")));
    COMPARE_EXACT(data.energyMax, energyAt(40));
}

void tst_SpectrumReader::fileWithoutDataClears_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("header only") << QByteArray("title\nD= 3\n");
    QTest::newRow("no marker") << QByteArray("0 30 0 1 1\n0 31 0 1 1\n");
    QTest::newRow("marker at the end") << QByteArray("0 30 0 1 1\nOffset\n");
    QTest::newRow("no row") << QByteArray("Offset\n1 2 3 4\n");
    QTest::newRow("binary") << QByteArray("\x7f"
                                          "ELF\x02\x01\x00\x00\xff\xfe\n\n\x00",
                                          13);
}

void tst_SpectrumReader::fileWithoutDataClears()
{
    QFETCH(QByteArray, text);
    QTemporaryDir dir;
    AXafsData data = loaded(dir);
    const double c = data.preVic.c;
    const QString path = spectra::write(dir, "b.dat", text);
    QVERIFY(!data.read(path));
    QVERIFY(isCleared(data));
    QCOMPARE(data.fileName, path);
    QVERIFY(same(data.preVic.c, c));
    QVERIFY(data.read(dir.filePath(QStringLiteral("loaded.dat"))));
    QVERIFY(isAsLoaded(data, dir));
}

void tst_SpectrumReader::whatCannotBeOpenedChangesNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/no/such/file.dat");
    QTest::newRow("folder") << QStringLiteral("/");
    QTest::newRow("device") << QStringLiteral("/dev/zero");
    QTest::newRow("no name") << QString();
    QTest::newRow("not allowed") << QString();
}

void tst_SpectrumReader::whatCannotBeOpenedChangesNothing()
{
    QFETCH(QString, path);
    QTemporaryDir dir;
    AXafsData data = loaded(dir);
    if (QByteArray(QTest::currentDataTag()) == "not allowed") {
        path = spectra::write(dir, "secret.dat", "Offset\n0 1 0 1 1\n");
        QFile::setPermissions(path, {});
        if (QFile(path).open(QIODevice::ReadOnly))
            QSKIP("This user may read everything");
    }
    const QByteArray line = "Can't open a XAFS file \"" + path.toLocal8Bit() + '"';
    QTest::ignoreMessage(QtDebugMsg, line.constData());
    QVERIFY(!data.read(path));
    QVERIFY(isAsLoaded(data, dir));
}

void tst_SpectrumReader::pipeDoesNotHang()
{
    QTemporaryDir dir;
    AXafsData data = loaded(dir);
    const QString path = dir.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    const QByteArray line = "Can't open a XAFS file \"" + path.toLocal8Bit() + '"';
    QTest::ignoreMessage(QtDebugMsg, line.constData());
    QVERIFY(!data.read(path));
    QVERIFY(isAsLoaded(data, dir));
}

void tst_SpectrumReader::strangeNames()
{
    QTemporaryDir dir;
    for (const QString& name :
         {QStringLiteral("two words.dat"), QStringLiteral("%1 %2.dat"), QStringLiteral("\"q\" 'q'"),
          QStringLiteral("\u9244\u306e\u9178\u5316\u7269.dat"), QStringLiteral("new\nline.dat")}) {
        const QString path = dir.filePath(name);
        QVERIFY(QFile::copy(spectra::write(dir, "a.dat", "Offset\n0 30 0 1 1\n"), path));
        AXafsData data;
        QVERIFY(data.read(path));
        QCOMPARE(data.fileName, path);
    }
}

void tst_SpectrumReader::oddRealFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto file = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
    const QByteArray rows = "0 30 0 2 1\n0 31 0 3 1\n";
    const QByteArray dosRows = "0 30 0 2 1\r\n0 31 0 3 1\r\n";
    file("plain", "D= 2\nOffset\n" + rows);
    file("CRLF", "D= 2\r\n Offset\r\n" + dosRows);
    file("Ctrl-Z at the end", "D= 2\r\nOffset\r\n" + dosRows + "\x1a");
    file("Ctrl-Z on a line of its own", "D= 2\nOffset\n" + rows + "\x1a\n");
    file("blank lines", "\n\nD= 2\n\n\nOffset\n\n0 30 0 2 1\n\n \n0 31 0 3 1\n\n\n\n");
    file("no final line end", "D= 2\nOffset\n0 30 0 2 1\n0 31 0 3 1");
    file("a wide table before the marker",
         "1 2 3 4 5 6 7 8 9\n1 40 3 4 5 6\nD= 2\nMode 0 0 1 2 3 4 5\nOffset 0 0 0 0 0\n" + rows);
    file("Latin-1 header", "Probe: Gr\xFC\xDF"
                           "e \xB5t \xA0 D= 9\xA0\nD= 2\n\xC5ngstr\xF6m\nOffset\n" +
                               rows);
    file("Shift-JIS header", "\x8E\x8E\x97\xBF \x83\x7E\x83\x49 \x81\x40\nD= 2\nOffset\n" + rows);
    file("UTF-8 header", "Pr\xC3\xBC"
                         "fling \xE9\x89\x84\nD= 2\n\xC3\x85\nOffset\n" +
                             rows);
    file("byte order mark", "\xEF\xBB\xBF"
                            "D= 2\nOffset\n" +
                                rows);
    file("tabs and form feeds", "\tD=\t2\f\nOffset\n0\t30\v0\t2\t1\n0 31 0 3 1\f\n");
    file("NUL bytes", QByteArray("x\0y\nD= 2\nOffset\n", 16) + rows + QByteArray("\0\0\0", 3));
    file("comments after the data", "D= 2\nOffset\n" + rows + "# the end\nEOF\n");
    file("more columns", "D= 2\nOffset\n0 30 0 2 1 7 8 9\n0 31 0 3 1 7 8 9\n");
    file("lone CRs are no line ends", "D=\r 2 \r\rA\nOff\rset\n0 3\r0 0 2 1\n0 31 0 3 1\r");
}

void tst_SpectrumReader::oddRealFiles()
{
    QFETCH(QByteArray, text);
    const SpectrumPoints found = points(text);
    QCOMPARE(found.size(), std::size_t{2});
    COMPARE_EXACT(found[0].angle, 30.0);
    COMPARE_EXACT(found[0].energy, energyAt(30, 2));
    COMPARE_EXACT(found[0].mut, std::log(2.0));
    COMPARE_EXACT(found[1].angle, 31.0);
    COMPARE_EXACT(found[1].mut, std::log(3.0));
    QVERIFY(samePoints(found, plainPoints(text)));
}

// A full-width blank, a non-breaking one and a minus sign of typography.
void tst_SpectrumReader::encodings()
{
    const QString text = QStringLiteral("D= 2 \u9244\u3000\u00A0\nOffset\n0\u30000 30 2 1\n"
                                        "0 \u221230 0 2 1\r\nD= 4\n\u00E9 31 0 3 1");
    QList<QByteArray> files{text.toUtf8(), "\xEF\xBB\xBF" + text.toUtf8()};
    for (const char* const marked : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"})
        files += QTextCodec::codecForName(marked)->fromUnicode(text); // with its mark
    for (const QByteArray& bytes : qAsConst(files)) {
        const SpectrumPoints found = points(bytes);
        QVERIFY(samePoints(found, plainPoints(bytes)));
        QCOMPARE(found.size(), std::size_t{3});
        COMPARE_EXACT(found[0].angle, 0.0);
        COMPARE_EXACT(found[1].angle, -30.0);
        COMPARE_EXACT(found[1].energy, energyAt(-30, 2));
        COMPARE_EXACT(found[2].energy, energyAt(31, 4));
    }
}

// The toolkit knows what is a blank; a file must be split at each of them and at nothing else.
void tst_SpectrumReader::everyBlankOfTheToolkit()
{
    int blanks = 0;
    for (uint code = 1; code < 0x10000; ++code) {
        const QChar character(code);
        if (character.isSurrogate() || character == QLatin1Char('\n') ||
            character == QLatin1Char('\r'))
            continue;
        const QByteArray text = "Offset\n0 30 0 2" + QString(character).toUtf8() + "1 0 1\n";
        blanks += character.isSpace();
        const SpectrumPoints found = points(text);
        QCOMPARE(found.size(), std::size_t{1});
        // Where it splits, the intensities are 2 and 1; otherwise a word and 0.
        const double mut = character.isSpace() ? std::log(2.0) : 0.0;
        QVERIFY2(same(found[0].mut, mut), qPrintable(QString::number(code, 16)));
    }
    QCOMPARE(blanks, 23);
}

void tst_SpectrumReader::bytesAtTheBordersOfPieces_data()
{
    QTest::addColumn<QByteArray>("spoiled");
    QTest::addColumn<bool>("starts");
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("half a character") << QByteArray("\xE9\x89") << false;
    QTest::newRow("blank of three bytes") << QByteArray("\xE3\x80\x80") << true;
    QTest::newRow("CR") << QByteArray("\r") << true;
    QTest::newRow("line feed") << QByteArray("\n") << true;
    QTest::newRow("word") << QByteArray("x") << false;
    QTest::newRow("Latin-1") << QByteArray("\xE4") << false;
}

// Files are read in pieces of 64 and 4 kilobytes; what stands before the marker lies before, on and
// behind the first border.
void tst_SpectrumReader::bytesAtTheBordersOfPieces()
{
    QFETCH(QByteArray, spoiled);
    QFETCH(bool, starts);
    constexpr int border = (64 + 4) * 1024;
    for (int before = border - 9; before <= border + 1; ++before) {
        const QByteArray text =
            QByteArray(before, ' ') + spoiled + "Offset\n0 30 0 2 1\n" + QByteArray(40000, ' ');
        QVERIFY(samePoints(points(text), plainPoints(text)));
        QCOMPARE(points(text).size(), std::size_t{starts ? 1U : 0U});
    }
}

// Half of a spectrum is another spectrum: it would give another valence without a word.
void tst_SpectrumReader::aFileThatBreaksOffIsRefused()
{
    const QByteArray text = "\xC3\x85 D= 2\nOffset\n" + QByteArray("0 30 0 2 1\n").repeated(20000);
    for (const int badFrom : {0, 1, 17, 100000, text.size() - 1}) {
        SpectrumPoints found(1);
        QCOMPARE(readSpectrum(ArrayBytes(text, badFrom), found), ReadOutcome::Unreadable);
        QCOMPARE(found.size(), std::size_t{1});
    }
    SpectrumPoints found;
    QCOMPARE(readSpectrum(ArrayBytes(text, text.size()), found), ReadOutcome::Read);
    QCOMPARE(found.size(), std::size_t{20000});
}

// A point takes 24 bytes; a list that grows takes the old one's room beside the new one's.
void tst_SpectrumReader::pointsLargerThanMemory()
{
    const QByteArray text = "Offset\n" + QByteArray("0 1 0 2 1\n").repeated(100000);
    SpectrumPoints found(1);
    QCOMPARE(readSpectrum(ArrayBytes(text), found, std::size_t{text.size() - 1U}),
             ReadOutcome::TooLarge);
    QCOMPARE(readSpectrum(ArrayBytes(text), found, std::size_t{100000 * 24}),
             ReadOutcome::TooLarge);
    QCOMPARE(found.size(), std::size_t{1});
    QCOMPARE(readSpectrum(ArrayBytes(text), found, std::size_t{100000 * 24 * 3}),
             ReadOutcome::Read);
    QCOMPARE(found.size(), std::size_t{100000});
}

void tst_SpectrumReader::aLineTooLongIsRefused()
{
    const QByteArray head = "D= 2\nOffset\n0 30 0 2 1\n";
    for (const int before : {0, 1, 70000, 4000000}) {
        const QByteArray first(before, '\n');
        SpectrumPoints found;
        const QByteArray allowed(1 << 22, 'x');
        QCOMPARE(readSpectrum(ArrayBytes(head + first + allowed), found), ReadOutcome::Read);
        QCOMPARE(found.size(), std::size_t{1});
        QCOMPARE(readSpectrum(ArrayBytes(head + first + allowed + "\n" + allowed + "\n"), found),
                 ReadOutcome::Read);
        QCOMPARE(readSpectrum(ArrayBytes(head + first + allowed + "x"), found),
                 ReadOutcome::TooLarge);
        QCOMPARE(readSpectrum(ArrayBytes(head + first + allowed + "x\n0 3 0 2 1\n"), found),
                 ReadOutcome::TooLarge);
    }
}

void tst_SpectrumReader::longLinesAndTokens()
{
    const QByteArray words = QByteArray("word ").repeated(100000);
    COMPARE_EXACT(spacingAfter(words + "D= 2 " + words + "Offset"), 2.0);
    const QByteArray zeros(300000, '0');
    const SpectrumPoints found =
        points("Offset\n0 " + zeros + "30." + zeros + " 0 2" + zeros + " 1" + zeros + ' ' + words +
               "\n0 31 0 1 0." + zeros + "1\n0 " + QByteArray(300000, 'x') + " 0 1 1\n");
    QCOMPARE(found.size(), std::size_t{3});
    COMPARE_EXACT(found[0].angle, 30.0);
    // Both intensities are too large for a number.
    COMPARE_EXACT(found[0].mut, 0.0);
    // This one is too small: 0.
    COMPARE_EXACT(found[1].mut, 0.0);
    COMPARE_EXACT(found[2].angle, 0.0);
}

void tst_SpectrumReader::commaLocale()
{
    const CommaLocale comma;
    const QByteArray text = "D= 3.5\nOffset\n0 30.25 0 2.5 1.5\n0 30,25 0 2,5 1.5\n";
    const SpectrumPoints found = points(text);
    QCOMPARE(found.size(), std::size_t{2});
    COMPARE_EXACT(found[0].energy, energyAt(30.25, 3.5));
    COMPARE_EXACT(found[0].mut, std::log(2.5 / 1.5));
    COMPARE_EXACT(found[1].angle, 0.0);
    COMPARE_EXACT(found[1].mut, 0.0);
}

void tst_SpectrumReader::agreesWithThePlainReader()
{
    static const char* const marked[] = {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"};
    Random random;
    std::size_t rows = 0;
    for (int run = 0; run < 12000; ++run) {
        QByteArray text = mutated(random);
        if (random.oneIn(8))
            text = QTextCodec::codecForName(marked[random.below(4)])
                       ->fromUnicode(QString::fromLatin1(text));
        const SpectrumPoints found = points(text);
        rows += found.size();
        QVERIFY2(samePoints(found, plainPoints(text)), text.toPercentEncoding(" ").constData());
    }
    QVERIFY(rows > 4000);
}

namespace
{

/// Zeros, so many as a spectrum never has.
class EndlessZeros : public ByteSource
{
public:
    explicit EndlessZeros(std::int64_t size) : m_size(size) {}

    std::int64_t size() const override { return m_size; }
    bool read(char* to, std::size_t count, std::int64_t) const override
    {
        wasRead = true;
        std::memset(to, 0, count);
        return true;
    }
    mutable bool wasRead = false;

private:
    std::int64_t m_size;
};

} // namespace

/// More than a gibibyte is refused before anything is read, however much memory there is.
void tst_SpectrumReader::noSpectrumIsThatLarge()
{
    const EndlessZeros file((std::int64_t{1} << 30) + 1);
    SpectrumPoints points;
    QCOMPARE(readSpectrum(file, points, std::numeric_limits<std::size_t>::max()),
             ReadOutcome::TooLarge);
    QVERIFY(!file.wasRead);
}

QTEST_GUILESS_MAIN(tst_SpectrumReader)
#include "tst_SpectrumReader.moc"
