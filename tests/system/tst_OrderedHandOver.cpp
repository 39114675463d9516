#include "system/OrderedHandOver.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

struct Block {
    std::size_t number = 0;
    int uses = 0;
};

/// One that no memory is ever given for.
struct RefusedBlock {
    static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
    static void operator delete(void*) {}
    static void operator delete(void*, const std::nothrow_t&) noexcept {}
};

std::unique_ptr<Block> blockOf(std::size_t number)
{
    return std::make_unique<Block>(Block{number, 0});
}

std::vector<std::size_t> numbersUpTo(std::size_t count)
{
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    return numbers;
}

void waitFor(const std::atomic<bool>& flag)
{
    while (!flag)
        std::this_thread::yield();
}

} // namespace

/// Blocks made by several threads, consumed in order by one at a time.
class tst_OrderedHandOver : public QObject
{
    Q_OBJECT

private slots:
    void inOrder_data();
    void inOrder();
    void oneAtATime();
    void laterBlocksWaitForTheFirst();
    void fullHandOverWaits();
    void stopWakesThoseThatWait();
    void nothingIsConsumedBehindTheLastOne();
    void nothingIsMadeBehindARefusal();
    void refusedMemory();
    void blocksAreUsedAgain();
    void exceptionOfAProducer_data();
    void exceptionOfAProducer();
    void exceptionOfTheConsumer_data();
    void exceptionOfTheConsumer();
};

void tst_OrderedHandOver::inOrder_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::addColumn<std::size_t>("count");
    for (const unsigned threads : {1U, 2U, 5U})
        for (const std::size_t count : {0U, 1U, 2U, 1000U})
            QTest::addRow("%u threads, %zu blocks", threads, count) << threads << count;
}

void tst_OrderedHandOver::inOrder()
{
    QFETCH(unsigned, threads);
    QFETCH(std::size_t, count);
    Workers workers(threads);
    std::vector<std::size_t> consumed;
    const auto produce = [](std::size_t number, unsigned, Block& block) {
        block.number = number;
        if (number % 3 == 0) // some blocks come later than those behind them
            std::this_thread::yield();
        return true;
    };
    const auto consume = [&](Block& block) {
        consumed.push_back(block.number);
        return true;
    };
    QVERIFY(runInOrder<Block>(workers, count, produce, consume));
    QCOMPARE(consumed, numbersUpTo(count));
}

void tst_OrderedHandOver::oneAtATime()
{
    Workers workers(4);
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    const auto consume = [&](Block&) {
        most = std::max(most.load(), ++inside);
        std::this_thread::yield();
        --inside;
        return true;
    };
    QVERIFY(runInOrder<Block>(
        workers, 1000, [](std::size_t, unsigned, Block&) { return true; }, consume));
    QCOMPARE(most.load(), 1);
}

void tst_OrderedHandOver::laterBlocksWaitForTheFirst()
{
    OrderedHandOver<Block> handOver(10);
    std::vector<std::size_t> consumed;
    const auto consume = [&](Block& block) {
        consumed.push_back(block.number);
        return true;
    };
    handOver.deliver(2, blockOf(2), consume);
    handOver.deliver(1, blockOf(1), consume);
    QCOMPARE(consumed, std::vector<std::size_t>{});
    handOver.deliver(0, blockOf(0), consume); // with it those that have come before
    QCOMPARE(consumed, numbersUpTo(3));
    handOver.deliver(3, blockOf(3), consume);
    QCOMPARE(consumed, numbersUpTo(4));
    QVERIFY(!handOver.stopped());
}

/// Two blocks may wait; whoever brings a third one waits with it until the first one has come.
void tst_OrderedHandOver::fullHandOverWaits()
{
    OrderedHandOver<Block> handOver(2);
    std::atomic<std::size_t> consumedCount{0};
    const auto consume = [&](Block&) {
        ++consumedCount;
        return true;
    };
    handOver.deliver(1, blockOf(1), consume);
    handOver.deliver(2, blockOf(2), consume);
    std::atomic<bool> firstGiven{false};
    std::atomic<bool> tooEarly{false};
    std::atomic<bool> begun{false};
    std::thread third([&] {
        begun = true;
        handOver.deliver(3, blockOf(3), consume);
        tooEarly = !firstGiven;
    });
    waitFor(begun);
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield(); // time in which it would come back if it did not wait
    firstGiven = true;
    handOver.deliver(0, blockOf(0), consume);
    third.join();
    QVERIFY(!tooEarly);
    QCOMPARE(consumedCount.load(), std::size_t{4});
}

void tst_OrderedHandOver::stopWakesThoseThatWait()
{
    OrderedHandOver<Block> handOver(1);
    std::atomic<int> consumed{0};
    const auto consume = [&](Block&) {
        ++consumed;
        return true;
    };
    handOver.deliver(1, blockOf(1), consume);
    std::vector<std::thread> waiting;
    std::atomic<int> begun{0};
    for (const std::size_t number : {2U, 3U, 4U}) {
        waiting.emplace_back([&, number] {
            ++begun;
            handOver.deliver(number, blockOf(number), consume);
        });
    }
    while (begun < 3)
        std::this_thread::yield();
    handOver.stop();
    for (std::thread& thread : waiting)
        thread.join();
    QVERIFY(handOver.stopped());
    handOver.deliver(0, blockOf(0), consume); // what comes later is dropped
    QCOMPARE(consumed.load(), 0);
}

/// The consumer that has had enough gets nothing more, though later blocks are there.
void tst_OrderedHandOver::nothingIsConsumedBehindTheLastOne()
{
    Workers workers(4);
    std::vector<std::size_t> consumed;
    const auto produce = [](std::size_t number, unsigned, Block& block) {
        block.number = number;
        return true;
    };
    const auto consume = [&](Block& block) {
        consumed.push_back(block.number);
        return block.number != 20;
    };
    QVERIFY(!runInOrder<Block>(workers, 1000, produce, consume));
    QCOMPARE(consumed, numbersUpTo(21));
}

/// After a block that cannot be made no further one is begun, and none behind it is consumed.
void tst_OrderedHandOver::nothingIsMadeBehindARefusal()
{
    Workers workers(1);
    std::vector<std::size_t> made;
    std::vector<std::size_t> consumed;
    const auto produce = [&](std::size_t number, unsigned, Block& block) {
        made.push_back(number);
        block.number = number;
        return number != 7;
    };
    const auto consume = [&](Block& block) {
        consumed.push_back(block.number);
        return true;
    };
    QVERIFY(!runInOrder<Block>(workers, 1000, produce, consume));
    QCOMPARE(made, numbersUpTo(8));
    QCOMPARE(consumed, numbersUpTo(7));
}

void tst_OrderedHandOver::refusedMemory()
{
    Workers workers(3);
    std::atomic<int> made{0};
    std::atomic<int> consumed{0};
    const auto produce = [&](std::size_t, unsigned, RefusedBlock&) {
        ++made;
        return true;
    };
    const auto consume = [&](RefusedBlock&) {
        ++consumed;
        return true;
    };
    QVERIFY(!runInOrder<RefusedBlock>(workers, 100, produce, consume));
    QCOMPARE(made.load(), 0);
    QCOMPARE(consumed.load(), 0);
}

/// One thread needs one block's memory, however many blocks there are.
void tst_OrderedHandOver::blocksAreUsedAgain()
{
    Workers workers(1);
    int uses = 0;
    const auto produce = [&](std::size_t, unsigned, Block& block) {
        uses = ++block.uses;
        return true;
    };
    QVERIFY(runInOrder<Block>(workers, 100, produce, [](Block&) { return true; }));
    QCOMPARE(uses, 100);
}

void tst_OrderedHandOver::exceptionOfAProducer_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::newRow("one thread") << 1U;
    QTest::newRow("two threads") << 2U;
    QTest::newRow("five threads") << 5U;
}

/// Block 0 fails when the others wait for it to come: all are let go, and the exception comes back.
void tst_OrderedHandOver::exceptionOfAProducer()
{
    QFETCH(unsigned, threads);
    Workers workers(threads);
    std::atomic<bool> othersAtWork{threads == 1};
    std::atomic<int> consumed{0};
    const auto produce = [&](std::size_t number, unsigned, Block&) {
        if (number == 0) {
            waitFor(othersAtWork);
            throw std::runtime_error("the first");
        }
        // So many wait at most: who has made this one waits for room.
        if (number == 4 * threads + 1)
            othersAtWork = true;
        return true;
    };
    const auto consume = [&](Block&) {
        ++consumed;
        return true;
    };
    QVERIFY_EXCEPTION_THROWN(runInOrder<Block>(workers, 1000, produce, consume),
                             std::runtime_error);
    QCOMPARE(consumed.load(), 0);
}

void tst_OrderedHandOver::exceptionOfTheConsumer_data()
{
    exceptionOfAProducer_data();
}

void tst_OrderedHandOver::exceptionOfTheConsumer()
{
    QFETCH(unsigned, threads);
    Workers workers(threads);
    std::vector<std::size_t> consumed;
    const auto produce = [](std::size_t number, unsigned, Block& block) {
        block.number = number;
        return true;
    };
    const auto consume = [&](Block& block) {
        if (block.number == 20)
            throw std::runtime_error("twenty");
        consumed.push_back(block.number);
        return true;
    };
    QVERIFY_EXCEPTION_THROWN(runInOrder<Block>(workers, 1000, produce, consume),
                             std::runtime_error);
    QCOMPARE(consumed, numbersUpTo(20));
}

QTEST_APPLESS_MAIN(tst_OrderedHandOver)
#include "tst_OrderedHandOver.moc"
