#include "examples/MapSample.h"
#include "examples/StackFiles.h"
#include "formats/StackEnergies.h"
#include "formats/StackMaps.h"
#include "formats/StackProcess.h"
#include "formats/StackShare.h"
#include "formats/StackSpectrum.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

/// Stacks of images in the layouts of different places.
class tst_Stack : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void kernel_data();
    void kernel();
    void kernelMissing();
    void kernelVariances();
    void variancesOfCounts();
    void framesAtEnergies();
    void energyUnits();
    void energyTexts();
    void layouts_data();
    void layouts();
    void between_data() { layouts_data(); }
    void between();
    void regions_data() { layouts_data(); }
    void regions();
    void outside();
    void facts();
    void shifted();
    void darkLevel();
    void repeatsAreAveraged();
    void namedFiles();
    void filesOfAStack();
    void onlyNeededFramesAreRead();
    void refused_data();
    void refused();
    void processFails();
    void shares();
    void severalProcesses_data() { layouts_data(); }
    void severalProcesses();
    void oneProcessForAllParts();
    void faultOfTheFirstPart_data();
    void faultOfTheFirstPart();
    void changedSinceItWasOpened();
    void pixelsAreMissing();
    void faultEndsTheOthers();
    void oneImageStaysAsStored();
    void meanSpectra_data() { layouts_data(); }
    void meanSpectra();
    void meanOfManyFrames_data();
    void meanOfManyFrames();
    void meanLeavesOut();
    void meanNeedsTwoEnergies();
    void meanOfTheSameEnergy();
    void meanOfTiltedRows();

private:
    static MapSample sample();
    static QVector<double> energies() { return {8313, 8381, 8390, 8404.5, 8460}; }
    static CountedStack counted();

    QTemporaryDir m_dir;
};

namespace
{

using Energies = std::vector<double>;

/// A layout: who writes it, and how it is read.
struct Layout {
    const char* name;
    bool (*write)(const QString&, const CountedStack&);
    StackValues values; ///< Unknown where the layout says it
    bool camera;        ///< flats and energies are files beside it
};

const QVector<Layout>& allLayouts()
{
    static const QVector<Layout> layouts = {
        {"fxi", writeFxi, StackValues::Unknown, false},
        {"exchange", [](const QString& p, const CountedStack& s) { return writeExchange(p, s); },
         StackValues::Unknown, false},
        {"exchange-last",
         [](const QString& p, const CountedStack& s) { return writeExchange(p, s, true); },
         StackValues::Unknown, false},
        {"mistral", writeMistral, StackValues::Unknown, false},
        {"nxdata", writeNxdata, StackValues::MuT, false},
        {"tiff", writeTiffStack, StackValues::Counts, false},
        {"img", writeImgStack, StackValues::Unknown, true},
        {"his", writeHisStack, StackValues::Unknown, true}};
    return layouts;
}

StackSource sourceOf(const QString& folder, const Layout& layout)
{
    StackSource source;
    const QString name = QLatin1String(layout.name);
    source.path = QDir(folder).filePath(name + QStringLiteral(".stack"));
    source.values = layout.values;
    if (name == QLatin1String("tiff")) {
        source.flat = QDir(folder).filePath(QStringLiteral("tiff-flat.tif"));
        source.dark = QDir(folder).filePath(QStringLiteral("tiff-dark.tif"));
    }
    if (name == QLatin1String("img"))
        source.reference = source.path + QStringLiteral(".ref");
    if (name == QLatin1String("his")) {
        source.flat = source.path + QStringLiteral(".flat");
        source.dark = source.path + QStringLiteral(".dark");
        source.energies = source.path + QStringLiteral(".txt");
    }
    return source;
}

std::unique_ptr<Stack> opened(const StackSource& source)
{
    FileFault fault;
    auto stack = openStack(source, fault);
    if (!stack)
        qFatal("%s", qPrintable(faultText(fault)));
    return stack;
}

QString faultOf(const StackSource& source)
{
    FileFault fault;
    return openStack(source, fault) ? QStringLiteral("opened") : fault.reason;
}

std::vector<MapData> mapsOf(Stack& stack, const Energies& energies, const Region& region = {})
{
    std::vector<MapData> maps;
    const auto fault = stackMaps(stack, QStringLiteral("stack"), energies, region, maps);
    if (fault)
        qFatal("%s", qPrintable(faultText(*fault)));
    return maps;
}

/// float32 keeps seven digits of a transmission.
bool near(double a, double b, double tolerance = 2e-7)
{
    return std::abs(a - b) <= tolerance;
}

} // namespace

MapSample tst_Stack::sample()
{
    MapSample map;
    map.columns = 13;
    map.rows = 9;
    return map;
}

CountedStack tst_Stack::counted()
{
    return countedStack(sample(), {8313, 8381, 8390, 8404.5, 8460});
}

void tst_Stack::initTestCase()
{
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    QVERIFY(m_dir.isValid());
    for (const Layout& layout : allLayouts())
        QVERIFY2(layout.write(sourceOf(m_dir.path(), layout).path, counted()), layout.name);
}

void tst_Stack::kernel_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char* name, PixelType type, auto a, auto b) {
        QByteArray bytes(reinterpret_cast<const char*>(&a), sizeof a);
        bytes.append(reinterpret_cast<const char*>(&b), sizeof b);
        QTest::newRow(name) << static_cast<int>(type) << bytes;
    };
    row("u8", PixelType::U8, std::uint8_t{20}, std::uint8_t{200});
    row("i8", PixelType::I8, std::int8_t{20}, std::int8_t{120});
    row("u16", PixelType::U16, std::uint16_t{20}, std::uint16_t{60000});
    row("i16", PixelType::I16, std::int16_t{20}, std::int16_t{30000});
    row("u32", PixelType::U32, std::uint32_t{20}, std::uint32_t{4000000000U});
    row("i32", PixelType::I32, std::int32_t{20}, std::int32_t{2000000000});
    row("f32", PixelType::F32, 20.0F, 60000.0F);
    row("f64", PixelType::F64, 20.0, 60000.0);
}

void tst_Stack::kernel()
{
    QFETCH(int, type);
    QFETCH(QByteArray, bytes);
    const std::array<double, 2> flat{120.0, 1e10};
    Frame frame;
    frame.values = StackValues::Counts;
    frame.frame = {static_cast<PixelType>(type), bytes.constData()};
    frame.flat = {PixelType::F64, reinterpret_cast<const char*>(flat.data())};
    frame.darkLevel = 10.0;
    frame.added = 0.5;
    std::array<double, 2> mut{};
    addMut(frame, 0, 2, mut.data(), false);
    QVERIFY(near(mut[0], std::log(110.0 / 10.0) + 0.5, 1e-15));
    frame.weight = 0.25;
    addMut(frame, 0, 1, mut.data(), true);
    QVERIFY(near(mut[0], 1.25 * (std::log(11.0) + 0.5), 1e-15));
    QCOMPARE(bytesOf(static_cast<PixelType>(type)), static_cast<std::size_t>(bytes.size()) / 2);
    double second = 0.0;
    addMut(frame, 1, 1, &second, false);
    QVERIFY(second > 0.0);
}

void tst_Stack::kernelMissing()
{
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::array<double, 7> values{0.5, 0.0, -1.0, nan, inf, 1.0, -inf};
    const std::array<double, 7> flats{2.0, 2.0, 2.0, 2.0, 2.0, 0.0, 2.0};
    std::array<double, 7> mut{};
    Frame frame;
    frame.frame = {PixelType::F64, reinterpret_cast<const char*>(values.data())};
    frame.flat = {PixelType::F64, reinterpret_cast<const char*>(flats.data())};
    frame.values = StackValues::Transmission;
    addMut(frame, 0, 7, mut.data(), false);
    QVERIFY(near(mut[0], std::log(2.0), 1e-15));
    QCOMPARE(mut[5], 0.0);
    for (const int i : {1, 2, 3, 4, 6})
        QVERIFY(std::isnan(mut[static_cast<std::size_t>(i)]));
    frame.values = StackValues::Counts;
    addMut(frame, 0, 7, mut.data(), false);
    QVERIFY(near(mut[0], std::log(4.0), 1e-15));
    for (std::size_t i = 1; i < 7; ++i)
        QVERIFY(std::isnan(mut[i]));
    frame.values = StackValues::MuT;
    addMut(frame, 0, 7, mut.data(), false);
    QCOMPARE(mut[2], -1.0);
    for (const int i : {3, 4, 6})
        QVERIFY(std::isnan(mut[static_cast<std::size_t>(i)]));
}

/// Variance of ln(flat / frame), dark taken off: gains over both.
void tst_Stack::kernelVariances()
{
    const std::array<double, 3> values{30.0, 10.0, 60.0};
    const std::array<double, 3> flats{110.0, 110.0, 5.0};
    Frame frame;
    frame.values = StackValues::Counts;
    frame.frame = {PixelType::F64, reinterpret_cast<const char*>(values.data())};
    frame.flat = {PixelType::F64, reinterpret_cast<const char*>(flats.data())};
    frame.darkLevel = 10.0;
    const DetectorGains gains{5.0, 3.0};
    std::array<float, 3> variance{};
    addVariance(frame, gains, true, 0, 3, variance.data(), false);
    QCOMPARE(variance[0], static_cast<float>(5.0 / 100.0 + 3.0 / 20.0));
    QVERIFY(std::isnan(variance[1]));
    QVERIFY(std::isnan(variance[2]));
    frame.weight = 0.5;
    addVariance(frame, gains, false, 0, 1, variance.data(), true);
    QCOMPARE(variance[0], static_cast<float>(0.2 + 0.25 * 3.0 / 20.0));
}

/// The flat of all frames moves the mu-t of a pixel alike at all energies, and is left out. Between
/// two frames each has the square of its part.
void tst_Stack::variancesOfCounts()
{
    /// Two pixels with the counts 100 and 50, then 400 and 200, of one flat.
    class Counted : public Stack
    {
    public:
        Counted()
        {
            m_facts.columns = 2;
            m_facts.rows = 1;
            m_facts.energies = {8300.0, 8310.0};
        }
        std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region&,
                                      FrameSet& set) override
        {
            for (const std::size_t index : indices) {
                Frame frame;
                frame.values = values;
                frame.frame = {PixelType::F64,
                               reinterpret_cast<const char*>(m_counts.data() + 2 * index)};
                frame.flat = {PixelType::F64, reinterpret_cast<const char*>(
                                                  m_flats.data() + (ownFlats ? 2 * index : 0))};
                set.frames.push_back(frame);
            }
            return std::nullopt;
        }
        StackValues values = StackValues::Counts;
        bool ownFlats = false;

    private:
        std::array<double, 4> m_counts{100.0, 50.0, 400.0, 200.0};
        std::array<double, 4> m_flats{1000.0, 1000.0, 500.0, 500.0};
    };
    constexpr double floatDigits = 1e-7;
    Counted stack;
    const auto variances = [&stack](bool wanted) {
        std::vector<MapData> maps;
        const std::optional<DetectorGains> gains =
            wanted ? std::optional(DetectorGains{7.0, 2.0}) : std::nullopt;
        if (stackMaps(stack, QStringLiteral("stack"), {8300.0, 8305.0}, {}, maps, Workers::shared(),
                      gains))
            qFatal("no maps");
        std::vector<double> all;
        for (const MapData& map : maps)
            all.insert(all.end(), map.variance.begin(), map.variance.end());
        return all;
    };
    const auto areNear = [](const std::vector<double>& found, const std::vector<double>& expected) {
        return std::equal(found.begin(), found.end(), expected.begin(), expected.end(),
                          [](double a, double b) { return near(a, b, floatDigits); });
    };
    QVERIFY(variances(false).empty());
    QVERIFY(areNear(variances(true), {0.02, 0.04, 0.25 * (0.02 + 0.005), 0.25 * (0.04 + 0.01)}));
    stack.ownFlats = true;
    QVERIFY(areNear(variances(true),
                    {0.027, 0.047, 0.25 * (0.027 + 0.005 + 0.014), 0.25 * (0.047 + 0.01 + 0.014)}));
    stack.values = StackValues::MuT;
    QVERIFY(variances(true).empty());
}

void tst_Stack::framesAtEnergies()
{
    const auto text = [](const Energies& energies, double energy) {
        QStringList parts;
        for (const FramePart& part : framesAt(energies, energy))
            parts += QStringLiteral("%1:%2").arg(part.frame).arg(part.weight);
        return parts.join(QLatin1Char(' '));
    };
    const Energies falling{300, 200, 100};
    QCOMPARE(text(falling, 200), QStringLiteral("1:1"));
    QCOMPARE(text(falling, 125), QStringLiteral("2:0.75 1:0.25"));
    QCOMPARE(text(falling, 99.9), QString());
    QCOMPARE(text(falling, 300.1), QString());
    QCOMPARE(text(falling, 300.00005), QStringLiteral("0:1"));
    QCOMPARE(text(falling, 99.99995), QStringLiteral("2:1"));
    const Energies twice{100, 200, 100, 200};
    QCOMPARE(text(twice, 100), QStringLiteral("0:0.5 2:0.5"));
    QCOMPARE(text(twice, 150), QStringLiteral("0:0.25 2:0.25 1:0.25 3:0.25"));
    QCOMPARE(text({}, 100), QString());
}

void tst_Stack::energyUnits()
{
    QString assumed;
    Energies energies{7.1, 7.2};
    QVERIFY(!toElectronVolt(energies, QString(), assumed));
    QCOMPARE(energies[1], 7200.0);
    QCOMPARE(assumed, QStringLiteral("the energies, all below 100, are taken for keV"));
    assumed.clear();
    energies = {7.1};
    QVERIFY(!toElectronVolt(energies, QStringLiteral("eV"), assumed));
    QCOMPARE(energies[0], 7.1);
    energies = {7.1};
    QVERIFY(!toElectronVolt(energies, QStringLiteral("keV"), assumed));
    QCOMPARE(energies[0], 7100.0);
    QCOMPARE(assumed, QString());
    energies = {7100, std::nan("")};
    QCOMPARE(toElectronVolt(energies, QString(), assumed).value_or(QString()),
             QStringLiteral("energy 2 is no positive number"));
    energies = {};
    QCOMPARE(toElectronVolt(energies, QString(), assumed).value_or(QString()),
             QStringLiteral("has no energies"));
}

void tst_Stack::energyTexts()
{
    QString reason;
    QCOMPARE(energiesOf(ArrayBytes("# eV\n7100 a.tif\n"), reason), Energies());
    QCOMPARE(energiesOf(ArrayBytes("# eV\n7100\n7101.5 3\n"), reason), Energies());
    QCOMPARE(reason, QStringLiteral("line 3: has 2 numbers where line 2 has 1"));
    reason.clear();
    QCOMPARE(energiesOf(ArrayBytes(","), reason), Energies());
    QCOMPARE(reason, QStringLiteral("line 1: has no numbers between its signs"));
    reason.clear();
    QCOMPARE(energiesOf(ArrayBytes("# eV\n7100\n7101.5\n"), reason), Energies({7100, 7101.5}));
    QCOMPARE(reason, QString());
}

void tst_Stack::layouts_data()
{
    QTest::addColumn<int>("layout");
    for (int i = 0; i < allLayouts().size(); ++i)
        QTest::newRow(allLayouts()[i].name) << i;
}

void tst_Stack::layouts()
{
    QFETCH(int, layout);
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[layout]));
    const CountedStack truth = counted();
    const std::vector<double> muts = truth.mut();
    const Energies wanted{8460, 8313, 8390, 8404.5};
    const auto maps = mapsOf(*stack, wanted);
    QCOMPARE(maps.size(), wanted.size());
    const std::array<std::size_t, 4> frames{4, 0, 2, 3};
    for (std::size_t k = 0; k < wanted.size(); ++k) {
        QVERIFY(maps[k].valid);
        QCOMPARE(maps[k].columns, 13);
        QCOMPARE(maps[k].rows, 9);
        QCOMPARE(maps[k].mut.size(), truth.pixels());
        for (std::size_t i = 0; i < truth.pixels(); ++i)
            QVERIFY2(near(maps[k].mut[i], muts[frames[k] * truth.pixels() + i]),
                     qPrintable(QStringLiteral("frame %1, pixel %2: %3")
                                    .arg(frames[k])
                                    .arg(i)
                                    .arg(maps[k].mut[i])));
    }
}

/// mu-t is linear between two frames.
void tst_Stack::between()
{
    QFETCH(int, layout);
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[layout]));
    const CountedStack truth = counted();
    const std::vector<double> muts = truth.mut();
    const auto maps = mapsOf(*stack, {8383.25, 8330.0});
    for (std::size_t i = 0; i < truth.pixels(); ++i) {
        const auto at = [&](std::size_t frame) { return muts[frame * truth.pixels() + i]; };
        QVERIFY(near(maps[0].mut[i], 0.75 * at(1) + 0.25 * at(2)));
        QVERIFY(near(maps[1].mut[i], 0.75 * at(0) + 0.25 * at(1)));
    }
}

void tst_Stack::regions()
{
    QFETCH(int, layout);
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[layout]));
    const CountedStack truth = counted();
    const std::vector<double> muts = truth.mut();
    const Region region{3, 2, 4, 6};
    const auto maps = mapsOf(*stack, {8381, 8404.5}, region);
    QCOMPARE(maps[0].columns, 4);
    QCOMPARE(maps[0].rows, 6);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 4; ++x) {
            const auto here = static_cast<std::size_t>(4 * y + x);
            const auto there = static_cast<std::size_t>(13 * (y + 2) + x + 3);
            QVERIFY(near(maps[0].mut[here], muts[truth.pixels() + there]));
            QVERIFY(near(maps[1].mut[here], muts[3 * truth.pixels() + there]));
        }
}

void tst_Stack::outside()
{
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[1]));
    std::vector<MapData> maps;
    const auto reason = [&](const Energies& energies, const Region& region) {
        const auto fault = stackMaps(*stack, QStringLiteral("scan.h5"), energies, region, maps);
        return fault ? faultText(*fault) : QStringLiteral("read");
    };
    QCOMPARE(reason({8313, 8300}, {}),
             QStringLiteral("scan.h5: 8300 eV is outside of the stack, which has 8313 to 8460 eV"));
    const QString notWithin = QStringLiteral("scan.h5: the region is not within its 13 x 9 pixels");
    for (const Region& region :
         {Region{0, 0, 14, 1}, Region{0, 0, 1, 10}, Region{-1, 0, 2, 2}, Region{0, 8, 1, 2},
          Region{12, 0, 2, 1}, Region{0, 0, 0, 1}, Region{2147483647, 0, 2147483647, 1}})
        QCOMPARE(reason({8313}, region), notWithin);
    QVERIFY(maps.empty());
}

void tst_Stack::facts()
{
    const auto factsOf = [&](int layout) {
        return opened(sourceOf(m_dir.path(), allLayouts()[layout]))->facts();
    };
    QCOMPARE(factsOf(0).kind, QStringLiteral("fxi"));
    QCOMPARE(factsOf(0).assumed,
             QStringList(QStringLiteral("the energies, all below 100, are taken for keV")));
    QCOMPARE(factsOf(0).energies[3], 8404.5);
    QCOMPARE(static_cast<int>(factsOf(1).type), static_cast<int>(PixelType::U16));
    QCOMPARE(factsOf(3).pixelWidth, 0.5);
    QCOMPARE(factsOf(4).assumed, QStringList());
    QCOMPARE(factsOf(6).warnings, QStringList());
    const auto maps = mapsOf(*opened(sourceOf(m_dir.path(), allLayouts()[3])), {8313});
    QCOMPARE((*maps[0].positions)[13 * 2 + 3].first, 1.5);
    QCOMPARE((*maps[0].positions)[13 * 2 + 3].second, 1.0);
}

void tst_Stack::shifted()
{
    StackSource source = sourceOf(m_dir.path(), allLayouts()[3]);
    source.shift = -3.0;
    const auto stack = opened(source);
    const CountedStack truth = counted();
    QVERIFY(near(mapsOf(*stack, {8387})[0].mut[5], truth.mut()[2 * truth.pixels() + 5]));
}

void tst_Stack::darkLevel()
{
    StackSource source = sourceOf(m_dir.path(), allLayouts()[1]);
    source.darkLevel = 50.0;
    const CountedStack truth = counted();
    const auto maps = mapsOf(*opened(source), {8313});
    for (std::size_t i = 0; i < truth.pixels(); ++i)
        QVERIFY(near(maps[0].mut[i], std::log((truth.flats[i] - 50.0) / (truth.counts[i] - 50.0)),
                     1e-12));
}

void tst_Stack::repeatsAreAveraged()
{
    const QTemporaryDir dir;
    const QString index = dir.filePath(QStringLiteral("scan.dat"));
    const CountedStack truth = counted();
    QVERIFY(writeImgStack(index, truth));
    const QByteArray first = contents(index + QStringLiteral("_000.img"));
    QVERIFY(
        QFile::rename(index + QStringLiteral("_000.img"), index + QStringLiteral("_000_000.img")));
    QByteArray second = first;
    const int pixels = second.size() - 2 * static_cast<int>(truth.pixels());
    second[pixels] = static_cast<char>(first[pixels] ^ 4); // one pixel 4 counts off
    create(index + QStringLiteral("_000_001.img"), second);
    StackSource source;
    source.path = index;
    source.reference = index + QStringLiteral(".ref");
    const double off = (first[pixels] & 4) != 0 ? -2.0 : 2.0;
    const auto maps = mapsOf(*opened(source), {8313});
    QVERIFY(
        near(maps[0].mut[0],
             std::log((truth.flats[0] - truth.dark[0]) / (truth.counts[0] + off - truth.dark[0])),
             1e-12));
    QVERIFY(near(maps[0].mut[1], truth.mut()[1], 1e-12));
}

/// A text that names a file on each line.
void tst_Stack::namedFiles()
{
    const QTemporaryDir dir;
    CountedStack one = counted();
    const CountedStack truth = one;
    QByteArray text = "# file energy\n";
    for (std::size_t k = 0; k < truth.energies.size(); ++k) {
        const auto from = truth.counts.begin() + static_cast<std::ptrdiff_t>(k * truth.pixels());
        one.counts.assign(from, from + static_cast<std::ptrdiff_t>(truth.pixels()));
        one.energies = {truth.energies[k]};
        const QString name = QStringLiteral("image_%1.tif").arg(static_cast<int>(k * 5));
        QVERIFY(writeTiffStack(dir.filePath(name), one));
        text += name.toUtf8() + ' ' + QByteArray::number(truth.energies[k]) + '\n';
    }
    create(dir.filePath(QStringLiteral("list.txt")), text);
    StackSource source;
    source.path = dir.filePath(QStringLiteral("image_?.tif"));
    source.energies = dir.filePath(QStringLiteral("list.txt"));
    source.values = StackValues::Transmission; // of what was stored: only the order is looked at
    auto stack = opened(source);
    const auto maps = mapsOf(*stack, {8404.5});
    QVERIFY(near(maps[0].mut[7], -std::log(truth.counts[3 * truth.pixels() + 7]), 1e-12));

    // By a pattern, image_5 before image_10.
    create(dir.filePath(QStringLiteral("plain.txt")), "8313\n8381\n8390\n8404.5\n8460\n");
    source.path = dir.filePath(QStringLiteral("image_*0.tif"));
    source.energies = dir.filePath(QStringLiteral("plain.txt"));
    QCOMPARE(faultOf(source), QStringLiteral("has 3 pages for 5 energies"));
    for (const char* const beside : {"flat", "dark"})
        for (int k = 0; k < 5; ++k)
            QFile::remove(dir.filePath(
                QStringLiteral("image_%1-%2.tif").arg(5 * k).arg(QLatin1String(beside))));
    source.path = dir.filePath(QStringLiteral("image_*.tif"));
    stack = opened(source);
    const auto counted = mapsOf(*stack, {8381});
    QVERIFY(near(counted[0].mut[7], -std::log(truth.counts[truth.pixels() + 7]), 1e-12));
}

/// Frames of an index, the energies beside images, the images that they name, and names that look
/// like patterns.
void tst_Stack::filesOfAStack()
{
    const QTemporaryDir dir;
    const auto filesOf = [&dir](const char* path, const char* energies = "",
                                const char* kind = "") {
        StackSource source;
        source.path = dir.filePath(QLatin1String(path));
        source.kind = QLatin1String(kind);
        if (*energies != '\0')
            source.energies = dir.filePath(QLatin1String(energies));
        QStringList names;
        for (const QString& file : stackFiles(source))
            names += QDir(dir.path()).relativeFilePath(file);
        return names.join(QLatin1Char(' '));
    };
    CountedStack one = counted();
    one.energies.resize(1);
    one.counts.resize(one.pixels());
    one.flats.resize(one.pixels());
    QVERIFY(writeTiffStack(dir.filePath(QStringLiteral("a.tif")), one));
    QVERIFY(writeTiffStack(dir.filePath(QStringLiteral("b.tif")), one));
    for (const char* const name :
         {"scan.dat", "scan.dat_000.img", "scan.dat_001.img", "scan.txt", "odd[1].h5", "odd1.h5"})
        create(dir.filePath(QLatin1String(name)), name);
    create(dir.filePath(QStringLiteral("list.txt")), "8300 b.tif\n8400 none.tif\n");
    QCOMPARE(filesOf("scan.dat"), QStringLiteral("scan.dat scan.dat_000.img scan.dat_001.img"));
    QCOMPARE(filesOf("odd[1].h5"), QStringLiteral("odd[1].h5"));
    QCOMPARE(filesOf("a.tif"), QStringLiteral("a.tif a.txt"));
    QCOMPARE(filesOf("a.tif", "list.txt"), QStringLiteral("a.tif list.txt b.tif"));
    QCOMPARE(filesOf("?.tif", "list.txt"), QStringLiteral("a.tif b.tif list.txt"));
    QCOMPARE(filesOf("a.tif", "", "exchange"), QStringLiteral("a.tif"));
    QCOMPARE(filesOf("none.tif", "a.txt"), QStringLiteral("a.txt"));
    QCOMPARE(filesOf("none*.tif"), QString());
    const auto isThere = [&dir](const char* path) {
        StackSource source;
        source.path = dir.filePath(QLatin1String(path));
        source.energies = dir.filePath(QStringLiteral("list.txt"));
        return !presentStackFiles(source).isEmpty();
    };
    QVERIFY(isThere("?.tif") && isThere("odd[1].h5"));
    QVERIFY(!isThere("none.tif") && !isThere("none*.tif"));
}

/// Chunks of other frames are not looked at: they may be damaged.
void tst_Stack::onlyNeededFramesAreRead()
{
    const QString path = m_dir.filePath(QStringLiteral("cut.h5"));
    StackSource source = sourceOf(m_dir.path(), allLayouts()[3]);
    QByteArray bytes = contents(source.path);
    const CountedStack truth = counted();
    const std::vector<float> values = truth.transmission();
    const auto frame = [&](std::size_t k) {
        return QByteArray(reinterpret_cast<const char*>(values.data() + k * truth.pixels()),
                          static_cast<int>(truth.pixels() * sizeof(float)));
    };
    const int last = bytes.indexOf(frame(4));
    QVERIFY(last > 0);
    // What stands behind the frames that are needed is cut off where it is the last of the file;
    // otherwise the frame is made another one, which nobody sees.
    bytes.replace(last, frame(4).size(), QByteArray(frame(4).size(), '\xff'));
    create(path, bytes);
    source.path = path;
    const auto stack = opened(source);
    const auto maps = mapsOf(*stack, {8381, 8390});
    QVERIFY(near(maps[1].mut[5], truth.mut()[2 * truth.pixels() + 5]));
    QVERIFY(std::isnan(mapsOf(*stack, {8460})[0].mut[5]));
}

void tst_Stack::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& bytes, const char* reason) {
        QTest::newRow(name) << QString::fromLatin1(name) << bytes << QString::fromUtf8(reason);
    };
    row("missing.txt", "", "is empty");
    row("words.txt", "nothing\n", "is of no known kind");
    row("spectrum.xdi", "# XDI/1.0\n# energy xmu\n1 2\n",
        "is an XDI spectrum and no stack of images");
    row("cut.h5", "\x89HDF\r\n\x1a\n", "is no HDF5 file that can be opened");
    row("cut.tif", QByteArray("II*\0\x08\0\0\0", 8),
        "does not say what its values are: values = \"mu-t\", \"transmission\" or \"counts\"");
    row("scan.txrm", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1",
        "is an OLE2 file, as Xradia microscopes write (.xrm, .txrm), which is not read; export the "
        "images as TIFF");
    row("no.dat", " D= 3.1 A\n Offset 0 0\n",
        "is no index of frames: it has no rows behind \"Offset\"");
}

void tst_Stack::refused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    StackSource source;
    source.path = m_dir.filePath(name);
    create(source.path, bytes);
    QCOMPARE(faultOf(source), reason);
}

/// What becomes of the process is a refusal, and nothing worse.
void tst_Stack::processFails()
{
    const StackSource source = sourceOf(m_dir.path(), allLayouts()[0]);
    const auto script = [&](const char* text) {
        const QString path = m_dir.filePath(QStringLiteral("script"));
        QFile::remove(path);
        create(path, QByteArray("#!/bin/sh\n") + text + "\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
        StackLimits limits;
        limits.seconds = 0.2;
        setStackProgram(path, limits);
        return faultOf(source);
    };
    const QString damaged = QStringLiteral("makes its reader fail; it is damaged");
    QCOMPARE(script("kill -SEGV $$"), damaged);
    QCOMPARE(script("exit 3"), damaged);
    QCOMPARE(script("exit 0"), damaged);
    QCOMPARE(script("exec sleep 1000"),
             QStringLiteral("takes longer than 0.2 s to read; it may be damaged"));
    QCOMPARE(script("exec cat /dev/zero"),
             QStringLiteral("says more of itself than any stack does"));
    setStackProgram(m_dir.filePath(QStringLiteral("nowhere")));
    QCOMPARE(faultOf(source),
             QStringLiteral("cannot be read: the program drovik-stack does not start"));
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    QCOMPARE(faultOf(source), QStringLiteral("opened"));
}

namespace
{

/// The reader of stacks behind a script, which sees what it is asked.
void askByScript(const QString& path, const QByteArray& text, const StackLimits& limits = {})
{
    QFile::remove(path);
    create(path, "#!/bin/bash\n" + text + "\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    setStackProgram(path, limits);
}

/// As many processes as are asked for, however few the pixels.
StackLimits manyProcesses()
{
    StackLimits limits;
    limits.bytesAProcess = 1;
    limits.alwaysAsked = true;
    return limits;
}

/// What stackMaps says of a stack that is read by some processes at once.
std::optional<FileFault> faultOfMaps(Stack& stack, const Energies& energies, unsigned processes,
                                     std::vector<MapData>& maps)
{
    Workers workers(processes);
    return stackMaps(stack, QStringLiteral("stack"), energies, {2, 1, 9, 7}, maps, workers);
}

} // namespace

/// Whole pieces one after the other, each once, about as much for each share.
void tst_Stack::shares()
{
    const auto text = [](const std::vector<std::size_t>& work, int shares) {
        QStringList parts;
        for (int k = 0; k < shares; ++k) {
            const auto [first, last] =
                shareOf(work, std::to_string(k) + '/' + std::to_string(shares));
            parts += QStringLiteral("%1-%2").arg(first).arg(last);
        }
        return parts.join(QLatin1Char(' '));
    };
    QCOMPARE(text({1, 1, 1, 1}, 1), QStringLiteral("0-4"));
    QCOMPARE(text({1, 1, 1, 1}, 2), QStringLiteral("0-2 2-4"));
    QCOMPARE(text({3, 1, 1, 1, 1, 1, 1, 1, 1}, 2), QStringLiteral("0-3 3-9"));
    QCOMPARE(text({1, 1, 8, 1}, 3), QStringLiteral("0-2 2-3 3-4"));
    QCOMPARE(text({1}, 3), QStringLiteral("0-0 0-1 1-1"));
    QCOMPARE(text({}, 2), QStringLiteral("0-0 0-0"));
    QCOMPARE(shareOf({1, 2, 3}, std::string()), std::make_pair(std::size_t{0}, std::size_t{3}));
}

/// Images do not depend on how many processes read them, or whether they are read without.
void tst_Stack::severalProcesses()
{
    QFETCH(int, layout);
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[layout]));
    const Energies wanted{8381, 8387, 8404.5, 8430};
    std::vector<MapData> one;
    StackLimits limits;
    limits.alwaysAsked = true;
    setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
    QVERIFY(!faultOfMaps(*stack, wanted, 1, one));
    for (const unsigned processes : {0U, 2U, 3U, 16U}) {
        const bool asked = processes > 0;
        setStackProgram(QStringLiteral(STACK_PROGRAM), asked ? manyProcesses() : StackLimits());
        std::vector<MapData> maps;
        const auto fault = faultOfMaps(*stack, wanted, std::max(1U, processes), maps);
        QVERIFY2(!fault, fault ? qPrintable(faultText(*fault)) : "");
        for (std::size_t k = 0; k < wanted.size(); ++k)
            QVERIFY(std::equal(maps[k].mut.begin(), maps[k].mut.end(), one[k].mut.begin(),
                               one[k].mut.end()));
    }
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

/// One question describes frames, flats and darks, another one reads them; none where they lie in
/// their files as in memory.
void tst_Stack::oneProcessForAllParts()
{
    const QString asked = m_dir.filePath(QStringLiteral("asked"));
    StackLimits limits;
    for (const auto& [layout, expected, always] :
         {std::tuple(1, "describe\nplanes\n", true), std::tuple(2, "describe\nplanes\n", false),
          std::tuple(5, "describe-tiff\nplanes-tiff\n", true), std::tuple(1, "describe\n", false),
          std::tuple(5, "describe-tiff\n", false)}) {
        QFile::remove(asked);
        limits.alwaysAsked = always;
        askByScript(m_dir.filePath(QStringLiteral("script")),
                    "echo $1 >> " + QFile::encodeName(asked) + "; exec " STACK_PROGRAM " \"$@\"",
                    limits);
        const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[layout]));
        QCOMPARE(mapsOf(*stack, {8313, 8390}).size(), std::size_t{2});
        QCOMPARE(contents(asked), QByteArray(expected));
    }
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

void tst_Stack::faultOfTheFirstPart_data()
{
    QTest::addColumn<QStringList>("damaged");
    const QString frames = QStringLiteral("s.tif");
    const QString flats = QStringLiteral("s-flat.tif");
    const QString darks = QStringLiteral("s-dark.tif");
    QTest::newRow("frames") << QStringList{frames};
    QTest::newRow("flats") << QStringList{flats};
    QTest::newRow("darks") << QStringList{darks};
    QTest::newRow("flats and darks") << QStringList{flats, darks};
    QTest::newRow("all") << QStringList{frames, flats, darks};
}

/// Of several files that are damaged the first is told, by however many processes they are read.
void tst_Stack::faultOfTheFirstPart()
{
    QFETCH(QStringList, damaged);
    const QString expected =
        QStringLiteral("%1: is no TIFF file that can be opened").arg(damaged.front());
    const QTemporaryDir dir;
    StackSource source;
    source.path = dir.filePath(QStringLiteral("s.tif"));
    source.flat = dir.filePath(QStringLiteral("s-flat.tif"));
    source.dark = dir.filePath(QStringLiteral("s-dark.tif"));
    source.kind = QStringLiteral("tiff");
    source.values = StackValues::Counts;
    const auto said = [&](FileFault fault) {
        fault.path = QDir(dir.path()).relativeFilePath(fault.path);
        return faultText(fault);
    };
    QVERIFY(writeTiffStack(source.path, counted()));
    const auto stack = opened(source);
    for (const QString& name : damaged)
        create(dir.filePath(name), "II*");
    FileFault fault;
    QVERIFY(!openStack(source, fault));
    QCOMPARE(said(fault), expected);
    for (const unsigned processes : {0U, 1U, 2U, 3U, 16U}) {
        const bool asked = processes > 0;
        setStackProgram(QStringLiteral(STACK_PROGRAM), asked ? manyProcesses() : StackLimits());
        std::vector<MapData> maps;
        const auto wrong = faultOfMaps(*stack, {8313, 8381}, std::max(1U, processes), maps);
        QCOMPARE(said(wrong.value_or(FileFault())), expected);
    }
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

/// The places of images are those of the file that was opened.
void tst_Stack::changedSinceItWasOpened()
{
    const QTemporaryDir dir;
    for (const auto& [layout, reason] : {std::pair(1, "is no HDF5 file that can be opened"),
                                         std::pair(5, "is no TIFF file that can be opened")}) {
        const StackSource source = sourceOf(dir.path(), allLayouts()[layout]);
        QVERIFY(allLayouts()[layout].write(source.path, counted()));
        const auto stack = opened(source);
        create(source.path, QByteArray(contents(source.path).size() + 1, '\0'));
        std::vector<MapData> maps;
        QCOMPARE(faultOfMaps(*stack, {8381}, 2, maps).value_or(FileFault()).reason,
                 QString::fromLatin1(reason));
    }
}

/// A process that says that all is well, and sent nothing, too little, or what nobody has asked
/// for.
void tst_Stack::pixelsAreMissing()
{
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[0]));
    const QString script = m_dir.filePath(QStringLiteral("script"));
    const auto eight = [](const char* bytes) { return QByteArray(bytes) + "\\0\\0\\0\\0\\0\\0"; };
    for (const QByteArray& sent :
         {QByteArray(), QByteArray("\\1\\0"), eight("\\0\\0") + eight("\\4\\0") + "abcd",
          eight("\\0\\0") + eight("\\4\\0") + "ab", eight("\\0\\377") + eight("\\4\\0") + "abcd",
          eight("\\0\\0") + "\\377\\377\\377\\377\\377\\377\\377\\377abcd"}) {
        askByScript(script, "printf '" + sent + "' >&3; printf 'done\\t\\n'", manyProcesses());
        std::vector<MapData> maps;
        const auto fault = faultOfMaps(*stack, {8381}, 1, maps);
        QCOMPARE(fault.value_or(FileFault()).reason,
                 QStringLiteral("makes its reader fail; it is damaged"));
        QVERIFY(maps.empty());
    }
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

/// The share behind a fault is not waited for.
void tst_Stack::faultEndsTheOthers()
{
    const auto stack = opened(sourceOf(m_dir.path(), allLayouts()[0]));
    askByScript(m_dir.filePath(QStringLiteral("script")),
                "case \"$*\" in *share=1/2*) exec sleep 1000;; esac; printf 'refused\\tno\\n'",
                manyProcesses());
    std::vector<MapData> maps;
    const auto fault = faultOfMaps(*stack, {8313, 8381, 8390}, 2, maps);
    QCOMPARE(fault.value_or(FileFault()).reason, QStringLiteral("no"));
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

/// A flat or dark of one image for all frames takes no more memory than in its file.
void tst_Stack::oneImageStaysAsStored()
{
    const CountedStack truth = counted();
    FrameSet set;
    QVERIFY(!opened(sourceOf(m_dir.path(), allLayouts()[5]))
                 ->read({1, 3}, {0, 0, truth.columns, truth.rows}, set));
    QCOMPARE(static_cast<int>(set.shared.dark.type), static_cast<int>(PixelType::U16));
    QCOMPARE(QByteArray(set.shared.dark.pixels, static_cast<int>(2 * truth.pixels())),
             QByteArray(reinterpret_cast<const char*>(truth.dark.data()),
                        static_cast<int>(2 * truth.pixels())));
}

namespace
{

/// ln of the sums of intensities over a region, pixel by pixel.
/// @param flats  whose mean is taken for all frames; 0: each frame has its own
double literalMean(const CountedStack& stack, std::size_t frame, const Region& region,
                   std::size_t flats = 0)
{
    double incident = 0.0;
    double transmitted = 0.0;
    for (int y = region.y; y < region.y + region.height; ++y)
        for (int x = region.x; x < region.x + region.width; ++x) {
            const auto i = static_cast<std::size_t>(y * stack.columns + x);
            double flat = 0.0;
            for (std::size_t k = 0; k < flats; ++k)
                flat += stack.flats[k * stack.pixels() + i] / static_cast<double>(flats);
            if (flats == 0)
                flat = stack.flats[frame * stack.pixels() + i];
            incident += flat - stack.dark[i];
            transmitted += stack.counts[frame * stack.pixels() + i] - stack.dark[i];
        }
    return std::log(incident / transmitted);
}

StackSpectrum spectrumOf(Stack& stack, const Region& region, const EnergyTilt& tilt = {})
{
    StackSpectrum spectrum;
    const auto fault = stackSpectrum(stack, QStringLiteral("stack"), region, tilt, spectrum);
    if (fault)
        qFatal("%s", qPrintable(faultText(*fault)));
    return spectrum;
}

/// Frames of mu-t, or of counts on a flat of 100 that all share, in memory; counts what is read.
class MadeStack : public Stack
{
public:
    MadeStack(const Energies& energies, int columns, int rows, const std::vector<double>& values)
        : m_values(values)
    {
        m_facts.energies = energies;
        m_facts.columns = columns;
        m_facts.rows = rows;
        m_facts.values = StackValues::MuT;
    }
    std::optional<FileFault> read(const std::vector<std::size_t>& indices, const Region&,
                                  FrameSet& set) override
    {
        const auto pixels = static_cast<std::size_t>(m_facts.columns * m_facts.rows);
        const auto planeOf = [](const double* numbers) {
            return Plane{PixelType::F64, reinterpret_cast<const char*>(numbers)};
        };
        m_flat.assign(pixels, 100.0);
        if (sharesFlat)
            set.shared.flat = planeOf(m_flat.data());
        for (const std::size_t index : indices) {
            read_.push_back(index);
            Frame frame = set.shared;
            frame.values = m_facts.values;
            frame.flat = planeOf(m_flat.data());
            frame.frame = planeOf(m_values.data() + index * pixels);
            set.frames.push_back(frame);
        }
        return std::nullopt;
    }
    void takeFor(StackValues values) { m_facts.values = values; }

    bool sharesFlat = true;
    std::vector<std::size_t> read_;

private:
    std::vector<double> m_values;
    std::vector<double> m_flat;
};

constexpr double none = std::numeric_limits<double>::quiet_NaN();

} // namespace

/// Each layout against the sums over its numbers. Counts are ln of mean intensities, transmissions
/// likewise with an intensity of 1 before the sample, and mu-t has the mean of its numbers.
void tst_Stack::meanSpectra()
{
    QFETCH(int, layout);
    const Layout& at = allLayouts()[layout];
    const auto stack = opened(sourceOf(m_dir.path(), at));
    const CountedStack numbers = counted();
    const std::vector<double> muts = numbers.mut();
    const std::vector<float> transmissions = numbers.transmission();
    const Region region{2, 1, 4, 3};
    const StackSpectrum found = spectrumOf(*stack, region);
    QCOMPARE(found.points.size(), numbers.energies.size());
    const StackValues values = stack->facts().values;
    for (std::size_t k = 0; k < found.points.size(); ++k) {
        double sum = 0.0;
        for (int i = 0; i < 12; ++i) {
            const auto pixel = k * numbers.pixels() +
                               static_cast<std::size_t>((1 + i / 4) * numbers.columns + 2 + i % 4);
            sum += values == StackValues::MuT ? muts[pixel] : double{transmissions[pixel]};
        }
        const double expected = values == StackValues::Counts ? literalMean(numbers, k, region)
                                : values == StackValues::MuT  ? sum / 12
                                                              : -std::log(sum / 12);
        QVERIFY(near(found.points[k].energy, numbers.energies[k], 1e-6));
        QVERIFY2(near(found.points[k].mut, expected, 1e-12), at.name);
    }
    QCOMPARE(found.readings.size(), values == StackValues::Counts ? found.points.size() : 0);
    QCOMPARE(found.warnings, QStringList());
    const auto fault = [&](const Region& outside) {
        StackSpectrum spectrum;
        return stackSpectrum(*stack, QStringLiteral("s"), outside, {}, spectrum)
            .value_or(FileFault())
            .reason;
    };
    QCOMPARE(fault({10, 0, 4, 3}), QStringLiteral("the region is not within its %1 x %2 pixels")
                                       .arg(numbers.columns)
                                       .arg(numbers.rows));
}

void tst_Stack::meanOfManyFrames_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("exchange") << QStringLiteral("exchange");
    QTest::newRow("tiff") << QStringLiteral("tiff");
    QTest::newRow("his") << QStringLiteral("his");
}

/// More frames than are read at once; flats of two, and darks, that they share are read once.
void tst_Stack::meanOfManyFrames()
{
    QFETCH(QString, kind);
    const QDir folder(m_dir.filePath(QStringLiteral("many-") + kind));
    QVERIFY(QDir().mkpath(folder.path()));
    const auto made = [](int frames) {
        CountedStack stack;
        stack.columns = 5;
        stack.rows = 4;
        stack.dark.assign(stack.pixels(), 100);
        for (int k = 0; k < frames; ++k)
            stack.energies.push_back(8300 + k);
        for (std::size_t i = 0; i < stack.energies.size() * stack.pixels(); ++i) {
            stack.flats.push_back(static_cast<std::uint16_t>(50000 + (i * 7919) % 9973));
            stack.counts.push_back(static_cast<std::uint16_t>(200 + (i * 104729) % 39989));
        }
        return stack;
    };
    const CountedStack stack = made(70);
    const CountedStack two = made(2);
    StackSource source;
    source.values = StackValues::Counts;
    source.path = folder.filePath(QStringLiteral("s"));
    const auto beside = [&](const char* name) { return folder.filePath(QLatin1String(name)); };
    if (kind == QLatin1String("exchange")) {
        QVERIFY(writeExchange(source.path, stack));
    } else if (kind == QLatin1String("tiff")) {
        source.path = beside("s.tif");
        QVERIFY(writeTiffStack(source.path, stack) && writeTiffStack(beside("two.tif"), two));
        source.flat = beside("two-flat.tif");
        source.dark = beside("s-dark.tif");
    } else {
        QVERIFY(writeHisStack(source.path, stack) && writeHisStack(beside("two"), two));
        source.flat = beside("two.flat");
        source.dark = beside("s.dark");
        source.energies = beside("s.txt");
    }
    const bool own = kind == QLatin1String("exchange");
    const auto reader = opened(source);
    const Region region{1, 1, 3, 2};
    const StackSpectrum found = spectrumOf(*reader, region);
    QCOMPARE(found.points.size(), std::size_t(70));
    for (std::size_t k = 0; k < 70; ++k) {
        QVERIFY(near(found.points[k].mut, literalMean(stack, k, region, own ? 0 : 2), 1e-12));
        double counts = 0.0;
        for (const std::size_t i : {6U, 7U, 8U, 11U, 12U, 13U})
            counts += stack.counts[k * stack.pixels() + i] - 100.0;
        QVERIFY(near(found.readings[k].transmitted, counts, 1e-6));
        // The noise of a flat that all share moves all points alike.
        QCOMPARE(std::isinf(found.readings[k].incident), !own);
    }
    FrameSet set;
    QVERIFY(!reader->read({0, 1}, region, set));
    const char* const flat = set.shared.flat.pixels;
    const std::size_t kept = set.sharedMemory.size();
    set.dropFrames();
    QVERIFY(!reader->read({2}, region, set));
    QCOMPARE(set.frames.size(), std::size_t(1));
    QCOMPARE(set.shared.flat.pixels, flat);
    QCOMPARE(set.sharedMemory.size(), kept);
}

/// A pixel without a number in its frame, and a frame without light.
void tst_Stack::meanLeavesOut()
{
    MadeStack stack({1, 2, 3}, 2, 2, {1, 2, 3, 4, none, 2, 6, none, 1, 1, 1, 1});
    const StackSpectrum mut = spectrumOf(stack, {});
    QCOMPARE(mut.points.size(), std::size_t(3));
    QCOMPARE(mut.points[0].mut, 2.5);
    QCOMPARE(mut.points[1].mut, 4.0);
    QCOMPARE(mut.warnings, QStringList(QStringLiteral("up to 2 of the 4 pixels of a frame have no "
                                                      "number; the mean is that of the others")));
    QVERIFY(stack.read_ == (std::vector<std::size_t>{0, 1, 2}));
    // A dark pixel counts, a frame that is dark altogether has no logarithm.
    MadeStack dark({1, 2, 3}, 2, 1, {100, 0, -1, 1, 50, 50});
    dark.takeFor(StackValues::Counts);
    const StackSpectrum counts = spectrumOf(dark, {});
    QCOMPARE(counts.points.size(), std::size_t(2));
    QVERIFY(near(counts.points[0].mut, std::log(2.0), 1e-15));
    QCOMPARE(counts.points[1].energy, 3.0);
    QCOMPARE(counts.readings.size(), std::size_t(2));
    QCOMPARE(counts.warnings,
             QStringList(QStringLiteral("there is no light at 1 of 3 energies, which are left "
                                        "out")));
}

void tst_Stack::meanNeedsTwoEnergies()
{
    const auto fault = [](MadeStack stack) {
        StackSpectrum spectrum;
        return stackSpectrum(stack, QStringLiteral("s"), {}, {}, spectrum)
            .value_or(FileFault())
            .reason;
    };
    const auto reason = [](int energies) {
        return QStringLiteral("has %1 energies with a mu-t; a spectrum needs two").arg(energies);
    };
    QCOMPARE(fault({{8300}, 1, 1, {1}}), reason(1));
    QCOMPARE(fault({{8300, 8300}, 1, 1, {1, 2}}), reason(1));
    QCOMPARE(fault({{8300, 8400}, 1, 1, {none, none}}), reason(0));
    QCOMPARE(fault({{8300, 8400}, 1, 1, {1, 2}}), QString());
}

/// Energies in any order; of those that are there twice the mean of both logarithms, with half the
/// sum of their variances' halves.
void tst_Stack::meanOfTheSameEnergy()
{
    MadeStack stack({3, 1, 2, 1}, 2, 1, {10, 30, 20, 20, 5, 5, 70, 90});
    stack.takeFor(StackValues::Counts);
    stack.sharesFlat = false;
    const StackSpectrum found = spectrumOf(stack, {});
    QCOMPARE(found.points.size(), std::size_t(3));
    for (std::size_t k = 0; k < 3; ++k)
        QCOMPARE(found.points[k].energy, static_cast<double>(k + 1));
    QVERIFY(near(found.points[0].mut, (std::log(5.0) + std::log(1.25)) / 2, 1e-15));
    QVERIFY(near(found.points[2].mut, std::log(5.0), 1e-15));
    // Gains of 3 and 7 with counts of 200 before the sample, 40 and 160 behind it.
    const double variance = (3.0 / 200 + 7.0 / 40 + 3.0 / 200 + 7.0 / 160) / 4;
    QVERIFY(near(countingVariance(found.readings[0], {3.0, 7.0}), variance, 1e-15));
    QVERIFY(near(countingVariance(found.readings[2], {3.0, 7.0}), 3.0 / 200 + 7.0 / 40, 1e-15));
}

/// The energies are those of the region's middle, counted from the first row of the frames.
void tst_Stack::meanOfTiltedRows()
{
    MadeStack stack({8300, 8310}, 2, 10, std::vector<double>(40, 1.0));
    const auto energy = [&](const Region& region) {
        return spectrumOf(stack, region, {0.1, 1.0}).points.front().energy;
    };
    QCOMPARE(energy({0, 4, 1, 1}), 8300.3);
    QCOMPARE(energy({0, 4, 1, 4}), 8300.45);
    QCOMPARE(energy({}), 8300.35);
    QCOMPARE(spectrumOf(stack, {0, 0, 1, 6}, {0.1, 1.0}).warnings, QStringList());
    QCOMPARE(spectrumOf(stack, {0, 0, 1, 7}, {-0.1, 1.0}).warnings,
             QStringList(QStringLiteral("the energies of the region's rows differ by 0.6 eV, which "
                                        "blurs the spectrum")));
}

QTEST_GUILESS_MAIN(tst_Stack)
#include "tst_Stack.moc"
