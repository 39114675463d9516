#include "formats/SpectrumFile.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/Files.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

/// Spectra as others write them.
class tst_SpectrumFile : public QObject
{
    Q_OBJECT
private slots:
    void kinds_data();
    void kinds();
    void xdiTransmission();
    void lineEnds_data();
    void lineEnds();
    void headerFaultsAreNoReason();
    void units_data();
    void units();
    void anglesInRadians();
    void wordsThatNameColumns_data();
    void wordsThatNameColumns();
    void noThickness_data();
    void noThickness();
    void chosenColumns();
    void chosenDegrees();
    void fallingEnergiesAreReversed();
    void rowsWithoutValueAreLeftOut();
    void refused_data();
    void refused();
    void beamline();
    void beamlineMode();
    void fileFault();
    void brokenOffAnywhere();
};

namespace
{

FoundSpectrum spectrumOf(const QByteArray& text, const SpectrumSource& source = {})
{
    const auto outcome = readSpectrumFile(ArrayBytes(text), source);
    if (const auto* fault = std::get_if<FileFault>(&outcome))
        qFatal("refused: %s", qPrintable(faultText(*fault)));
    return std::get<FoundSpectrum>(outcome);
}

/// "line: reason".
QString refusalOf(const QByteArray& text, const SpectrumSource& source = {})
{
    const auto outcome = readSpectrumFile(ArrayBytes(text), source);
    const auto* fault = std::get_if<FileFault>(&outcome);
    return fault == nullptr
               ? QStringLiteral("read")
               : QStringLiteral("%1: %2").arg(QString::number(fault->line), fault->reason);
}

QVector<double> energies(const FoundSpectrum& spectrum)
{
    QVector<double> all;
    for (const SpectrumPoint& point : spectrum.points)
        all += point.energy;
    return all;
}

QVector<double> muts(const FoundSpectrum& spectrum)
{
    QVector<double> all;
    for (const SpectrumPoint& point : spectrum.points)
        all += point.mut;
    return all;
}

bool near(double a, double b)
{
    return std::abs(a - b) <= 1e-12 * std::abs(b);
}

} // namespace

void tst_SpectrumFile::kinds_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("kind");
    const auto row = [](const char* name, const QByteArray& bytes, FileKind kind) {
        QTest::newRow(name) << bytes << static_cast<int>(kind);
    };
    row("empty", "", FileKind::Empty);
    row("words", "nothing to see\n", FileKind::Unknown);
    row("binary", QByteArray("\1\2\0\3", 4), FileKind::Unknown);
    row("beamline", "title\n D= 3.1 A\n Offset 0 0\n1 16 1 2 1\n", FileKind::Beamline);
    row("2D text", "# AXIS 0 x mm s 1 2 points\n0 0 1 2\n", FileKind::MapText);
    row("XDI", "# XDI/1.0\n# ---\n7000 1\n", FileKind::Xdi);
    row("columns", "% energy mu\n7000 1\n", FileKind::Columns);
    row("columns in UTF-16",
        QByteArray("\xff\xfe"
                   "7\0 \0"
                   "1\0\n\0",
                   10),
        FileKind::Columns);
    row("one number a line", "7000\n7001\n", FileKind::Unknown);
    row("TIFF, little endian", QByteArray("II*\0rest", 8), FileKind::Tiff);
    row("TIFF, big endian", QByteArray("MM\0*rest", 8), FileKind::Tiff);
    row("BigTIFF", QByteArray("II+\0rest", 8), FileKind::Tiff);
    row("HDF5", QByteArray("\x89HDF\r\n\x1a\n"), FileKind::Hdf5);
    row("HDF5 behind a user's block", QByteArray(1024, ' ') + "\x89HDF\r\n\x1a\n", FileKind::Hdf5);
    row("OLE2", QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"), FileKind::Ole);
    row("EDF", "{\nHeaderID = EH:000001 ;\n", FileKind::Edf);
    row("STXM", "ScanDefinition = { Label = \"x\"", FileKind::StxmHeader);
    row("Athena", "# Athena project file -- 0.9\n", FileKind::AthenaProject);
    row("gzip", QByteArray("\x1F\x8B\x08"), FileKind::Compressed);
    QByteArray frame = QByteArray("IM", 2) + QByteArray(62, '\0') + QByteArray(12, '\7');
    frame[4] = 3;
    frame[6] = 2;
    frame[12] = 2;
    row("camera frame", frame, FileKind::CameraFrame);
    QByteArray sequence = frame + frame;
    sequence[14] = 2;
    row("camera sequence", sequence, FileKind::CameraSequence);
    row("a text that begins with IM",
        "IM a text and no frame, but as long as the header of a frame"
        " would be\n1 2\n",
        FileKind::Columns);
}

void tst_SpectrumFile::kinds()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, kind);
    QCOMPARE(static_cast<int>(fileKindOf(ArrayBytes(bytes))), kind);
}

void tst_SpectrumFile::xdiTransmission()
{
    const FoundSpectrum spectrum = spectrumOf("# XDI/1.0 GSE/1.0\n"
                                              "# Column.1: energy eV\n"
                                              "# Column.2: i0\n"
                                              "# Column.3: itrans\n"
                                              "# Column.4: mutrans\n"
                                              "# Element.symbol: Fe\n"
                                              "# ///\n"
                                              "# Column.4: i0 is no field here\n"
                                              "# -----\n"
                                              "# energy i0 itrans mutrans\n"
                                              "7100.5 100 50 0.5\n"
                                              "7101 100 25 0.75\n");
    QCOMPARE(spectrum.kind, FileKind::Xdi);
    QCOMPARE(energies(spectrum), QVector<double>({7100.5, 7101.0}));
    QCOMPARE(muts(spectrum), QVector<double>({0.5, 0.75}));
    QCOMPARE(spectrum.values, SpectrumValues::MuT);
    QVERIFY(spectrum.assumed.isEmpty());
    QVERIFY(spectrum.warnings.isEmpty());
    // sin(angle) = 12398.424360387684 / (2 * 3.1355316 * 7101)
    QVERIFY(near(std::sin(spectrum.points[1].angle * 3.1415926535 / 180.0),
                 12398.424360387684 / (2 * 3.1355316 * 7101)));
}

void tst_SpectrumFile::lineEnds_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("LF") << QByteArray("\n");
    QTest::newRow("CRLF") << QByteArray("\r\n");
    QTest::newRow("CR") << QByteArray("\r");
}

void tst_SpectrumFile::lineEnds()
{
    QFETCH(QByteArray, end);
    QByteArray text = "# XDI/1.0\n# Column.1: energy eV\n# Column.2: xmu\n# ---\n7000 1\n7001 2";
    const FoundSpectrum spectrum = spectrumOf(text.replace('\n', end));
    QCOMPARE(energies(spectrum), QVector<double>({7000.0, 7001.0}));
    QCOMPARE(muts(spectrum), QVector<double>({1.0, 2.0}));
    QCOMPARE(refusalOf(text + end + "7002 x" + end), QStringLiteral("7: \"x\" is no number"));
}

void tst_SpectrumFile::headerFaultsAreNoReason()
{
    // Of two fields the last one counts, whatever the case; what is no field is passed over.
    const FoundSpectrum spectrum = spectrumOf("# XDI/1.0\n"
                                              "# Column.1: angle degrees\n"
                                              "# COLUMN.1: Energy KEV || angle of the crystal\n"
                                              "# Column.0: i0\n"
                                              "# Column.99999999999999999999: i0\n"
                                              "# Column.x: i0\n"
                                              "# no field at all\n"
                                              "# Broken field: i0\n"
                                              "# column.2: MuTrans\n"
                                              "7.1 1\n");
    QCOMPARE(energies(spectrum), QVector<double>({7100.0}));
    QCOMPARE(muts(spectrum), QVector<double>({1.0}));
}

void tst_SpectrumFile::units_data()
{
    QTest::addColumn<QByteArray>("column");
    QTest::addColumn<double>("number");
    QTest::addColumn<double>("energy");
    QTest::addColumn<QString>("assumed");
    const double hc = 12.398424360387684;
    QTest::newRow("eV") << QByteArray("energy eV") << 7100.0 << 7100.0 << QString();
    QTest::newRow("keV") << QByteArray("energy keV") << 7.1 << 7100.0 << QString();
    QTest::newRow("small, no unit")
        << QByteArray("energy") << 7.1 << 7100.0
        << QStringLiteral("the energies, all below 100, are taken for keV");
    QTest::newRow("large, no unit") << QByteArray("energy") << 7100.0 << 7100.0
                                    << QStringLiteral("the energies are taken for eV");
    QTest::newRow("what follows the bars is no unit")
        << QByteArray("energy || keV readback") << 7100.0 << 7100.0
        << QStringLiteral("the energies are taken for eV");
    // sin 30 degrees is a half.
    QTest::newRow("degrees") << QByteArray("angle degrees") << 30.0 << hc / 3.0 * 1000.0
                             << QString();
}

void tst_SpectrumFile::units()
{
    QFETCH(QByteArray, column);
    QFETCH(double, number);
    QFETCH(double, energy);
    QFETCH(QString, assumed);
    const FoundSpectrum spectrum =
        spectrumOf("# XDI/1.0\n# Mono.d_spacing: 3.0 angstrom\n# Column.1: " + column +
                   "\n# Column.2: mutrans\n" + QByteArray::number(number) + " 1\n");
    QVERIFY2(std::abs(spectrum.points[0].energy - energy) < 1e-6,
             qPrintable(QString::number(spectrum.points[0].energy, 'g', 17)));
    QCOMPARE(spectrum.assumed.join(QString()), assumed);
}

void tst_SpectrumFile::anglesInRadians()
{
    const FoundSpectrum spectrum = spectrumOf("# XDI/1.0\n# Mono.d_spacing: 3.0\n"
                                              "# Column.1: angle radians\n# Column.2: mutrans\n"
                                              "0.5235987756 1\n");
    QVERIFY(std::abs(spectrum.points[0].energy - 12398.424360387684 / 3.0) < 1e-5);
}

void tst_SpectrumFile::wordsThatNameColumns_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("mut");
    const double ln2 = std::log(2.0);
    QTest::newRow("a last comment")
        << QByteArray("# a title\n# energy xmu bkg\n7000 0.5 9\n") << 0.5;
    QTest::newRow("a heading, commas") << QByteArray("Energy(eV),I0,It\n7000,2,1\n") << ln2;
    QTest::newRow("a heading, tabs") << QByteArray("energy\tI0\tI1\n7000\t2\t1\n") << ln2;
    QTest::newRow("semicolons") << QByteArray("energy;i0;i\n7000;2;1;\n") << ln2;
    QTest::newRow("a title that begins with a number")
        << QByteArray("2 scans\n%energy mu(E)\n7000 0.25\n") << 0.25;
    QTest::newRow("mu-t before intensities")
        << QByteArray("# energy i0 itrans mutrans\n7000 2 1 0.7\n") << 0.7;
    QTest::newRow("transmission before fluorescence")
        << QByteArray("# energy ifluor i0 itrans\n7000 9 2 1\n") << ln2;
    QTest::newRow("a field before the last comment")
        << QByteArray("# Column.2: xmu\n# energy i0 mutrans\n7000 0.1 9\n") << 9.0;
    QTest::newRow("signs of comments")
        << QByteArray("! title\n* more\n; yet more\n# energy xmu\n7000 0.5\n# between\n7001 1\n")
        << 0.5;
}

void tst_SpectrumFile::wordsThatNameColumns()
{
    QFETCH(QByteArray, text);
    QFETCH(double, mut);
    const FoundSpectrum spectrum = spectrumOf(text);
    QCOMPARE(spectrum.kind, FileKind::Columns);
    QCOMPARE(spectrum.points[0].energy, 7000.0);
    QVERIFY(near(spectrum.points[0].mut, mut));
}

void tst_SpectrumFile::noThickness_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("warning");
    const QString end =
        QStringLiteral(", of no known thickness: fit for the linear combination fit "
                       "and three points, not for t/ts");
    QTest::newRow("mufluor") << QByteArray("# energy mufluor norm\n7000 3 1\n") << 3.0
                             << QStringLiteral("this is fluorescence") + end;
    QTest::newRow("ifluor / i0") << QByteArray("# energy i0 ifluor\n7000 4 1\n") << 0.25
                                 << QStringLiteral("this is fluorescence") + end;
    QTest::newRow("norm") << QByteArray("# energy norm nbkg flat\n7000 0.9 1 1\n") << 0.9
                          << QStringLiteral("this is normalized") + end;
    QTest::newRow("flat") << QByteArray("# energy flat\n7000 0.9\n") << 0.9
                          << QStringLiteral("this is normalized") + end;
}

void tst_SpectrumFile::noThickness()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    QFETCH(QString, warning);
    const FoundSpectrum spectrum = spectrumOf(text);
    QCOMPARE(spectrum.points[0].mut, value);
    QCOMPARE(spectrum.warnings, QStringList(warning));
}

void tst_SpectrumFile::chosenColumns()
{
    SpectrumSource source;
    source.columns.energy = 3;
    source.columns.mut = 1;
    source.columns.unit = EnergyUnit::KiloElectronVolt;
    const QByteArray text = "# i0 energy mutrans\n0.5 2 7.1\n";
    const FoundSpectrum spectrum = spectrumOf(text, source);
    QCOMPARE(energies(spectrum), QVector<double>({7100.0}));
    QCOMPARE(muts(spectrum), QVector<double>({0.5}));

    source.columns.mut = 0;
    source.columns.i0 = 2;
    source.columns.i = 1;
    QVERIFY(near(spectrumOf(text, source).points[0].mut, std::log(4.0)));

    const QString needed =
        QStringLiteral("0: say which column is which: columns = { energy = 1, mut "
                       "= 2 } or { energy = 1, i0 = 2, i = 3 }");
    source.columns.mut = 1;
    QCOMPARE(refusalOf(text, source), needed);
    source.columns.mut = 0;
    source.columns.i = 0;
    QCOMPARE(refusalOf(text, source), needed);
    source.columns.i = 4;
    QCOMPARE(refusalOf(text, source),
             QStringLiteral("0: has 3 columns; there is no column 4 for i"));
}

void tst_SpectrumFile::chosenDegrees()
{
    SpectrumSource source;
    source.columns.energy = 1;
    source.columns.mut = 2;
    source.columns.unit = EnergyUnit::Degrees;
    QCOMPARE(refusalOf("30 1\n", source),
             QStringLiteral("0: has angles and no spacing of the lattice planes; give it in "
                            "angstrom: unit = \"degrees\", d = 3.1356"));
    source.columns.spacing = 3.0;
    QVERIFY(std::abs(spectrumOf("30 1\n", source).points[0].energy - 12398.424360387684 / 3.0) <
            1e-5);
}

void tst_SpectrumFile::fallingEnergiesAreReversed()
{
    const FoundSpectrum falling = spectrumOf("# energy eV xmu\n# energy xmu\n3 1\n2 2\n2 3\n1 4\n");
    QCOMPARE(energies(falling), QVector<double>({1000, 2000, 2000, 3000}));
    QCOMPARE(muts(falling), QVector<double>({4, 3, 2, 1}));
    QCOMPARE(falling.assumed.last(),
             QStringLiteral("the energies fall; the rows are taken from the last one"));
    const FoundSpectrum mixed = spectrumOf("# energy xmu\n300 1\n100 2\n200 3\n");
    QCOMPARE(energies(mixed), QVector<double>({300, 100, 200}));
    QCOMPARE(mixed.assumed, QStringList(QStringLiteral("the energies are taken for eV")));
}

void tst_SpectrumFile::rowsWithoutValueAreLeftOut()
{
    const FoundSpectrum spectrum =
        spectrumOf("# energy i0 itrans\n7000 0 1\n7001 1 0\n7002 2 1\n7003 -1 1\n7004 nan 1\n");
    QCOMPARE(energies(spectrum), QVector<double>({7002.0}));
    QCOMPARE(spectrum.warnings, QStringList(QStringLiteral(
                                    "4 rows without a value are left out, the first in line 2")));
}

void tst_SpectrumFile::refused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& text, const char* reason) {
        QTest::newRow(name) << text << QString::fromUtf8(reason);
    };
    const QByteArray xdi = "# XDI/1.0\n# Column.1: energy eV\n# Column.2: mutrans\n";
    row("empty", "", "0: is empty");
    row("no rows", xdi, "0: has no rows of numbers");
    row("a row too short", xdi + "7000 1\n7001\n", "5: has 1 numbers where line 4 has 2");
    row("a row too long", xdi + "7000 1\n7001 1 2\n", "5: has 3 numbers where line 4 has 2");
    row("a word in a row", xdi + "7000 1\n7001 1x\n", "5: \"1x\" is no number");
    row("a number too large", xdi + "7000 1\n7001 1e400\n", "5: \"1e400\" is no number");
    row("an energy of nan", xdi + "7000 1\nNaN 1\n", "5: the energy is no positive number");
    row("an energy of 0", xdi + "0 1\n", "4: the energy is no positive number");
    row("no value at all", xdi + "7000 nan\n", "0: has no row with a value");
    row("steps", "# XDI/1.0\n# Column.1: energy steps\n# Column.2: mutrans\n1 1\n",
        "0: the unit \"steps\" is none of an energy or angle");
    row("angles without a crystal", "# XDI/1.0\n# Column.1: angle deg\n# Column.2: mutrans\n30 1\n",
        "0: has angles and no spacing of the lattice planes; give it in angstrom: unit = "
        "\"degrees\", d = 3.1356");
    row("no energy", "# x y\n1 2\n",
        "0: no column is named energy or angle; say which column is which: columns = { energy = 1, "
        "mut = 2 } or { energy = 1, i0 = 2, i = 3 }");
    row("no value", "# energy y\n1 2\n",
        "0: no column is named mutrans, xmu, i0 with itrans, mufluor or norm; say which column is "
        "which: columns = { energy = 1, mut = 2 } or { energy = 1, i0 = 2, i = 3 }");
    row("decimal commas", "# energy xmu\n7112,5 0,53\n",
        "2: a comma stands within a number; decimal points are needed");
    row("decimal commas, semicolons", "# energy xmu\n7112,5;0,53\n",
        "2: a comma stands within a number; decimal points are needed");
    row("an empty field", "# energy xmu\n7112,,0.5\n", "2: \"\" is no number");
    row("TIFF", QByteArray("II*\0rest", 8), "0: is a TIFF image and no spectrum");
    row("HDF5", "\x89HDF\r\n\x1a\n", "0: is an HDF5 file and no spectrum");
    row("Athena project", "# Athena project file\n",
        "0: is an Athena project (.prj), which is not read; export each group as mu(E)");
    row("Xradia", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1",
        "0: is an OLE2 file, as Xradia microscopes write (.xrm, .txrm), which is not read; export "
        "the images as TIFF");
    row("beamline without rows", " D= 3 A\n Offset 0 0\n",
        "0: has no rows behind a line with \"Offset\"");
}

void tst_SpectrumFile::refused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, reason);
    QCOMPARE(refusalOf(text), reason);
}

void tst_SpectrumFile::beamline()
{
    const FoundSpectrum spectrum =
        spectrumOf(" D= 3 A\n Mode 0 0 1 2\n Offset 0 0 0 0\n 30 30 1 2 1\n");
    QCOMPARE(spectrum.kind, FileKind::Beamline);
    QVERIFY(std::abs(spectrum.points[0].energy - 12398.424360387684 / 3.0) < 1e-5);
    QVERIFY(near(spectrum.points[0].mut, std::log(2.0)));
    QVERIFY(spectrum.warnings.isEmpty());
}

void tst_SpectrumFile::beamlineMode()
{
    const FoundSpectrum spectrum =
        spectrumOf(" D= 3 A\n Mode 0 0 1 3\n Offset 0 0 0 0\n 30 30 1 2 1\n");
    QCOMPARE(spectrum.warnings,
             QStringList(QStringLiteral(
                 "the line \"Mode\" does not say that the fourth and fifth column are I0 and I of "
                 "transmission, as which they are read")));
}

void tst_SpectrumFile::fileFault()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.xdi"));
    auto outcome = readSpectrumFile(path, {});
    QCOMPARE(faultText(std::get<FileFault>(outcome)),
             path + QStringLiteral(": cannot be opened: there is no such file"));
    create(path, "# XDI/1.0\n# energy xmu\n1 2\n1\n");
    outcome = readSpectrumFile(path, {});
    QCOMPARE(faultText(std::get<FileFault>(outcome)),
             path + QStringLiteral(":4: has 1 numbers where line 3 has 2"));
    create(path, "# XDI/1.0\n# energy xmu\n7000 2\n");
    outcome = readSpectrumFile(path, {});
    QCOMPARE(std::get<FoundSpectrum>(outcome).points.size(), std::size_t{1});
}

/// A text that is cut anywhere is read or refused with one line; no row is made up.
void tst_SpectrumFile::brokenOffAnywhere()
{
    const QByteArray text = "# XDI/1.0\r\n# Column.1: energy keV\n# Column.2: mutrans\r# ---\n"
                            "7.125 0.5\n7.250 0.75\n7.375 1\n";
    const QVector<double> known = {7000, 7100, 7120, 7125, 7200, 7250, 7300, 7370, 7375};
    for (int size = 0; size < text.size(); ++size) {
        const auto outcome = readSpectrumFile(ArrayBytes(text.left(size)), {});
        if (const auto* fault = std::get_if<FileFault>(&outcome)) {
            QVERIFY(!fault->reason.isEmpty());
            QVERIFY(!fault->reason.contains(QLatin1Char('\n')));
            continue;
        }
        for (const SpectrumPoint& point : std::get<FoundSpectrum>(outcome).points)
            QVERIFY(std::any_of(known.begin(), known.end(),
                                [&](double e) { return near(point.energy, e); }));
    }
}

QTEST_GUILESS_MAIN(tst_SpectrumFile)
#include "tst_SpectrumFile.moc"
