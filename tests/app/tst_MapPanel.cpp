#include "app/Body.h"
#include "tests/support/AddressLimit.h"
#include "tests/support/Exact.h"
#include "tests/support/Files.h"
#include "tests/support/PanelActions.h"
#include "tests/support/PlainMapMethods.h"
#include "tests/support/SpectrumFile.h"
#include "text/NumberText.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>

namespace
{

constexpr int columns = 5;
constexpr int rows = 4;
constexpr int pixels = columns * rows;
const std::array<double, 5> energies = {8313, 8381, 8390, 8404.5, 8460};

/// mu-t of two valence states that are alike but for a bump at the V point, 8390 eV.
double state(double energy, double bump)
{
    const double step = energy < 8350 ? 0.0 : 1.0 + 0.0005 * (energy - 8350);
    return step + bump * std::exp(-std::pow((energy - 8390) / 2, 2));
}

double shareOf(int pixel)
{
    return 0.25 * (pixel % columns);
}

double thicknessOf(int pixel)
{
    return 0.5 + 0.25 * (pixel / columns);
}

double pixelMut(int pixel, double energy)
{
    const double a = shareOf(pixel);
    return thicknessOf(pixel) * (a * state(energy, 0.5) + (1 - a) * state(energy, 0.1)) + 0.125;
}

QByteArray header(int nx, int ny)
{
    return "# made map\n# AXIS 0 x share step 1 " + QByteArray::number(nx) +
           " points\n# AXIS 1 y thickness step 1 " + QByteArray::number(ny) + " points\n";
}

QByteArray records(double energy)
{
    QByteArray text;
    for (int i = 0; i < pixels; ++i)
        text += QByteArray::number(i % columns) + ' ' + QByteArray::number(10 * (i / columns)) +
                ' ' + spectra::number(1e6 * std::exp(-pixelMut(i, energy))) + " 1000000\n";
    return text;
}

} // namespace

class tst_MapPanel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { m_panel.reset(); }

    void threePointMap();
    void exactMap();
    void leastSquaresMaps_data();
    void leastSquaresMaps();
    void rowInUseWithoutDataIsMissing();
    void failedReloadMakesTheRowInvalid();
    void refusedFileIsToldOf();
    void energyOfTheFile();
    void refusals();
    void refusalsKeepEarlierResults_data();
    void refusalsKeepEarlierResults();
    void boxesBeyondTheMemory();
    void thicknessButtonRecalculates();
    void histogramsFollowTheSettings();
    void writesResultAndHistograms();
    void refusedRunWritesEarlierResults();
    void cannotOpenAndCannotWrite();
    void writeWithoutMap();
    void graphsShowTheMap();
    void progressOfReadingAndWriting();
    void rowsOfOneScanKeepItsPositionsOnce();

private:
    FourPs& panel() const { return *m_panel; }
    AEPoint& point(int i) const { return *m_panel->ePoints[i]; }
    int lines() const { return user::messages(panel()).size(); }
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    void loadReferences() const;
    void loadMaps(int count) const;
    void useRows(int count) const;
    QStringList calc() const;
    QStringList write(const QString& path) const;
    plain::PixelInput input(int pixel) const;
    void compareWith(const std::function<plain::PixelResult(const plain::PixelInput&)>& method);

    QTemporaryDir m_dir;
    std::unique_ptr<FourPs> m_panel;
};

void tst_MapPanel::initTestCase()
{
    const std::vector<double> grid = spectra::grid(8200, 8700, 0.5);
    for (const auto& [name, bump] : {std::pair("ref1.dat", 0.5), std::pair("ref2.dat", 0.1)}) {
        const double height = bump;
        const auto mut = [=](double energy) { return state(energy, height); };
        spectra::write(m_dir, name, spectra::fileText(spectra::sampled(grid, mut)));
    }
    int row = 0;
    for (const double energy : energies) {
        const QByteArray name = "map" + QByteArray::number(++row) + ".dat";
        spectra::write(m_dir, name.constData(), header(columns, rows) + records(energy));
    }
}

void tst_MapPanel::init()
{
    m_panel = std::make_unique<FourPs>();
    panel().show();
}

void tst_MapPanel::loadReferences() const
{
    user::drop(panel().RefFile1, file("ref1.dat"));
    user::drop(panel().RefFile2, file("ref2.dat"));
}

void tst_MapPanel::loadMaps(int count) const
{
    QStringList paths;
    for (int i = 1; i <= count; ++i)
        paths << file(("map" + QByteArray::number(i) + ".dat").constData());
    panel().mapFileSelect->newFiles(paths);
}

void tst_MapPanel::useRows(int count) const
{
    for (int i = 0; i < panel().ePoints.size(); ++i)
        point(i).UseCB->setChecked(i < count);
}

/// The messages of one map calculation.
QStringList tst_MapPanel::calc() const
{
    const int before = lines();
    user::click(panel().CalcMapB);
    return user::messagesSince(panel(), before);
}

/// The messages of "Write" to a path.
QStringList tst_MapPanel::write(const QString& path) const
{
    panel().SaveFSelect->FileName->setText(path);
    const int before = lines();
    user::click(panel().WriteB);
    return user::messagesSince(panel(), before);
}

/// A pixel's target values and the table, as the fields show it.
plain::PixelInput tst_MapPanel::input(int pixel) const
{
    plain::PixelInput in;
    for (int i = 0; i < panel().ePoints.size(); ++i) {
        const PointRow row = point(i).row();
        if (!row.use)
            continue;
        const MapData& data = point(i).mapData();
        const plain::Image image{{data.mut.begin(), data.mut.end()}, data.columns};
        const double value = image.at(pixel % columns, pixel / columns);
        if (row.vPoint)
            in.v = plain::point(row, value);
        else
            in.points.push_back(plain::point(row, value));
    }
    return in;
}

void tst_MapPanel::compareWith(
    const std::function<plain::PixelResult(const plain::PixelInput&)>& method)
{
    const MapResults& map = panel().lastMap();
    QCOMPARE(map.columns, columns);
    QCOMPARE(map.rows, rows);
    QCOMPARE(map.size(), std::size_t{pixels});
    for (int i = 0; i < pixels; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const plain::PixelResult expected = method(input(i));
        COMPARE_EXACT(map.a[k], expected.a);
        COMPARE_EXACT(map.t[k], expected.t);
        QCOMPARE(map.position(k).first, static_cast<double>(i % columns));
        QCOMPARE(map.position(k).second, static_cast<double>(10 * (i / columns)));
    }
}

void tst_MapPanel::threePointMap()
{
    loadReferences();
    loadMaps(3);
    useRows(3);
    panel().UseVicCB->setChecked(false); // the map keeps its background as well
    QCOMPARE(calc(), QStringList());     // a map tells nothing
    QCOMPARE(panel().CalcRes->text(), QString());
    compareWith([](const plain::PixelInput& in) { return plain::threePoint(in); });
    for (std::size_t i = 0; i < pixels; ++i)
        QVERIFY(std::abs(panel().lastMap().a[i] - shareOf(static_cast<int>(i))) < 1e-3);
}

void tst_MapPanel::exactMap()
{
    loadReferences();
    loadMaps(4);
    panel().TypeTMKisExact->setChecked(true);
    const QStringList messages = calc();
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages[0].startsWith(QLatin1String("sbys = ")));
    const double rho = panel().thicknessRatioFigures().trVic2;
    compareWith([=](const plain::PixelInput& in) { return plain::fourPointExact(in, rho); });
    for (std::size_t i = 0; i < pixels; ++i) {
        QVERIFY(std::abs(panel().lastMap().a[i] - shareOf(static_cast<int>(i))) < 1e-2);
        QVERIFY(std::abs(panel().lastMap().t[i] - thicknessOf(static_cast<int>(i))) < 1e-3);
    }
}

void tst_MapPanel::leastSquaresMaps_data()
{
    QTest::addColumn<int>("used");
    QTest::newRow("four rows") << 4;
    QTest::newRow("five rows") << 5;
}

void tst_MapPanel::leastSquaresMaps()
{
    QFETCH(int, used);
    loadReferences();
    loadMaps(used);
    useRows(used);
    QCOMPARE(calc().size(), 1);
    const double rho = panel().thicknessRatioFigures().trVic2;
    compareWith([=](const plain::PixelInput& in) { return plain::fourPointLeastSquares(in, rho); });
}

void tst_MapPanel::rowInUseWithoutDataIsMissing()
{
    // Four rows in use, three of them with data: three are counted, all are taken.
    loadReferences();
    loadMaps(4);
    user::type(point(0).Energy, QStringLiteral("8313"));
    point(0).loadData(file("missing.dat"));
    QVERIFY(!point(0).mapData().valid);
    QCOMPARE(calc(), QStringList());
    compareWith([](const plain::PixelInput& in) { return plain::threePoint(in); });
    // The records of the failed reload are still the row's.
    QCOMPARE(input(0).points[0].t, point(0).mapData().mut[0]);
    // A row that never had any gives -1.
    useRows(5);
    point(1).UseCB->setChecked(false);
    point(3).UseCB->setChecked(false);
    user::drop(point(5).MapFile, file("map2.dat"));
    point(5).UseCB->setChecked(true);
    user::drop(point(6).MapFile, file("map4.dat"));
    point(6).UseCB->setChecked(true);
    QCOMPARE(input(0).points[1].t, -1.0);
    QCOMPARE(calc(), QStringList());
    compareWith([](const plain::PixelInput& in) { return plain::threePoint(in); });
}

void tst_MapPanel::failedReloadMakesTheRowInvalid()
{
    loadReferences();
    loadMaps(3);
    useRows(3);
    QCOMPARE(calc(), QStringList());
    point(1).loadData(file("missing.dat"));
    QCOMPARE(calc(), QStringList{QStringLiteral("Number of selected data sets 2 is not 4.")});
    QCOMPARE(point(1).mapData().mut.size(), std::size_t{pixels});
    point(2).loadData(file("missing.dat"));
    QCOMPARE(calc(), QStringList{QStringLiteral("V Point is not selected")});
}

void tst_MapPanel::refusedFileIsToldOf()
{
    const QString path = file("line without end.dat");
    QFile out(path);
    QVERIFY(out.open(QIODevice::WriteOnly));
    QVERIFY(out.write(QByteArray(5 << 20, 'x')) > 0);
    out.close();
    const int before = lines();
    QSignalSpy refused(&panel(), &FourPs::refused);
    user::drop(point(1).MapFile, path);
    const QString text = QStringLiteral("The 2D data file [%1] is too large.").arg(path);
    QCOMPARE(user::messagesSince(panel(), before), QStringList{text});
    QCOMPARE(refused.count(), 1);
    QCOMPARE(refused.first().first().toString(), text);
}

void tst_MapPanel::energyOfTheFile()
{
    loadReferences();
    const QString path = spectra::write(m_dir, "energy.dat", "# energy is 8200.25 eV\n1 2 3 4\n");
    QSignalSpy energy(&point(4), &AEPoint::newEnergy);
    user::drop(point(4).MapFile, path);
    QCOMPARE(energy.count(), 1);
    QCOMPARE(energy.first().first().toDouble(), 8200.25);
    QCOMPARE(point(4).Energy->text(), QStringLiteral("8200.25"));
    // Not 8460's any more: refreshed at once, by the panel.
    const double expected = *interpolateMut(panel().RefFile1->data()->points, 8200.25) -
                            panel().RefFile1->data()->postVicAt(8200.25);
    QCOMPARE(point(4).Mut1->text(), textFromNumber(expected));
}

void tst_MapPanel::refusals()
{
    useRows(0);
    QCOMPARE(calc(), QStringList{QStringLiteral("V Point is not selected")});
    useRows(4);
    QCOMPARE(calc(), QStringList{QStringLiteral("V Point is not selected")}); // no data
    loadMaps(5);
    QCOMPARE(calc(), QStringList{QStringLiteral("Ref File1 is not valid.")});
    user::drop(panel().RefFile1, file("ref1.dat"));
    QCOMPARE(calc(), QStringList{QStringLiteral("Ref File2 is not valid.")});
    user::drop(panel().RefFile2, file("ref2.dat"));
    QCOMPARE(calc().size(), 1); // the thickness ratios; no target is needed
    panel().TypeTMKisExact->setChecked(true);
    useRows(5);
    QCOMPARE(calc(), QStringList{QStringLiteral("Number of selected data sets 5 is not 4.")});
    useRows(3);
    point(0).UseCB->setChecked(false);
    QCOMPARE(calc(), QStringList{QStringLiteral("Number of selected data sets 2 is not 4.")});
}

void tst_MapPanel::refusalsKeepEarlierResults_data()
{
    QTest::addColumn<QByteArray>("map"); // a V point's file, if any
    QTest::addColumn<QString>("boxes");
    QTest::addColumn<QString>("message");
    QTest::newRow("grid of a broken header")
        << header(2000000000, 2000000000) + "1 2 3 4\n"
        << QStringLiteral("41") << QStringLiteral("The map is too large.");
    QTest::newRow("a billion boxes")
        << QByteArray() << QStringLiteral("1e9")
        << QStringLiteral("The number of histogram boxes is too large.");
    QTest::newRow("no V point") << QByteArray("no records\n") << QStringLiteral("41")
                                << QStringLiteral("V Point is not selected");
}

void tst_MapPanel::refusalsKeepEarlierResults()
{
    QFETCH(QByteArray, map);
    QFETCH(QString, boxes);
    QFETCH(QString, message);
    loadReferences();
    loadMaps(4);
    QCOMPARE(calc().size(), 1);
    for (const char* name : {"res_HGAlpha.dat", "res_HGThick.dat"})
        spectra::write(m_dir, name, "there\n");
    QCOMPARE(write(file("res.dat")).size(), 1);
    const QByteArray result = contents(file("res.dat"));
    const QByteArray counts = contents(file("res_HGThick.dat"));

    panel().HgTBoxes->setText(boxes);
    if (!map.isEmpty())
        user::drop(point(2).MapFile, spectra::write(m_dir, "broken.dat", map));
    QSignalSpy refused(m_panel.get(), &FourPs::refused);
    QCOMPARE(write(file("res.dat")), QStringList{message});
    QCOMPARE(refused.count(), 1);
    QCOMPARE(contents(file("res.dat")), result);
    QCOMPARE(contents(file("res_HGThick.dat")), counts);
}

void tst_MapPanel::boxesBeyondTheMemory()
{
    loadReferences();
    loadMaps(3);
    useRows(3);
    QCOMPARE(calc(), QStringList());
    const std::vector<double> before(panel().lastMap().a.begin(), panel().lastMap().a.end());
    panel().ePoints[0]->Mut1->setText(QStringLiteral("0.5")); // the next map would differ
    panel().HgABoxes->setText(QStringLiteral("1e7"));
    panel().HgTBoxes->setText(QStringLiteral("1e7"));
    {
        const AddressLimit limit(AddressLimit::beside(60000000)); // they take 80 megabytes
        QCOMPARE(calc(),
                 QStringList{QStringLiteral("The number of histogram boxes is too large.")});
    }
    QCOMPARE(std::vector<double>(panel().lastMap().a.begin(), panel().lastMap().a.end()), before);
    QCOMPARE(calc(), QStringList());
    QVERIFY(panel().lastMap().a[1] != before[1]);
}

void tst_MapPanel::thicknessButtonRecalculates()
{
    loadReferences();
    loadMaps(4);
    QCOMPARE(calc().size(), 1);
    const double before = panel().lastMap().a[1];
    const int count = lines();
    user::click(panel().DispCondsB);
    user::click(panel().TRMean);
    const QStringList messages = user::messagesSince(panel(), count);
    QCOMPARE(messages.size(), 3); // map, target's refusal, fit's refusal
    QVERIFY(messages[0].startsWith(QLatin1String("sbys = ")));
    QCOMPARE(messages[1], QStringLiteral("Target File1 is not valid."));
    QVERIFY(panel().lastMap().a[1] != before);
    const double rho = panel().thicknessRatioFigures().trMean;
    compareWith([=](const plain::PixelInput& in) { return plain::fourPointLeastSquares(in, rho); });
}

void tst_MapPanel::histogramsFollowTheSettings()
{
    loadReferences();
    loadMaps(3);
    useRows(3);
    panel().HgABoxes->setText(QStringLiteral("3.9"));
    panel().HgAFrom->setText(QStringLiteral("2"));
    panel().HgATo->setText(QStringLiteral("3"));
    panel().HgAAuto->setChecked(true); // changes nothing
    for (const char* name : {"res_HGAlpha.dat", "res_HGThick.dat"})
        spectra::write(m_dir, name, "there\n");
    write(file("res.dat"));
    write(file("res.dat")); // counts start from zero each time
    // Valences 3, 2.75, 2.5, 2.25 and 2, four of each; 2.75 and 2.25 are the edges of the middle
    // bin and fall where rounding puts them.
    QByteArrayList bins = contents(file("res_HGAlpha.dat")).split('\n');
    QCOMPARE(bins.size(), 6);
    QCOMPARE(bins[0], QByteArray("1.25 1.5 1.75  0"));
    QVERIFY(bins[1].startsWith("1.75 2 2.25  "));
    QVERIFY(bins[2].startsWith("2.25 2.5 2.75  "));
    QVERIFY(bins[3].startsWith("2.75 3 3.25  "));
    QCOMPARE(bins[4], QByteArray("3.25 3.5 3.75  0"));
    int sum = 0;
    for (int i = 1; i <= 3; ++i)
        sum += bins[i].mid(bins[i].lastIndexOf(' ')).trimmed().toInt();
    QCOMPARE(sum, pixels);
    QCOMPARE(contents(file("res_HGThick.dat")).count('\n'), 43);
}

void tst_MapPanel::writesResultAndHistograms()
{
    loadReferences();
    loadMaps(4);
    QFile::remove(file("res_HGAlpha.dat"));
    spectra::write(m_dir, "res_HGThick.dat", "there\n");
    QCOMPARE(write(file("res.dat")).size(), 1); // the thickness ratios
    const MapResults& map = panel().lastMap();
    QByteArray expected = header(columns, rows) + '\n';
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            const auto k = static_cast<std::size_t>(y * columns + x);
            expected += QStringLiteral(" %1 %2    %3 %4 %5\n")
                            .arg(1.0 * x, 10)
                            .arg(10.0 * y, 10)
                            .arg(map.a[k], 10)
                            .arg(2.0 * map.a[k] + 3.0 * (1 - map.a[k]), 10)
                            .arg(map.t[k], 10)
                            .toLatin1();
        }
        expected += '\n';
    }
    QCOMPARE(contents(file("res.dat")), expected);
    QVERIFY(!QFile::exists(file("res_HGAlpha.dat")));
    QCOMPARE(contents(file("res_HGThick.dat")).count('\n'), 43);
}

void tst_MapPanel::refusedRunWritesEarlierResults()
{
    loadReferences();
    loadMaps(4);
    write(file("res.dat"));
    const double a = panel().lastMap().a[0];
    useRows(0);
    panel().Valence1->setText(QStringLiteral("12"));
    panel().Valence2->setText(QStringLiteral("13"));
    QCOMPARE(write(file("res.dat")), QStringList{QStringLiteral("V Point is not selected")});
    const QByteArray line = contents(file("res.dat")).split('\n')[4];
    const QByteArrayList numbers = line.simplified().split(' ');
    QCOMPARE(numbers[2], textFromNumber(a).toLatin1());
    QCOMPARE(numbers[3], textFromNumber(12 * a + 13 * (1 - a)).toLatin1());
}

void tst_MapPanel::cannotOpenAndCannotWrite()
{
    loadReferences();
    loadMaps(3);
    useRows(3);
    QCOMPARE(write(QString()), QStringList{QStringLiteral("Can't open the file []")});
    const QString folder = file("no/res.dat");
    QCOMPARE(write(folder), QStringList{QStringLiteral("Can't open the file [%1]").arg(folder)});
    if (QFile::exists(QStringLiteral("/dev/full")))
        QCOMPARE(write(QStringLiteral("/dev/full")),
                 QStringList{QStringLiteral("Can't write the file [/dev/full]")});
    // The histogram files are attempted all the same.
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("folder.dat")));
    spectra::write(m_dir, "folder_HGAlpha.dat", "there\n");
    QCOMPARE(write(file("folder.dat")),
             QStringList{QStringLiteral("Can't open the file [%1]").arg(file("folder.dat"))});
    QCOMPARE(contents(file("folder_HGAlpha.dat")).count('\n'), 43);
}

void tst_MapPanel::writeWithoutMap()
{
    QCOMPARE(write(file("empty.dat")), QStringList{QStringLiteral("V Point is not selected")});
    QCOMPARE(contents(file("empty.dat")), QByteArray());
}

void tst_MapPanel::graphsShowTheMap()
{
    loadReferences();
    loadMaps(4);
    user::click(panel().ShowDAB);
    QVERIFY(QTest::qWaitForWindowExposed(panel().displays));
    QCOMPARE(calc().size(), 1);
    const auto shows = [&](Displays::DispId id, QRgb colour) {
        const QImage picture = panel().displays->panel(id)->DispA->grab().toImage();
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixel(x, y) == colour)
                    return true;
        return false;
    };
    QVERIFY(shows(Displays::DispHistA, qRgb(255, 200, 200)));
    QVERIFY(shows(Displays::DispHistT, qRgb(200, 255, 200)));
    const DispArea* canvas = panel().displays->panel(Displays::DispTA)->DispA;
    const QImage picture = panel().displays->panel(Displays::DispTA)->DispA->grab().toImage();
    const MapResults& map = panel().lastMap();
    int dots = 0;
    for (std::size_t i = 0; i < map.size(); ++i) {
        const double valence = 2.0 * map.a[i] + 3.0 * (1 - map.a[i]);
        const QPoint dot(static_cast<int>(canvas->coord.xToScreen(valence)),
                         static_cast<int>(canvas->coord.yToScreen(map.t[i])));
        // A dot is the outline of a tiny circle: one of its pixels is beside.
        const auto isBlack = [&](QPoint pixel) { return picture.pixel(pixel) == qRgb(0, 0, 0); };
        if (valence < 1.6 || valence > 3.4 || map.t[i] < 0.0 || map.t[i] > 1.1)
            continue; // near or beyond the ends of the axes
        QVERIFY(isBlack(dot) || isBlack(dot - QPoint(1, 0)) || isBlack(dot - QPoint(0, 1)) ||
                isBlack(dot - QPoint(1, 1)));
        ++dots;
    }
    QVERIFY(dots > pixels / 2);
}

void tst_MapPanel::progressOfReadingAndWriting()
{
    loadReferences();
    QSignalSpy progress(m_panel.get(), &FourPs::progress);
    user::drop(point(0).MapFile, file("map1.dat"));
    QVERIFY(progress.count() >= 2);
    QCOMPARE(progress.first().at(0).toString(), QStringLiteral("Reading map1.dat"));
    QCOMPARE(progress.first().at(1).toDouble(), 0.0);
    QCOMPARE(progress.last().at(1).toDouble(), 1.0);
    progress.clear();
    write(file("res.dat"));
    QCOMPARE(progress.first().at(0).toString(), QStringLiteral("Writing res.dat"));
    QCOMPARE(progress.first().at(1).toDouble(), 0.0);
    QCOMPARE(progress.last().at(1).toDouble(), 1.0);
}

// Of two panels each keeps its own: nothing of one reaches the other.
void tst_MapPanel::rowsOfOneScanKeepItsPositionsOnce()
{
    loadMaps(4);
    for (int i = 1; i < 4; ++i)
        QVERIFY(point(i).mapData().positions == point(0).mapData().positions);
    FourPs other;
    user::drop(other.ePoints[0]->MapFile, file("map1.dat"));
    QCOMPARE(other.ePoints[0]->mapData().positions->size(), std::size_t{pixels});
    QVERIFY(other.ePoints[0]->mapData().positions != point(0).mapData().positions);
}

QTEST_MAIN(tst_MapPanel)
#include "tst_MapPanel.moc"
