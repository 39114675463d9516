#include "analysis/StudentT.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_StudentT : public QObject
{
    Q_OBJECT

private slots:
    void quantilesAreThoseOfTables_data();
    void quantilesAreThoseOfTables();
    void oneAndTwoDegreesHaveClosedForms();
    void nonsenseHasNoQuantile();
};

void tst_StudentT::quantilesAreThoseOfTables_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<double>("t");
    const double infinite = std::numeric_limits<double>::infinity();
    QTest::newRow("95 %, 4") << 0.95 << 4.0 << 2.776;
    QTest::newRow("95 %, 10") << 0.95 << 10.0 << 2.228;
    QTest::newRow("99 %, 5") << 0.99 << 5.0 << 4.032;
    QTest::newRow("90 %, 30") << 0.90 << 30.0 << 1.697;
    QTest::newRow("95 %, normal") << 0.95 << infinite << 1.960;
    QTest::newRow("one standard deviation") << 0.6826895 << infinite << 1.0;
    QTest::newRow("as good as normal") << 0.95 << 1e7 << 1.960;
}

void tst_StudentT::quantilesAreThoseOfTables()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(double, t);
    QVERIFY2(std::abs(studentQuantile(level, degrees) - t) < 6e-4,
             qPrintable(QString::number(studentQuantile(level, degrees))));
}

void tst_StudentT::oneAndTwoDegreesHaveClosedForms()
{
    for (const double level : {0.1, 0.5, 0.683, 0.954}) {
        const double one = std::tan(0.5 * 3.14159265358979323846 * level);
        QVERIFY(std::abs(studentQuantile(level, 1.0) / one - 1.0) < 1e-12);
        const double two = level * std::sqrt(2.0 / (1.0 - level * level));
        QVERIFY(std::abs(studentQuantile(level, 2.0) / two - 1.0) < 1e-12);
    }
    // between whole numbers of degrees
    QVERIFY(studentQuantile(0.95, 7.5) < studentQuantile(0.95, 7.0));
    QVERIFY(studentQuantile(0.95, 7.5) > studentQuantile(0.95, 8.0));
}

void tst_StudentT::nonsenseHasNoQuantile()
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    QVERIFY(std::isnan(studentQuantile(0.0, 5.0)));
    QVERIFY(std::isnan(studentQuantile(1.0, 5.0)));
    QVERIFY(std::isnan(studentQuantile(none, 5.0)));
    QVERIFY(std::isnan(studentQuantile(0.5, 0.0)));
    QVERIFY(std::isnan(studentQuantile(0.5, none)));
}

QTEST_APPLESS_MAIN(tst_StudentT)
#include "tst_StudentT.moc"
