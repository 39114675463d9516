#include "system/PixelArray.h"
#include "system/Workers.h"

#include <QtTest>

#include <array>
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
    void exceptionStopsTheOtherThreads();
    void manyRuns();
    void runInsideATask_data();
    void runInsideATask();
    void exceptionOfARunInsideATask();
    void runsOfTwoThreadsAtOnce();
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

void tst_Workers::exceptionStopsTheOtherThreads()
{
    // So many tasks take seconds; the first exception ends them within a few of the other thread's.
    constexpr std::size_t tasks = 1000000000;
    Workers workers(2);
    QCOMPARE(workers.size(), 2U);
    std::atomic<bool> thrown{false};
    std::atomic<std::size_t> after{0};
    QVERIFY_EXCEPTION_THROWN(workers.run(tasks,
                                         [&](std::size_t, unsigned worker) {
                                             if (worker == 0 && !thrown.exchange(true))
                                                 throw std::runtime_error("the first");
                                             if (worker == 1)
                                                 ++after;
                                         }),
                             std::runtime_error);
    QVERIFY(thrown);
    QVERIFY2(after < tasks - 1, "the other thread did every task that was left");
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

void tst_Workers::runInsideATask_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::newRow("one thread") << 1U;
    QTest::newRow("two threads") << 2U;
    QTest::newRow("five threads") << 5U;
}

// As where somebody who hears of the progress of a long operation starts another.
void tst_Workers::runInsideATask()
{
    QFETCH(unsigned, threads);
    Workers workers(threads);
    constexpr std::size_t outer = 20;
    constexpr std::size_t inner = 30;
    std::vector<std::atomic<int>> times(outer * inner);
    std::atomic<int> wrong{0};
    workers.run(outer, [&](std::size_t i, unsigned) {
        const std::thread::id here = std::this_thread::get_id();
        workers.run(inner, [&](std::size_t k, unsigned worker) {
            ++times[i * inner + k];
            if (worker != 0 || std::this_thread::get_id() != here)
                ++wrong;
        });
    });
    for (const auto& n : times)
        QCOMPARE(n.load(), 1);
    QCOMPARE(wrong.load(), 0);
    // The threads are free again: a run after it is shared out as ever.
    std::vector<std::atomic<int>> later(1000);
    workers.run(later.size(), [&](std::size_t task, unsigned) { ++later[task]; });
    for (const auto& n : later)
        QCOMPARE(n.load(), 1);
}

void tst_Workers::exceptionOfARunInsideATask()
{
    Workers workers(2);
    const auto throwing = [&](std::size_t, unsigned) {
        workers.run(5, [](std::size_t task, unsigned) {
            if (task == 3)
                throw std::runtime_error("three");
        });
    };
    QVERIFY_EXCEPTION_THROWN(workers.run(10, throwing), std::runtime_error);
    std::atomic<int> done{0};
    std::atomic<int> helped{0};
    std::atomic<bool> bothIn{false};
    workers.run(2, [&](std::size_t task, unsigned) { // ends only where two threads take part
        ++done;
        if (task == 1)
            bothIn = true;
        while (!bothIn)
            std::this_thread::yield();
        ++helped;
    });
    QCOMPARE(done.load(), 2);
    QCOMPARE(helped.load(), 2);
}

void tst_Workers::runsOfTwoThreadsAtOnce()
{
    constexpr int runs = 500;
    constexpr std::size_t tasks = 40;
    Workers workers(3);
    std::array<std::array<std::atomic<int>, tasks>, 2> times{};
    const auto ask = [&](std::size_t asker) {
        for (int i = 0; i < runs; ++i)
            workers.run(tasks, [&](std::size_t task, unsigned) { ++times[asker][task]; });
    };
    std::thread other(ask, 1);
    ask(0);
    other.join();
    for (const auto& counts : times)
        for (const auto& n : counts)
            QCOMPARE(n.load(), runs);
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
