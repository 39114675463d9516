#include "analysis/SteepestRise.h"
#include "batch/Inspection.h"
#include "batch/InspectionPicture.h"
#include "examples/MapSample.h"
#include "examples/StackFiles.h"
#include "formats/Stack.h"
#include "formats/StackProcess.h"
#include "tests/support/Files.h"
#include "tests/support/ToolkitWarnings.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

/// What --inspect tells of a file.
class tst_Inspection : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void edgeOfNoisyStep();
    void noEdge();
    void texts_data();
    void texts();
    void stacks_data();
    void stacks();
    void cameraFiles();
    void refused_data();
    void refused();
    void namesAreHarmless();
    void hugePages();
    void largeFramesAreLookedAtInTheMiddle();
    void pictures_data();
    void pictures();
    void program();
    void pictureReplacesNothing();
    void guide_data();
    void guide();

private:
    QString file(const char* name) const { return m_dir.filePath(QString::fromUtf8(name)); }
    QString textOf(const QString& path) const;

    QTemporaryDir m_dir;
};

namespace
{

SpectrumPoints step(double edge, const std::function<double(int)>& noise)
{
    SpectrumPoints points;
    for (int i = 0; i < 400; ++i) {
        const double energy = 8200.0 + i;
        points.push_back({0.0, energy, 0.3 + 0.2 * std::atan((energy - edge) / 2.0) + noise(i)});
    }
    return points;
}

CountedStack counted()
{
    MapSample map;
    map.columns = 13;
    map.rows = 9;
    return countedStack(map, {8313, 8381, 8390, 8404.5, 8460});
}

struct Run {
    int status;
    QByteArray text;
    QByteArray errors;
};

/// The program on a machine without a display.
Run run(const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(BATCH_PROGRAM), arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, {}};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QString faultOf(const QString& path)
{
    const auto outcome = inspectFile(path);
    const auto* fault = std::get_if<FileFault>(&outcome);
    return fault != nullptr ? faultText(*fault) : QStringLiteral("inspected");
}

/// A page of a TIFF file that says it has so many pixels, with the bytes of one.
QByteArray tiffPage(quint32 columns, quint32 rows)
{
    QByteArray bytes("II*\0\x08\0\0\0", 8);
    const auto put = [&bytes](quint32 value, int count) {
        for (int i = 0; i < count; ++i)
            bytes += static_cast<char>(value >> (8 * i) & 0xff);
    };
    const QVector<std::array<quint32, 2>> tags{{256, columns}, {257, rows}, {258, 8},
                                               {259, 1},       {262, 1},    {273, 8},
                                               {277, 1},       {278, rows}, {279, 1}};
    put(static_cast<quint32>(tags.size()), 2);
    for (const auto& [tag, value] : tags) {
        put(tag, 2);
        put(4, 2); // 32 bits
        put(1, 4);
        put(value, 4);
    }
    put(0, 4);
    return bytes;
}

} // namespace

QString tst_Inspection::textOf(const QString& path) const
{
    const auto outcome = inspectFile(path);
    if (const auto* fault = std::get_if<FileFault>(&outcome))
        return faultText(*fault);
    return QString::fromUtf8(inspectionText(std::get<Inspection>(outcome)));
}

void tst_Inspection::initTestCase()
{
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    QVERIFY(m_dir.isValid());
    const CountedStack stack = counted();
    QVERIFY(writeFxi(file("fxi.h5"), stack));
    QVERIFY(writeExchange(file("exchange.h5"), stack));
    QVERIFY(writeMistral(file("mistral.hdf5"), stack));
    QVERIFY(writeNxdata(file("nexus.nxs"), stack));
    QVERIFY(writeTiffStack(file("pages.tif"), stack));
    QVERIFY(writeImgStack(file("scan.dat"), stack));
    QVERIFY(writeHisStack(file("scan.his"), stack));
}

void tst_Inspection::edgeOfNoisyStep()
{
    const auto noise = [](int i) { return 0.01 * ((i * 7919) % 13 - 6) / 6.0; };
    const auto found = steepestRise(step(8347.0, noise));
    QVERIFY(found);
    QVERIFY(std::abs(*found - 8347.0) <= 1.0);
    SpectrumPoints turned = step(8347.0, noise);
    std::reverse(turned.begin(), turned.end());
    QCOMPARE(steepestRise(turned).value_or(0.0), *found);
}

void tst_Inspection::noEdge()
{
    QVERIFY(!steepestRise({}));
    QVERIFY(!steepestRise({{0, 1, 1}, {0, 2, 2}}));
    QVERIFY(!steepestRise({{0, 1, 3}, {0, 2, 2}, {0, 3, 1}}));
    QVERIFY(!steepestRise({{0, 1, 1}, {0, 1, 2}, {0, 1, 3}}));
    QVERIFY(!steepestRise({{0, 1, 1}, {0, 2, std::nan("")}, {0, 3, 3}}));
    QCOMPARE(steepestRise({{0, 10, 1}, {0, 20, 1.5}, {0, 30, 9}, {0, 40, 9}}).value_or(0.0), 20.0);
}

void tst_Inspection::texts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QByteArray& bytes, const char* text) {
        QTest::newRow(name) << QString::fromLatin1(name) << bytes << QString::fromUtf8(text);
    };
    row("a.xdi",
        "# XDI/1.0\n# Column.1: energy keV\n# Column.2: i0\n# Column.3: itrans\n# ---\n"
        "8.28 1 0.5\n8.29 1 0.5\n8.3 1 0.5\n8.35 1 0.4\n8.36 1 0.2\n8.37 1 0.2\n",
        "format: an XDI spectrum\n"
        "column: 1 \"energy\" (kev), 8.28 to 8.37\n"
        "column: 2 \"i0\", 1 to 1\n"
        "column: 3 \"itrans\", 0.2 to 0.5\n"
        "values: I0 and I, mu-t = ln(I0 / I)\n"
        "energies: 8280 to 8370 eV, 6, steps 10 to 50 eV\n"
        "mu-t: 0.693147 to 1.60944\n"
        "edge: 8360 eV, where mu-t rises most\n"
        "noise: 0 of mu-t, from the scatter below 8310 eV\n");
    row("norm.txt", "# e norm\n9030 1\n9020 0.9\n9010 0.1\n9000 0\n",
        "format: a text of columns\n"
        "column: 1 \"e\", 9000 to 9030\n"
        "column: 2 \"norm\", 0 to 1\n"
        "values: a normalized spectrum\n"
        "energies: 9000 to 9030 eV, 4, step 10 eV\n"
        "mu-t: 0 to 1\n"
        "edge: 9010 eV, where mu-t rises most\n"
        "noise: not known: too few points 50 eV before an edge\n"
        "assumed: the energies are taken for eV\n"
        "assumed: the energies fall; the rows are taken from the last one\n"
        "warning: this is normalized, of no known thickness: fit for the linear combination fit "
        "and "
        "three points, not for t/ts\n");
    row("mixed.txt", "# energy xmu\n7000 1\n7020 2\n7010 1.5\n7010 1.5\n",
        "format: a text of columns\n"
        "column: 1 \"energy\", 7000 to 7020\n"
        "column: 2 \"xmu\", 1 to 2\n"
        "values: mu-t\n"
        "energies: 7000 to 7020 eV, 4, step 10 eV\n"
        "double energies: 1\n"
        "order: the energies rise and fall\n"
        "mu-t: 1 to 2\n"
        "edge: 7010 eV, where mu-t rises most\n"
        "noise: not known: too few points 50 eV before an edge\n"
        "assumed: the energies are taken for eV\n");
    row("plain.txt", "8000 1 2\n8001 3 4\n",
        "format: a text of columns\n"
        "column: 1, 8000 to 8001\n"
        "column: 2, 1 to 3\n"
        "column: 3, 2 to 4\n"
        "rows: 2\n"
        "needed: no column is named energy or angle; say which column is which: columns = { energy "
        "= 1, mut = 2 } or { energy = 1, i0 = 2, i = 3 }\n");
    row("map.txt",
        "# AXIS 0 a b c d 2\n# AXIS 1 a b c d 2\n# ENERGY 1 8313.5\n0 0 0.5 0\n1 0 1.5 0\n0 1 1 0\n"
        "1 1 2 0\n",
        "format: 2D data as text\n"
        "energy: 8313.5 eV\n"
        "size: 2 x 2 pixels\n"
        "image: 8313.5 eV: mu-t 0.5 to 2, mean 1.25\n");
    row("short-map.txt", "# AXIS 0 a b c d 2\n# AXIS 1 a b c d 2\n0 0 0.5 0\n",
        "format: 2D data as text\n"
        "size: 2 x 2 pixels\n"
        "warning: there are 1 records for 4 pixels\n"
        "mu-t: 0.5 to 0.5, mean 0.5\n");
    row("page.tif", tiffPage(1, 1),
        "format: a TIFF image\n"
        "size: 1 x 1 pixels, 1 pages, 8 bits unsigned\n"
        "needed: has no energies; name a text of them: energies = \"...\"\n");
}

void tst_Inspection::texts()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(textOf(create(m_dir.filePath(name), bytes)), text);
}

void tst_Inspection::stacks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("before"); ///< the values
    QTest::addColumn<QString>("after");
    const QString size = QStringLiteral("size: 13 x 9 pixels, 5 frames, ");
    const QString energies = QStringLiteral("energies: 8313 to 8460 eV, 5, steps 9 to 68 eV\n");
    const QString ev = QStringLiteral("assumed: the energies are taken for eV\n");
    QTest::newRow("fxi") << QStringLiteral("fxi.h5")
                         << QStringLiteral("format: an HDF5 file\ndata set: /X_eng: 5, 64 bits "
                                           "real\ndata set: /img_xanes: 5 x 9 x 13, 32 bits real\n"
                                           "kind: fxi\n") +
                                energies + size + QStringLiteral("32 bits real\n")
                         << QStringLiteral("assumed: the energies, all below 100, are taken for "
                                           "keV\nvalues: transmission, mu-t = -ln T\n");
    QTest::newRow("exchange")
        << QStringLiteral("exchange.h5")
        << QStringLiteral("format: an HDF5 file\n"
                          "data set: /exchange/data: 5 x 9 x 13, 16 bits unsigned\n"
                          "data set: /exchange/data_dark: 3 x 9 x 13, 16 bits unsigned\n"
                          "data set: /exchange/data_white: 5 x 9 x 13, 16 bits unsigned\n"
                          "data set: /exchange/energy: 5, 64 bits real\nkind: exchange\n") +
               energies + size + QStringLiteral("16 bits unsigned\n")
        << ev + QStringLiteral("values: counts, mu-t = ln((flat - dark) / (frame - dark))\n");
    QTest::newRow("mistral")
        << QStringLiteral("mistral.hdf5")
        << QStringLiteral(
               "format: an HDF5 file\n"
               "data set: /SpecNormalized/energy: 5, 64 bits real\n"
               "data set: /SpecNormalized/spectroscopy_normalized_aligned: 5 x 9 x 13, 32 bits "
               "real\n"
               "data set: /SpecNormalized/x_pixel_size: 1, 64 bits real\n"
               "data set: /SpecNormalized/y_pixel_size: 1, 64 bits real\nkind: mistral\n") +
               energies + size + QStringLiteral("32 bits real\npixel size: 0.5 x 0.5 micrometres\n")
        << ev + QStringLiteral("values: transmission, mu-t = -ln T\n");
}

/// The figures are those of the counts that were written.
void tst_Inspection::stacks()
{
    QFETCH(QString, name);
    QFETCH(QString, before);
    QFETCH(QString, after);
    const CountedStack stack = counted();
    const std::vector<double> muts = stack.mut();
    const auto n = static_cast<std::ptrdiff_t>(stack.pixels());
    std::vector<double> means;
    for (std::ptrdiff_t k = 0; k < 5; ++k)
        means.push_back(std::accumulate(muts.begin() + k * n, muts.begin() + (k + 1) * n, 0.0) /
                        static_cast<double>(n));
    const auto [least, largest] = std::minmax_element(muts.begin() + 2 * n, muts.begin() + 3 * n);
    const auto six = [](double value) { return QString::number(value, 'g', 6); };
    const QString figures =
        QStringLiteral(
            "image: 8390 eV: mu-t %1 to %2, mean %3\n"
            "mu-t: %4 to %5, means of all pixels\n"
            "edge: 8381 eV, where mu-t rises most; a step of 68 eV is too wide to tell an "
            "edge\n"
            "noise: not known: too few points 50 eV before an edge\n")
            .arg(six(*least), six(*largest), six(means[2]),
                 six(*std::min_element(means.begin(), means.end())),
                 six(*std::max_element(means.begin(), means.end())));
    QCOMPARE(textOf(m_dir.filePath(name)), before + after + figures);
}

void tst_Inspection::cameraFiles()
{
    const QString index = textOf(file("scan.dat"));
    QVERIFY2(index.startsWith(QStringLiteral(
                 "format: an index of camera frames (img)\n"
                 "energies: 8313 to 8460 eV, 5, steps 9 to 68 eV\nframes: 5 of 5 are there\n"
                 "needed: reference = \"...\", the index of the frames without sample\n"
                 "size: 13 x 9 pixels, 16 bits unsigned\nmu-t: ")),
             qPrintable(index));
    QVERIFY(index.contains(QStringLiteral("edge: 8381 eV")));
    QVERIFY(index.contains(QStringLiteral("image: 8390 eV: counts ")));
    const QString sequence = textOf(file("scan.his"));
    QVERIFY(sequence.startsWith(QStringLiteral(
        "format: a sequence of camera frames (his)\nsize: 13 x 9 pixels, 5 frames, 16 bits "
        "unsigned\nneeded: energies = ")));
    QVERIFY(sequence.contains(QStringLiteral("image: frame 3: counts ")));
    QVERIFY(textOf(file("scan.dat_000.img"))
                .startsWith(QStringLiteral("format: a camera frame (img)\nsize: 13 x 9 pixels, 1 "
                                           "frame, 16 bits unsigned\n")));
    const QString unsaid = textOf(file("pages.tif"));
    QVERIFY(unsaid.contains(QStringLiteral(
        "values: not said\nneeded: does not say what its values are: values = \"mu-t\", "
        "\"transmission\" or \"counts\"\nimage: 8390 eV: numbers ")));
    QVERIFY(!unsaid.contains(QStringLiteral("edge")));
}

void tst_Inspection::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << QByteArray() << QStringLiteral(": is empty");
    QTest::newRow("words") << QByteArray("nothing\n") << QStringLiteral(": is of no known kind");
    QTest::newRow("zeros") << QByteArray(1000, '\0') << QStringLiteral(": is of no known kind");
    QTest::newRow("row") << QByteArray("# XDI/1.0\n# energy xmu\n8000 1\n8001\n")
                         << QStringLiteral(":4: has 1 numbers where line 3 has 2");
    QTest::newRow("hdf5") << QByteArray("\x89HDF\r\n\x1a\n")
                          << QStringLiteral(": is no HDF5 file that can be opened");
    QTest::newRow("tiff") << QByteArray("II*\0\x08\0\0\0", 8)
                          << QStringLiteral(": is no TIFF file that can be opened");
    QTest::newRow("prj") << QByteArray("# Athena project file\n")
                         << QStringLiteral(": is an Athena project (.prj), which is not read; "
                                           "export each group as mu(E)");
    QTest::newRow("map") << QByteArray("# AXIS 0 a b c d 2\n0 0 1 1\n")
                         << QStringLiteral(": has no 2D data with axes: lines \"# AXIS 0\" and \"# "
                                           "AXIS 1\" with their sizes, and rows of x, y, I and I0");
    QTest::newRow("frame") << QByteArray("IM\0\0\x02\0\x02\0", 8) + QByteArray(56, '\0')
                           << QStringLiteral(": frame 1 is cut off");
}

void tst_Inspection::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    const QString path = create(file("refused"), bytes);
    QCOMPARE(faultOf(path), path + reason);
}

/// Names that would drive a terminal, or fill it.
void tst_Inspection::namesAreHarmless()
{
    QByteArray header = "# energy x\x1bm";
    QByteArray row = "8000 1";
    for (int i = 0; i < 99; ++i) {
        header += " n" + QByteArray(i == 0 ? 2000 : 1, 'n');
        row += " 1";
    }
    const QString text = textOf(create(file("names.txt"), header + '\n' + row + "\n8001 2" +
                                                              QByteArray(" 1").repeated(99)));
    QVERIFY(!text.contains(QChar(0x1b)));
    QVERIFY2(text.contains(QStringLiteral("column: 2 \"x?m\", 1 to 2\n")), qPrintable(text));
    QVERIFY(text.contains(QStringLiteral("columns: 101, of which 30 are shown\n")));
    QVERIFY(!text.contains(QString(400, QLatin1Char('n'))));
}

/// What a file says of its size is not believed.
void tst_Inspection::hugePages()
{
    create(file("huge.txt"), "8000\n");
    const QString path = create(file("huge.tif"), tiffPage(3000000000U, 1));
    StackSource source;
    source.path = path;
    source.values = StackValues::MuT;
    FileFault fault;
    source.energies = file("huge.txt");
    QVERIFY(!openStack(source, fault));
    QCOMPARE(fault.reason, QStringLiteral("has images of a size that makes no sense"));
    const QString text = textOf(path);
    QVERIFY2(text.contains(QStringLiteral("makes no sense")), qPrintable(text));
    create(file("large.txt"), "8000\n");
    QCOMPARE(textOf(create(file("large.tif"), tiffPage(1 << 20, 1 << 20))),
             file("large.tif") + QStringLiteral(": has a strip that cannot be read"));
}

void tst_Inspection::largeFramesAreLookedAtInTheMiddle()
{
    MapSample map;
    map.columns = 2060;
    map.rows = 2;
    QVERIFY(writeFxi(file("wide.h5"), countedStack(map, {8313, 8381, 8390})));
    QVERIFY(textOf(file("wide.h5"))
                .contains(QStringLiteral("looked at: the middle, 2048 x 2 pixels\n")));
}

void tst_Inspection::pictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("hasSpectrum");
    QTest::addColumn<bool>("hasEdge");
    QTest::addColumn<bool>("hasImage");
    QTest::addColumn<int>("unit");
    QTest::newRow("spectrum") << QStringLiteral("drawn.txt") << true << true << false
                              << int(PositionUnit::Stage);
    QTest::newRow("stack") << QStringLiteral("fxi.h5") << true << true << true
                           << int(PositionUnit::Pixels);
    QTest::newRow("sizes") << QStringLiteral("mistral.hdf5") << true << true << true
                           << int(PositionUnit::Micrometres);
    QTest::newRow("pages") << QStringLiteral("pages.tif") << true << false << true
                           << int(PositionUnit::Pixels);
    QTest::newRow("index") << QStringLiteral("scan.dat") << true << true << true
                           << int(PositionUnit::Pixels);
    QTest::newRow("frames") << QStringLiteral("scan.his") << false << false << true
                            << int(PositionUnit::Pixels);
}

/// The graph is 560 x 420 pixels, at the right, with the red line of the edge.
void tst_Inspection::pictures()
{
    QFETCH(QString, name);
    QFETCH(bool, hasSpectrum);
    QFETCH(bool, hasEdge);
    QFETCH(bool, hasImage);
    QFETCH(int, unit);
    create(file("drawn.txt"), "# energy xmu\n8313 1\n8381 1.1\n8390 2\n8404 2.1\n");
    const ToolkitWarnings warnings;
    const auto outcome = inspectFile(m_dir.filePath(name));
    QVERIFY(std::holds_alternative<Inspection>(outcome));
    QCOMPARE(int(std::get<Inspection>(outcome).positions), unit);
    const QImage image = inspectionPicture(std::get<Inspection>(outcome));
    QCOMPARE(warnings.all(), QString());
    QVERIFY(!image.isNull());
    if (!hasImage)
        QCOMPARE(image.size(), QSize(560, 420));
    else
        QVERIFY(image.width() > (hasSpectrum ? 560 + 300 : 300));
    int red = 0;
    const int left = std::max(0, image.width() - 560);
    for (int x = left; x < image.width(); ++x)
        red += image.pixel(x, 200) == qRgb(255, 0, 0) ? 1 : 0;
    if (hasSpectrum)
        QCOMPARE(red > 0, hasEdge);
}

void tst_Inspection::program()
{
    const QString picture = file("drawn/fxi.png");
    const Run good =
        run({QStringLiteral("--inspect"), file("fxi.h5"), QStringLiteral("--picture"), picture});
    QCOMPARE(good.errors, QByteArray());
    QCOMPARE(good.status, 0);
    QCOMPARE(QString::fromUtf8(good.text), textOf(file("fxi.h5")));
    QVERIFY(!QImage(picture).isNull());
    const QString bad = create(file("bad"), "nothing\n");
    const Run refused = run({QStringLiteral("--inspect"), bad});
    QCOMPARE(refused.status, 2);
    QCOMPARE(refused.text, QByteArray());
    QCOMPARE(refused.errors, bad.toUtf8() + ": is of no known kind\n");
    QCOMPARE(run({QStringLiteral("--inspect"), bad, bad}).errors,
             QByteArray("--inspect takes one file.\n"));
    QCOMPARE(run({QStringLiteral("--picture"), bad, bad}).errors,
             QByteArray("--picture goes with --inspect or --rank.\n"));
    QCOMPARE(run({QStringLiteral("--inspect"), m_dir.path()}).errors,
             m_dir.path().toUtf8() + ": cannot be opened: it is a folder\n");
}

/// Neither the file itself nor one beside it that is read with it.
void tst_Inspection::pictureReplacesNothing()
{
    for (const char* const name : {"scan.dat", "scan.dat_002.img"}) {
        const QByteArray before = contents(file(name));
        const Run refused = run({QStringLiteral("--inspect"), file("scan.dat"),
                                 QStringLiteral("--picture"), file(name)});
        QCOMPARE(refused.status, 2);
        QCOMPARE(refused.errors, file(name).toUtf8() + ": would be written over the file itself\n");
        QCOMPARE(contents(file(name)), before);
    }
    const Run nowhere = run({QStringLiteral("--inspect"), file("fxi.h5"),
                             QStringLiteral("--picture"), QStringLiteral("/proc/nowhere/x.png")});
    QCOMPARE(nowhere.status, 3);
    QCOMPARE(nowhere.errors, QByteArray("/proc/nowhere/x.png: cannot be written\n"));
}

void tst_Inspection::guide_data()
{
    QTest::addColumn<QString>("page");
    for (const char* const language : {"en", "ja"})
        QTest::newRow(language)
            << QStringLiteral(SOURCE_FOLDER "/docs/%1/formats.md").arg(QLatin1String(language));
}

/// What the guide shows is what the program says of the examples.
void tst_Inspection::guide()
{
    QFETCH(QString, page);
    const QString text = QString::fromUtf8(contents(page));
    const QString command = QStringLiteral("    $ drovik-batch --inspect ");
    int shown = 0;
    for (int at = text.indexOf(command); at >= 0; at = text.indexOf(command, at + 1), ++shown) {
        QStringList lines =
            text.mid(at, text.indexOf(QStringLiteral("\n\n"), at) - at).split(QLatin1Char('\n'));
        const QString name = lines.takeFirst().mid(command.size());
        for (QString& line : lines)
            line.remove(0, 4);
        QCOMPARE(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'),
                 textOf(QStringLiteral(BUILD_FOLDER "/examples/") + name));
    }
    QCOMPARE(shown, 2);
}

QTEST_MAIN(tst_Inspection)
#include "tst_Inspection.moc"
