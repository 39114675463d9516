#include "analysis/FourPoint.h"
#include "display/Pixel.h"
#include "results/FourPointGraph.h"
#include "tests/support/Exact.h"
#include "tests/support/GraphPanel.h"
#include "tests/support/Random.h"
#include "tests/support/TableRow.h"

#include <QPainter>

#include <limits>

namespace
{

const QColor yellow(255, 255, 0);
const QColor magenta(255, 0, 255);
const QColor cyan(0, 255, 255);
const QColor red(255, 0, 0);
const QColor blue(0, 0, 255);

// References of thickness 2 and 1 (rho 2): normalization points with an absorption of 1, 2 and 4
// per thickness in both states, a V point with 3 in the first and 2 in the second. The target has
// thickness 1.5, a quarter of the first state and no background.
PointRows goodRows()
{
    const double v = 1.5 * (0.25 * 3 + 0.75 * 2);
    return {row(100, 2, 1, 1.5), row(110, 4, 2, 3), vRow(120, 6, 2, v), row(135, 8, 4, 6)};
}
constexpr double goodRho = 2.0;

GraphPanel::Paint painter(const PointRows& rows, double rho)
{
    return [rows, rho](QPainter& painter, GraphFrame& frame) {
        drawFourPointGraph(painter, frame, rows, rho);
    };
}

} // namespace

class TestFourPointGraph : public QObject
{
    Q_OBJECT

private slots:
    void goodPointsLieOnTheLine();
    void targetDividesTheWay();
    void fractionIsThatOfTheMethod();
    void withoutVPointOrTarget();
    void blankIsSubtracted();
    void rangeShowsAllThatCounts();
    void rangeShowsThePureReferences();
    void rangeLeavesOutWhatIsNotFinite();
    void uprightLineStandsUpright();
    void nothingTypedLeavesItWhite();
    void oneReferenceIsEnough();
    void linesAndDots();
    void unusedRowsAreRings();
    void dotColorsFollowTheRows();
    void absurdNumbers();
};

void TestFourPointGraph::goodPointsLieOnTheLine()
{
    const FourPointGeometry geometry = fourPointGeometry(goodRows(), goodRho);
    QCOMPARE(geometry.marks.size(), std::size_t(4));
    for (const FourPointGeometry::Mark& mark : geometry.marks) {
        if (mark.vPoint)
            QVERIFY(mark.place.x() != goodRho * mark.place.y());
        else
            QCOMPARE(mark.place.x(), goodRho * mark.place.y());
    }
    QCOMPARE(geometry.v.value(), QPointF(6, 2));
    QCOMPARE(geometry.pureRef1(), QPointF(6, 3)); // 3 per thickness of Ref 2, its column
    QCOMPARE(geometry.pureRef2(), QPointF(4, 2));
}

void TestFourPointGraph::targetDividesTheWay()
{
    const FourPointGeometry geometry = fourPointGeometry(goodRows(), goodRho);
    // A quarter of 3 and three quarters of 2, in the thickness of Ref 2.
    QCOMPARE(geometry.target->y(), 2.25);
    QCOMPARE(geometry.target->x(), 4.5);
    QCOMPARE(geometry.fraction(), 0.25);
}

void TestFourPointGraph::fractionIsThatOfTheMethod()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        PointRows rows;
        const int count = 4 + random.below(5);
        for (int k = 0; k < count; ++k)
            rows.push_back(row(100 + 10 * k, random.uniform(0.1, 3), random.uniform(0.1, 3),
                               random.uniform(0.1, 3)));
        rows[2].vPoint = true;
        const double rho = random.uniform(0.2, 3);
        const PointChoice choice = choosePoints(rows);
        std::vector<double> targets;
        for (const std::size_t k : choice.normalization)
            targets.push_back(rows[k].target());
        const TargetScale scale = FourPointLeastSquares(rows, choice).scale(targets.data());
        const double a = vPointFraction(rows, choice, rho).at(scale, rows[choice.vPoint].target());
        const double shown = fourPointGeometry(rows, rho).fraction();
        QVERIFY2(std::fabs(shown - a) <= 1e-9 * (1 + std::fabs(a)),
                 qPrintable(QStringLiteral("%1 is not %2").arg(shown).arg(a)));
    }
}

void TestFourPointGraph::withoutVPointOrTarget()
{
    PointRows rows = goodRows();
    rows[3].use = false;
    QVERIFY(fourPointGeometry(rows, goodRho).v.has_value());
    QVERIFY(!fourPointGeometry(rows, goodRho).target.has_value());
    rows = goodRows();
    rows[2].vPoint = false;
    QVERIFY(!fourPointGeometry(rows, goodRho).v.has_value());
    QVERIFY(!fourPointGeometry(rows, goodRho).target.has_value());
    QVERIFY(fourPointGeometry({}, goodRho).marks.empty());
}

void TestFourPointGraph::blankIsSubtracted()
{
    PointRows rows = goodRows();
    for (PointRow& r : rows) {
        r.mut1 += 0.5;
        r.mut2 += 0.5;
        r.mutTarget += 0.5;
        r.mutBlank = 0.5;
    }
    const FourPointGeometry geometry = fourPointGeometry(rows, goodRho);
    QCOMPARE(geometry.v.value(), QPointF(6, 2));
    QCOMPARE(geometry.fraction(), 0.25);
}

void TestFourPointGraph::rangeShowsAllThatCounts()
{
    PointRows rows = goodRows();
    rows.push_back(row(150, 100, -100, 0));
    rows.back().use = false; // not in use: does not count
    PlaneRange range = fourPointRange(fourPointGeometry(rows, goodRho));
    // The origin to (8, 4).
    QCOMPARE(range.x.from, -0.4);
    QCOMPARE(range.x.to, 8.4);
    QCOMPARE(range.y.from, -0.2);
    QCOMPARE(range.y.to, 4.2);
    for (PointRow& r : rows)
        r.use = false;
    range = fourPointRange(fourPointGeometry(rows, goodRho));
    QCOMPARE(range.x.to, 105.0);
    range = fourPointRange(fourPointGeometry({row(1, 0, 3, 0)}, 1));
    QCOMPARE(range.x.from, -0.5); // a single value keeps a width
    QCOMPARE(range.x.to, 0.5);
}

/// Of the V point alone, at (6, 2), the pure references lie at (6, 6 / rho) and (2 rho, 2).
void TestFourPointGraph::rangeShowsThePureReferences()
{
    PointRow v = row(1, 6, 2, 0);
    v.vPoint = true;
    PlaneRange range = fourPointRange(fourPointGeometry({v}, 10));
    QCOMPARE(range.x.to, 21.0);
    QCOMPARE(range.y.to, 2.1);
    range = fourPointRange(fourPointGeometry({v}, 0.5));
    QCOMPARE(range.x.to, 6.3);
    QCOMPARE(range.y.to, 12.6);
}

void TestFourPointGraph::rangeLeavesOutWhatIsNotFinite()
{
    const double infinity = std::numeric_limits<double>::infinity();
    const PlaneRange range = fourPointRange(
        fourPointGeometry({row(1, 5, infinity, 0), row(2, infinity, 5, 0), row(3, 2, 1, 0)}, 1));
    QCOMPARE(range.x.to, 2.1);
    QCOMPARE(range.y.to, 1.05);
}

/// With a ratio of 0 the line of equal absorption is the axis of M3.
void TestFourPointGraph::uprightLineStandsUpright()
{
    GraphPanel panel(painter({row(1, 6, 2, 0), row(2, 3, 1, 0)}, 0.0));
    const QImage image = panel.picture();
    const int axis = truncToInt(panel.coord().xToScreen(0.0));
    QVERIFY(canvas::rowsOf(image, yellow, axis, 16, 269).size() > 200);
}

void TestFourPointGraph::nothingTypedLeavesItWhite()
{
    GraphPanel panel(painter(PointRows(8), 1.0));
    QVERIFY(panel.isWhite());
    QCOMPARE(panel.coord().valid, 0);
}

void TestFourPointGraph::oneReferenceIsEnough()
{
    // A row of the table is a dot as soon as one of its references has a value.
    GraphPanel first(painter({row(100, 2, 0, 0)}, 1.0));
    QVERIFY(canvas::count(first.picture(), blue) > 0);
    QCOMPARE(first.coord().valid, 1);
    GraphPanel second(painter({row(100, 0, 2, 0)}, 1.0));
    QVERIFY(canvas::count(second.picture(), blue) > 0);
    QCOMPARE(second.coord().valid, 1);
    GraphPanel last(painter({PointRow(), PointRow(), row(100, 0, -0.5, 0)}, 1.0));
    QVERIFY(canvas::count(last.picture(), blue) > 0);
    GraphPanel targetAlone(painter({row(100, 0, 0, 1)}, 1.0));
    QVERIFY(targetAlone.isWhite());
}

void TestFourPointGraph::linesAndDots()
{
    GraphPanel panel(painter(goodRows(), goodRho));
    const QImage image = panel.picture();
    const auto at = [&](double m2, double m3) {
        return QPoint(static_cast<int>(panel.coord().xToScreen(m2)),
                      static_cast<int>(panel.coord().yToScreen(m3)));
    };
    const auto near = [&](const QColor& color, double m2, double m3) {
        return canvas::count(image.copy(QRect(at(m2, m3) - QPoint(1, 1), QSize(3, 3))), color) > 0;
    };
    for (const double m3 : {0.5, 1.5, 3.5})
        QVERIFY(near(yellow, goodRho * m3, m3));
    // The V point's column and level, black over the whole height and width.
    QCOMPARE(QColor(image.pixel(at(6, 0).x(), 20)), QColor(Qt::black));
    QCOMPARE(QColor(image.pixel(50, at(0, 2).y())), QColor(Qt::black));
    // The target at (4.5, 2.25): the sum of the references is 6.75 along the magenta line, and the
    // cyan one comes from the V point.
    QVERIFY(near(magenta, 5.5, 1.25));
    QVERIFY(near(magenta, 3.5, 3.25));
    QVERIFY(near(cyan, 5.25, 2.125));
    QVERIFY(near(cyan, 3.0, 2.5));
    // The plot's zero lines.
    QVERIFY(near(QColor(200, 200, 255), 0, 3));
    QVERIFY(near(QColor(200, 200, 255), 7, 0));
    // Discs.
    QCOMPARE(QColor(image.pixel(at(6, 2))), red);
    for (const QPointF place : {QPointF(2, 1), QPointF(4, 2), QPointF(8, 4)})
        QCOMPARE(QColor(image.pixel(at(place.x(), place.y()))), blue);
}

void TestFourPointGraph::unusedRowsAreRings()
{
    PointRows rows = goodRows();
    rows.push_back(row(150, 2, 3, 0));
    rows.back().use = false;
    GraphPanel panel(painter(rows, goodRho));
    const QImage image = panel.picture();
    const QPoint middle(static_cast<int>(panel.coord().xToScreen(2)),
                        static_cast<int>(panel.coord().yToScreen(3)));
    QCOMPARE(QColor(image.pixel(middle)), QColor(Qt::white));
    QVERIFY(canvas::count(image.copy(QRect(middle - QPoint(2, 2), QSize(5, 5))), blue) >= 8);
}

void TestFourPointGraph::dotColorsFollowTheRows()
{
    PointRows rows = goodRows();
    rows[0].vPoint = true; // two rows are marked; the last one counts, both are red
    GraphPanel panel(painter(rows, goodRho));
    const QImage image = panel.picture();
    for (const PointRow& r : rows) {
        const QPoint place(static_cast<int>(panel.coord().xToScreen(r.mut1)),
                           static_cast<int>(panel.coord().yToScreen(r.mut2)));
        QCOMPARE(QColor(image.pixel(place)), r.vPoint ? red : blue);
    }
}

void TestFourPointGraph::absurdNumbers()
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const double notANumber = std::nan("");
    for (const double v : {0.0, 1e300, -1e300, infinite, notANumber}) {
        for (const double rho : {1.0, 0.0, -1.0, v}) {
            PointRows rows = goodRows();
            rows[1].mut1 = v;
            rows[2].mut2 = v;
            rows[3].energy = v;
            GraphPanel panel(painter(rows, rho));
            QCOMPARE(panel.picture().size(), QSize(400, 300));
            GraphPanel good(painter(goodRows(), rho));
            QCOMPARE(good.picture().size(), QSize(400, 300));
        }
    }
}

QTEST_MAIN(TestFourPointGraph)
#include "tst_FourPointGraph.moc"
