#include "analysis/MapRun.h"
#include "tests/support/AddressLimit.h"
#include "tests/support/Exact.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/TableRow.h"

#include <QtTest>

#include <cmath>

namespace
{

const std::optional<Refusal> noRefusal;

constexpr int columns = 300;
constexpr int rows = 90; // two tasks of a calculation

/// A three-point map of values all over the histograms, and beyond them.
class Map
{
public:
    Map(int width, int height)
    {
        const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        for (std::size_t i = 0; i < m_values.size(); ++i)
            for (std::size_t k = 0; k < count; ++k)
                m_values[i].push_back(0.3 * static_cast<double>(i) +
                                      0.001 * static_cast<double>((k * (i + 3)) % 1009));
        task.points = {row(8313, -1.0, -1.1), vRow(8390, 0.9, 0.4), row(8460, 0.5, 0.55)};
        task.choice = choosePoints(task.points);
        for (const std::vector<double>& values : m_values)
            task.images.push_back({values.data(), values.size(), width});
        task.columns = width;
        task.rows = height;
        auto positions = std::make_shared<MapPositions>();
        for (std::size_t k = 0; k < count; ++k) {
            const MapPosition position{static_cast<double>(k), 0.0};
            positions->append(&position, 1);
        }
        task.positions = positions;
    }

    MapTask task;

private:
    std::array<std::vector<double>, 3> m_values;
};

/// The rule of counting, value by value.
struct PlainCounts {
    std::vector<int> counts;
    int maxCount = 0;
    int under = 0;
    int over = 0;

    PlainCounts(double first, double last, int boxes, const std::vector<double>& values)
        : counts(static_cast<std::size_t>(boxes))
    {
        const double width = (last - first) / (boxes - 1.0);
        const double from = first - width / 2;
        for (const double value : values) {
            const double place = (value - from) / width;
            if (!(place > -1.0) || !(place < 2147483648.0))
                ++under;
            else if (place >= boxes)
                ++over;
            else
                maxCount = std::max(maxCount, ++counts[static_cast<std::size_t>(place)]);
        }
    }
};

void compare(const HistogramCounts& found, const PlainCounts& expected)
{
    QVERIFY(found.counts == expected.counts);
    QCOMPARE(found.maxCount, expected.maxCount);
    QCOMPARE(found.under, expected.under);
    QCOMPARE(found.over, expected.over);
}

/// Results and histograms as the panel keeps them.
struct Kept {
    MapResults results;
    HistogramCounts valence;
    HistogramCounts thickness;

    std::optional<Refusal> calculate(const MapTask& task, double boxes, Workers& workers)
    {
        const MapHistograms histograms{
            valence, thickness, {1.5, 3.5, boxes, false}, {-2.0, 2.0, boxes, false}, 2.0, 3.0};
        return calculateMap(task, results, histograms, workers);
    }
};

/// What is there, to be compared with what is there later.
struct Copy {
    std::vector<double> a;
    std::vector<double> t;
    int columns;
    int rows;
    SharedPositions positions;
    HistogramCounts valence;
    HistogramCounts thickness;

    explicit Copy(const Kept& kept)
        : a(kept.results.a.begin(), kept.results.a.end()),
          t(kept.results.t.begin(), kept.results.t.end()), columns(kept.results.columns),
          rows(kept.results.rows), positions(kept.results.positions), valence(kept.valence),
          thickness(kept.thickness)
    {
    }

    bool holds(const Kept& kept) const
    {
        const auto same = [](const HistogramCounts& x, const HistogramCounts& y) {
            return x.counts == y.counts && x.maxCount == y.maxCount && x.under == y.under &&
                   x.over == y.over && x.from == y.from && x.to == y.to && x.width == y.width &&
                   x.boxes == y.boxes;
        };
        return a == std::vector<double>(kept.results.a.begin(), kept.results.a.end()) &&
               t == std::vector<double>(kept.results.t.begin(), kept.results.t.end()) &&
               columns == kept.results.columns && rows == kept.results.rows &&
               positions == kept.results.positions && same(valence, kept.valence) &&
               same(thickness, kept.thickness);
    }
};

} // namespace

class tst_MapRun : public QObject
{
    Q_OBJECT

private slots:
    void countsForAnyNumberOfThreads_data();
    void countsForAnyNumberOfThreads();
    void manyBinsAreThereOnce();
    void tooManyBoxesOfEither();
    void binsBeyondTheMemoryAreRefused();
    void memoryRefusedAnywhereKeepsWhatIsThere();
};

void tst_MapRun::countsForAnyNumberOfThreads_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::addColumn<int>("boxes");
    for (const unsigned threads : {1U, 2U, 7U})
        for (const int boxes : {41, 127, 16384, 16385, 1000000})
            QTest::addRow("%u threads, %d bins", threads, boxes) << threads << boxes;
}

void tst_MapRun::countsForAnyNumberOfThreads()
{
    QFETCH(unsigned, threads);
    QFETCH(int, boxes);
    const Map map(columns, rows);
    Workers workers(threads);
    Kept kept;
    QCOMPARE(kept.calculate(map.task, boxes, workers), noRefusal);
    QCOMPARE(kept.results.size(), std::size_t{columns * rows});
    std::vector<double> valences;
    for (const double a : kept.results.a)
        valences.push_back(2.0 * a + 3.0 * (1.0 - a));
    const PlainCounts valence(1.5, 3.5, boxes, valences);
    QVERIFY(valence.under > 0 && valence.over > 0 && valence.maxCount > 0); // all kinds
    compare(kept.valence, valence);
    compare(kept.thickness,
            PlainCounts(-2.0, 2.0, boxes, {kept.results.t.begin(), kept.results.t.end()}));
}

void tst_MapRun::manyBinsAreThereOnce()
{
    constexpr std::size_t boxes = 1000000;
    const Map map(6, 4);
    Workers workers(16);
    Kept kept;
    memory::bytesAsked = 0;
    QCOMPARE(kept.calculate(map.task, boxes, workers), noRefusal);
    constexpr std::size_t smallThings = 1000000;
    QVERIFY2(memory::bytesAsked <= 2 * boxes * sizeof(int) + smallThings,
             qPrintable(QString::number(memory::bytesAsked)));
}

void tst_MapRun::tooManyBoxesOfEither()
{
    const Map map(6, 4);
    Workers workers(2);
    Kept kept;
    const HistogramSettings few{1.5, 3.5, 41, false};
    const HistogramSettings tooMany{1.5, 3.5, 10000001, false};
    for (const auto& [ofA, ofT] : {std::pair(few, tooMany), std::pair(tooMany, few)}) {
        const MapHistograms histograms{kept.valence, kept.thickness, ofA, ofT, {2.0, 3.0}};
        QCOMPARE(checkMap(map.task, kept.results, histograms),
                 std::optional(Refusal::TooManyBoxes));
        QCOMPARE(calculateMap(map.task, kept.results, histograms, workers),
                 std::optional(Refusal::TooManyBoxes));
    }
    QVERIFY(kept.results.a.empty());
}

void tst_MapRun::binsBeyondTheMemoryAreRefused()
{
    const Map map(6, 4);
    Workers workers(2);
    Kept kept;
    QCOMPARE(kept.calculate(map.task, 41, workers), noRefusal);
    const Copy before(kept);
    const Map other(8, 5);
    constexpr std::size_t megabyte = 1000000;
    {
        const AddressLimit limit(AddressLimit::beside(60 * megabyte));
        memory::bytesAsked = 0;
        QCOMPARE(kept.calculate(other.task, 1e7, workers), std::optional(Refusal::TooManyBoxes));
        QVERIFY(memory::bytesAsked < megabyte); // they are not even asked for
        QVERIFY(before.holds(kept));
        QCOMPARE(kept.calculate(other.task, 1e6, workers), noRefusal);
        QVERIFY(!before.holds(kept));
    }
    // The results of a large grid leave no room for bins that would fit alone.
    const Copy later(kept);
    const AddressLimit limit(AddressLimit::beside(60 * megabyte));
    MapTask large = other.task;
    large.columns = 1600;
    large.rows = 2000; // 51 megabytes
    QCOMPARE(kept.calculate(large, 2e6, workers), std::optional(Refusal::TooManyBoxes));
    QVERIFY(later.holds(kept));
}

void tst_MapRun::memoryRefusedAnywhereKeepsWhatIsThere()
{
    const Map first(6, 4);
    const Map second(columns, rows);
    MapTask mixed = second.task; // images of another grid than the results
    mixed.images[0].columns = columns - 1;
    mixed.images[2].size -= 5;
    Workers workers(2);
    for (const MapTask* task : {&second.task, static_cast<const MapTask*>(&mixed)}) {
        Kept kept;
        QCOMPARE(kept.calculate(first.task, 41, workers), noRefusal);
        const Copy before(kept);
        int refusals = 0;
        bool done = false;
        for (std::size_t requests = 0; !done; ++requests) {
            try {
                const memory::RefusedAfter refused(requests);
                done = kept.calculate(*task, 50, workers) == noRefusal;
            } catch (const std::bad_alloc&) {
                ++refusals;
                QVERIFY(before.holds(kept));
            }
        }
        QVERIFY2(refusals > 5, qPrintable(QString::number(refusals)));
        Kept fresh;
        QCOMPARE(fresh.calculate(*task, 50, workers), noRefusal);
        QVERIFY(Copy(fresh).holds(kept));
    }
}

QTEST_APPLESS_MAIN(tst_MapRun)
#include "tst_MapRun.moc"
