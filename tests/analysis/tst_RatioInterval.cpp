#include "analysis/RatioInterval.h"

#include <QtTest>

#include <cmath>

class tst_RatioInterval : public QObject
{
    Q_OBJECT

private slots:
    void exactDenominatorGivesTheUsualInterval();
    void endsSolveFiellersEquation();
    void noNoiseGivesAPoint();
    void unknownDenominatorHasNoInterval();
    void notANumberHasNoInterval();
};

void tst_RatioInterval::exactDenominatorGivesTheUsualInterval()
{
    const auto interval = ratioInterval(6.0, 2.0, {0.04, 0.0, 0.0}, 1.5);
    QVERIFY(interval.has_value());
    QVERIFY(std::abs(interval->low - (3.0 - 1.5 * 0.2 / 2.0)) < 1e-12);
    QVERIFY(std::abs(interval->high - (3.0 + 1.5 * 0.2 / 2.0)) < 1e-12);
}

/// L1 = L2 = 1 and the same variance 0.25, t = 1: (1 - a)^2 = 0.25 (1 + a^2), which is
/// 0.75 a^2 - 2 a + 0.75 = 0.
void tst_RatioInterval::endsSolveFiellersEquation()
{
    const auto interval = ratioInterval(1.0, 1.0, {0.25, 0.0, 0.25}, 1.0);
    QVERIFY(interval.has_value());
    QVERIFY(std::abs(interval->low - (4.0 - std::sqrt(7.0)) / 3.0) < 1e-12);
    QVERIFY(std::abs(interval->high - (4.0 + std::sqrt(7.0)) / 3.0) < 1e-12);
    // the sign of both parts together does not matter, a correlation does
    const auto turned = ratioInterval(-1.0, -1.0, {0.25, 0.0, 0.25}, 1.0);
    QVERIFY(std::abs(turned->low - interval->low) < 1e-12);
    const auto together = ratioInterval(1.0, 1.0, {0.25, 0.25, 0.25}, 1.0);
    QVERIFY(std::abs(together->low - 1.0) < 1e-7);
    QVERIFY(std::abs(together->high - 1.0) < 1e-7);
}

void tst_RatioInterval::noNoiseGivesAPoint()
{
    const auto interval = ratioInterval(0.7, 2.0, {}, 1.0);
    QVERIFY(interval.has_value());
    QCOMPARE(interval->low, 0.35);
    QCOMPARE(interval->high, 0.35);
}

void tst_RatioInterval::unknownDenominatorHasNoInterval()
{
    QVERIFY(!ratioInterval(1.0, 1.0, {0.1, 0.0, 1.0}, 1.0)); // L2 is t standard deviations from 0
    QVERIFY(!ratioInterval(1.0, 1.0, {0.1, 0.0, 1.1}, 1.0));
    QVERIFY(ratioInterval(1.0, 1.0, {0.1, 0.0, 0.9}, 1.0));
}

void tst_RatioInterval::notANumberHasNoInterval()
{
    const double none = std::nan("");
    QVERIFY(!ratioInterval(none, 1.0, {0.1, 0.0, 0.1}, 1.0));
    QVERIFY(!ratioInterval(1.0, none, {0.1, 0.0, 0.1}, 1.0));
    QVERIFY(!ratioInterval(1.0, 1.0, {none, 0.0, 0.1}, 1.0));
    QVERIFY(!ratioInterval(1.0, 1.0, {0.1, 0.0, 0.1}, none));
}

QTEST_APPLESS_MAIN(tst_RatioInterval)
#include "tst_RatioInterval.moc"
