#include "analysis/ThicknessRatio.h"
#include "tests/model/LiteralFormulas.h"
#include "tests/support/Exact.h"
#include "tests/support/Random.h"

#include <QtTest>

namespace
{

PointRow row(double mut1, double mut2, double blank = 0.0)
{
    PointRow made;
    made.use = true;
    made.mut1 = mut1;
    made.mut2 = mut2;
    made.mutBlank = blank;
    return made;
}

bool agree(const ThicknessRatios& found, const formulas::Ratios& expected)
{
    return same(found.trSbyS, expected.sbys) && same(found.trMean, expected.mean) &&
           same(found.trLsA, expected.lsA) && same(found.trLsB, expected.lsB) &&
           same(found.trLsANB, expected.lsANB) && same(found.trLsBNB, expected.lsBNB) &&
           same(found.trVic2, expected.vic2);
}

bool sameFigures(const ThicknessRatios& a, const ThicknessRatios& b)
{
    return agree(
        a, formulas::Ratios{b.trSbyS, b.trMean, b.trLsA, b.trLsB, b.trLsANB, b.trLsBNB, b.trVic2});
}

ThicknessRatios ratios(const PointRows& rows)
{
    return thicknessRatios(rows, 3, 4);
}

} // namespace

class tst_ThicknessRatio : public QObject
{
    Q_OBJECT
private slots:
    void figuresByHand();
    void markedRowsReplaceTheUsedOnes();
    void vPointIsNeverUsed();
    void constantFactorComesBack();
    void oneRowGivesItsOwnRatio();
    void victreenFlagKeepsTheBlank();
    void noRowGivesNotANumber();
    void zeroReferenceGivesInfiniteMean();
    void edgeJumpsOfMissingSpectra();
    void selection();
    void agreesWithTheLiteralFormulas();
};

// Less the blank: (y, x) = (2, 1), (4, 4), (9, 3). Sums: x 8, x^2 26, y 15, x y 45, n 3.
// As typed: (3, 2), (5, 5), (9, 3): x' 10, x'^2 38, y' 17, x' y' 58.
void tst_ThicknessRatio::figuresByHand()
{
    const ThicknessRatios found = ratios({row(3, 2, 1), row(5, 5, 1), row(9, 3, 0)});
    COMPARE_EXACT(found.trSbyS, 15.0 / 8);
    COMPARE_EXACT(found.trMean, 6.0 / 3);
    COMPARE_EXACT(found.trLsA, (3.0 * 45 - 15 * 8) / (3 * 26 - 64));
    COMPARE_EXACT(found.trLsB, (15.0 * 26 - 45 * 8) / (3 * 26 - 64));
    COMPARE_EXACT(found.trLsANB, (3.0 * 58 - 17 * 10) / (3 * 38 - 100));
    COMPARE_EXACT(found.trLsBNB, (38.0 * 17 - 58 * 10) / (3 * 38 - 100));
    COMPARE_EXACT(found.trVic2, 0.75);
}

void tst_ThicknessRatio::markedRowsReplaceTheUsedOnes()
{
    PointRows rows{row(3, 2), row(5, 5), row(9, 3)};
    rows[2].use = false;
    COMPARE_EXACT(ratios(rows).trSbyS, 8.0 / 7);
    rows[2].tRatio = true;
    COMPARE_EXACT(ratios(rows).trSbyS, 3.0);
    COMPARE_EXACT(ratios(rows).trMean, 3.0);
}

void tst_ThicknessRatio::vPointIsNeverUsed()
{
    PointRows rows{row(3, 2), row(5, 5), row(9, 3)};
    rows[2].vPoint = true;
    COMPARE_EXACT(ratios(rows).trSbyS, 8.0 / 7);
    rows[0].tRatio = true;
    rows[2].tRatio = true;
    COMPARE_EXACT(ratios(rows).trSbyS, 1.5);
    // A mark on the V point alone still puts the used rows out.
    rows[0].tRatio = false;
    QVERIFY(std::isnan(ratios(rows).trSbyS));
}

void tst_ThicknessRatio::constantFactorComesBack()
{
    PointRows rows;
    for (const double x : {0.5, 1.25, 0.75, 2.0})
        rows.push_back(row(1.25 * x, x));
    const ThicknessRatios found = ratios(rows);
    COMPARE_EXACT(found.trSbyS, 1.25);
    COMPARE_EXACT(found.trMean, 1.25);
    COMPARE_EXACT(found.trLsA, 1.25);
    QVERIFY(found.trLsB == 0.0);
}

void tst_ThicknessRatio::oneRowGivesItsOwnRatio()
{
    const ThicknessRatios found = ratios({row(3, 2)});
    COMPARE_EXACT(found.trSbyS, 1.5);
    COMPARE_EXACT(found.trMean, 1.5);
    for (const double figure : {found.trLsA, found.trLsB, found.trLsANB, found.trLsBNB})
        QVERIFY(std::isnan(figure));
}

void tst_ThicknessRatio::victreenFlagKeepsTheBlank()
{
    PointRows rows{row(3, 2, 1), row(5, 5, 1), row(9, 3, 0)};
    const ThicknessRatios blank = ratios(rows);
    for (PointRow& changed : rows)
        changed.useVicRefs = true;
    const ThicknessRatios kept = ratios(rows);
    COMPARE_EXACT(kept.trSbyS, 17.0 / 10);
    QVERIFY(kept.trMean != blank.trMean);
    COMPARE_EXACT(kept.trLsA, kept.trLsANB);
    COMPARE_EXACT(kept.trLsB, kept.trLsBNB);
    COMPARE_EXACT(kept.trLsANB, blank.trLsANB);
    COMPARE_EXACT(kept.trLsBNB, blank.trLsBNB);
    // The target's flag has no say.
    for (PointRow& changed : rows) {
        changed.useVicRefs = false;
        changed.useVicTarget = true;
    }
    QVERIFY(sameFigures(ratios(rows), blank));
}

void tst_ThicknessRatio::noRowGivesNotANumber()
{
    for (const PointRows& rows : {PointRows(), PointRows(8)}) {
        const ThicknessRatios found = ratios(rows);
        for (const double figure :
             {found.trSbyS, found.trMean, found.trLsA, found.trLsB, found.trLsANB, found.trLsBNB})
            QVERIFY(std::isnan(figure));
        COMPARE_EXACT(found.trVic2, 0.75);
    }
}

void tst_ThicknessRatio::zeroReferenceGivesInfiniteMean()
{
    const ThicknessRatios found = ratios({row(3, 0), row(1, 2)});
    QVERIFY(std::isinf(found.trMean));
    COMPARE_EXACT(found.trSbyS, 2.0);
}

void tst_ThicknessRatio::edgeJumpsOfMissingSpectra()
{
    QVERIFY(thicknessRatios({}, 0, 4).trVic2 == 0.0);
    QVERIFY(std::isinf(thicknessRatios({}, 3, 0).trVic2));
    QVERIFY(std::isnan(thicknessRatios({}, 0, 0).trVic2));
}

void tst_ThicknessRatio::selection()
{
    const ThicknessRatios figures{1, 2, 3, 4, 5, 6, 7};
    COMPARE_EXACT(figures.selected(ThicknessType::SumBySum), 1.0);
    COMPARE_EXACT(figures.selected(ThicknessType::Mean), 2.0);
    COMPARE_EXACT(figures.selected(ThicknessType::LeastSquares), 3.0);
    COMPARE_EXACT(figures.selected(ThicknessType::LeastSquaresNoBlank), 5.0);
    COMPARE_EXACT(figures.selected(ThicknessType::EdgeJumps), 7.0);
}

void tst_ThicknessRatio::agreesWithTheLiteralFormulas()
{
    Random random;
    for (int run = 0; run < 50000; ++run) {
        PointRows rows(static_cast<std::size_t>(random.below(9)));
        const bool marks = random.oneIn(2);
        for (PointRow& made : rows) {
            made.use = random.oneIn(2);
            made.tRatio = marks && random.oneIn(3);
            made.vPoint = random.oneIn(6);
            made.useVicRefs = random.oneIn(2);
            for (double* const value : {&made.mut1, &made.mut2, &made.mutBlank})
                *value = random.oneIn(8) ? random.anyNumber() : random.uniform(-2, 3);
        }
        const double jump1 = random.anyNumber();
        const double jump2 = random.anyNumber();
        QVERIFY(agree(thicknessRatios(rows, jump1, jump2),
                      formulas::thicknessRatios(rows, jump1, jump2)));
    }
}

QTEST_GUILESS_MAIN(tst_ThicknessRatio)
#include "tst_ThicknessRatio.moc"
