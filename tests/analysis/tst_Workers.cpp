#include "analysis/PixelArray.h"
#include "analysis/Workers.h"

#include <QtTest>

#include <atomic>
#include <stdexcept>
#include <vector>

class tst_Workers : public QObject
{
    Q_OBJECT

private slots:
    void everyTaskOnce_data();
    void everyTaskOnce();
    void workerNumbers();
    void handedOutInRisingOrder();
    void exceptionComesBack();
    void manyRuns();
    void arrayGrowsAndKeeps();
    void arrayRefusesWithoutChange();
    void arrayMoves();
};

void tst_Workers::everyTaskOnce_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::addColumn<std::size_t>("tasks");
    for (const unsigned threads : {0U, 1U, 2U, 3U, 8U})
        for (const std::size_t tasks : {0U, 1U, 2U, 1000U})
            QTest::addRow("%u threads, %zu tasks", threads, tasks) << threads << tasks;
}

void tst_Workers::everyTaskOnce()
{
    QFETCH(unsigned, threads);
    QFETCH(std::size_t, tasks);
    Workers workers(threads);
    std::vector<std::atomic<int>> times(tasks);
    workers.run(tasks, [&](std::size_t task, unsigned) { ++times[task]; });
    for (const auto& n : times)
        QCOMPARE(n.load(), 1);
}

void tst_Workers::workerNumbers()
{
    Workers workers(3);
    QCOMPARE(workers.size(), 3U);
    const std::thread::id asking = std::this_thread::get_id();
    std::atomic<int> wrong{0};
    workers.run(1000, [&](std::size_t, unsigned worker) {
        if (worker > 2 || (worker == 0) != (std::this_thread::get_id() == asking))
            ++wrong;
    });
    QCOMPARE(wrong.load(), 0);
}

void tst_Workers::handedOutInRisingOrder()
{
    Workers workers(4);
    std::vector<std::vector<std::size_t>> order(workers.size());
    workers.run(1000, [&](std::size_t task, unsigned worker) { order[worker].push_back(task); });
    for (const auto& tasks : order)
        QVERIFY(std::is_sorted(tasks.begin(), tasks.end()));
}

void tst_Workers::exceptionComesBack()
{
    Workers workers(2);
    QVERIFY_EXCEPTION_THROWN(workers.run(100,
                                         [](std::size_t task, unsigned) {
                                             if (task == 7)
                                                 throw std::runtime_error("seven");
                                         }),
                             std::runtime_error);
    std::atomic<int> done{0};
    workers.run(10, [&](std::size_t, unsigned) { ++done; });
    QCOMPARE(done.load(), 10);
}

void tst_Workers::manyRuns()
{
    Workers workers(3);
    std::atomic<int> done{0};
    constexpr int runs = 5000;
    for (int i = 0; i < runs; ++i)
        workers.run(3, [&](std::size_t, unsigned) { ++done; });
    QCOMPARE(done.load(), 3 * runs);
}

void tst_Workers::arrayGrowsAndKeeps()
{
    PixelArray<int> array;
    QVERIFY(array.empty());
    for (int i = 0; i < 100000; ++i)
        QVERIFY(array.append(&i, 1));
    QCOMPARE(array.size(), std::size_t{100000});
    for (std::size_t i = 0; i < array.size(); ++i)
        QCOMPARE(array[i], static_cast<int>(i));
    QVERIFY(array.resize(10));
    QCOMPARE(array.end() - array.begin(), std::ptrdiff_t{10});
    QCOMPARE(array[9], 9);
    array.clear();
    QVERIFY(array.empty());
}

void tst_Workers::arrayRefusesWithoutChange()
{
    PixelArray<double> array;
    const double value = 2.5;
    QVERIFY(array.append(&value, 1));
    QVERIFY(!array.resize(static_cast<std::size_t>(-1)));
    QVERIFY(!array.reserve(std::size_t{1} << 59));
    QCOMPARE(array.size(), std::size_t{1});
    QCOMPARE(array[0], 2.5);
}

void tst_Workers::arrayMoves()
{
    PixelArray<double> array;
    const double value = 2.5;
    array.append(&value, 1);
    PixelArray<double> other = std::move(array);
    QCOMPARE(other.size(), std::size_t{1});
    PixelArray<double> third;
    third.append(&value, 1);
    third = std::move(other);
    QCOMPARE(third[0], 2.5);
}

QTEST_APPLESS_MAIN(tst_Workers)
#include "tst_Workers.moc"
