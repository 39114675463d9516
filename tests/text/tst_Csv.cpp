#include "text/Csv.h"

#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <cstring>
#include <limits>

class tst_Csv : public QObject
{
    Q_OBJECT
private slots:
    void lines();
    void numbers_data();
    void numbers();
    void everyNumberReadsBack();
    void nothingIsEmpty();
    void recordsAreTakenApart();
    void linesComeBack();
};

// RFC 4180: what stands in quotation marks, and how.
void tst_Csv::lines()
{
    QCOMPARE(csv::line({"a", "b c", ""}), QByteArray("a,b c,\r\n"));
    QCOMPARE(csv::line({"a,b", "say \"so\"", "two\nlines", "re\rturn"}),
             QByteArray("\"a,b\",\"say \"\"so\"\"\",\"two\nlines\",\"re\rturn\"\r\n"));
    QCOMPARE(csv::line({"\xE9\x89\x84"}), QByteArray("\xE9\x89\x84\r\n"));
    QCOMPARE(csv::line({}), QByteArray("\r\n"));
}

void tst_Csv::numbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("0") << 0.0 << QByteArray("0");
    QTest::newRow("-0") << -0.0 << QByteArray("-0");
    QTest::newRow("a tenth") << 0.1 << QByteArray("0.1");
    QTest::newRow("sum of tenths") << 0.1 + 0.2 << QByteArray("0.30000000000000004");
    QTest::newRow("large") << 1e22 << QByteArray("1e+22");
    QTest::newRow("small") << 5e-324 << QByteArray("5e-324");
    QTest::newRow("valence") << 2.65 << QByteArray("2.65");
    QTest::newRow("nan") << qQNaN() << QByteArray("nan");
    QTest::newRow("-nan") << -qQNaN() << QByteArray("nan");
    QTest::newRow("inf") << qInf() << QByteArray("inf");
    QTest::newRow("-inf") << -qInf() << QByteArray("-inf");
}

void tst_Csv::numbers()
{
    QFETCH(double, value);
    QTEST(csv::number(value), "text");
}

void tst_Csv::everyNumberReadsBack()
{
    Random random;
    for (int i = 0; i < 100000; ++i) {
        std::uint64_t bits = 0;
        for (int k = 0; k < 4; ++k)
            bits = bits << 16 | static_cast<std::uint64_t>(random.below(1 << 16));
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        const QByteArray text = csv::number(value);
        COMPARE_EXACT(text.toDouble(), value);
        QVERIFY(text.size() <= 24);
    }
}

void tst_Csv::nothingIsEmpty()
{
    QCOMPARE(csv::number(std::optional<double>()), QByteArray());
    QCOMPARE(csv::number(std::optional<double>(0.5)), QByteArray("0.5"));
}

void tst_Csv::recordsAreTakenApart()
{
    const auto records = csv::records("\xEF\xBB\xBF"
                                      "a,b\r\n\r\n\"x\ny\",\"say \"\"so\"\"\"\n,\n1,\"open, ");
    const QList<QPair<int, QByteArrayList>> expected{
        {1, {"a", "b"}}, {3, {"x\ny", "say \"so\""}}, {5, {"", ""}}, {6, {"1", "open, "}}};
    QCOMPARE(static_cast<int>(records.size()), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(records[static_cast<std::size_t>(i)].line, expected[i].first);
        QCOMPARE(records[static_cast<std::size_t>(i)].fields, expected[i].second);
    }
    QVERIFY(csv::records({}).empty());
    QVERIFY(csv::records("\r\n\n").empty());
}

void tst_Csv::linesComeBack()
{
    Random random;
    for (int i = 0; i < 2000; ++i) {
        QByteArrayList fields{"first"};
        for (int k = random.below(4); k > 0; --k) {
            QByteArray field;
            for (int n = random.below(6); n > 0; --n)
                field += "a,\"\n\r;"[random.below(6)];
            fields += field;
        }
        const auto records = csv::records(csv::line(fields) + csv::line({"end"}));
        QCOMPARE(static_cast<int>(records.size()), 2);
        QCOMPARE(records.front().fields, fields);
    }
}

QTEST_GUILESS_MAIN(tst_Csv)
#include "tst_Csv.moc"
