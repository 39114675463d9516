#include "system/PixelArray.h"

#include <QtTest>

#include <limits>

namespace
{

constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();

/// 0, 1, 2 and so on.
bool counts(const PixelArray<double>& array, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        if (array[i] != static_cast<double>(i))
            return false;
    return array.size() == size;
}

PixelArray<double> counted(std::size_t size)
{
    PixelArray<double> array;
    for (std::size_t i = 0; i < size; ++i) {
        const auto value = static_cast<double>(i);
        if (!array.append(&value, 1))
            return {};
    }
    return array;
}

} // namespace

class tst_PixelArray : public QObject
{
    Q_OBJECT
private slots:
    void elementsStayWhileItGrows();
    void sizesBeyondAllMemory_data();
    void sizesBeyondAllMemory();
    void movedElementsGoAlong();
    void clearedKeepsItsRoom();
};

void tst_PixelArray::elementsStayWhileItGrows()
{
    PixelArray<double> array = counted(1000);
    QVERIFY(counts(array, 1000));
    QVERIFY(array.reserve(5000));
    QCOMPARE(array.capacity(), std::size_t{5000});
    QVERIFY(counts(array, 1000));
    QVERIFY(array.resize(10));
    QVERIFY(counts(array, 10));
    QCOMPARE(array.capacity(), std::size_t{5000});
}

void tst_PixelArray::sizesBeyondAllMemory_data()
{
    QTest::addColumn<quint64>("size");
    QTest::newRow("all addresses") << quint64{largest / sizeof(double)};
    // So many bytes that their number has lost its first digit.
    QTest::newRow("one more") << quint64{largest / sizeof(double) + 1};
    QTest::newRow("two more") << quint64{largest / sizeof(double) + 2};
    QTest::newRow("largest") << quint64{largest};
}

void tst_PixelArray::sizesBeyondAllMemory()
{
    QFETCH(quint64, size);
    PixelArray<double> array = counted(3);
    QVERIFY(!array.reserve(size));
    QVERIFY(!array.resize(size));
    QVERIFY(counts(array, 3));
}

void tst_PixelArray::movedElementsGoAlong()
{
    PixelArray<double> array = counted(100);
    PixelArray<double> other = counted(7);
    other = std::move(array);
    QVERIFY(counts(other, 100));
    const PixelArray<double> third(std::move(other));
    QVERIFY(counts(third, 100));
}

void tst_PixelArray::clearedKeepsItsRoom()
{
    PixelArray<double> array = counted(100);
    const std::size_t room = array.capacity();
    array.clear();
    QVERIFY(array.empty());
    QCOMPARE(array.capacity(), room);
}

QTEST_GUILESS_MAIN(tst_PixelArray)
#include "tst_PixelArray.moc"
