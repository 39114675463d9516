#include "display/CColors.h"
#include "input/AXafsData.h"
#include "results/MutsGraph.h"
#include "tests/support/Exact.h"
#include "tests/support/GraphPanel.h"

#include <limits>

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();

const QColor grey(200, 200, 200);
const QColor green(80, 255, 80);
const QColor red(255, 0, 0);
const QColor blue(0, 0, 255);
const QColor orange(255, 128, 0);

// A spectrum whose Victreen lines are constants, pre and post, with the given normalized values.
AXafsData spectrum(const std::vector<QPointF>& normalized, double pre = 1.0, double post = 3.0)
{
    AXafsData data;
    data.valid = true;
    data.edge = 8350;
    data.preVic.c = pre;
    data.postVic.c = post;
    for (const QPointF& point : normalized)
        data.points.push_back({0.0, point.x(), pre + point.y() * (post - pre)});
    return data;
}

AXafsData level(double value)
{
    return spectrum({{8000, value}, {8300, value}, {8470, value}, {8700, value}});
}

// Range 8300 .. 8470, two pixels for an eV.
MutsContent content()
{
    MutsContent c;
    c.edge = 8350;
    c.preEndOffset = -50;
    c.postStartOffset = 120;
    return c;
}

GraphPanel::Paint painter(const MutsContent& c)
{
    return [&c](QPainter& painter, GraphFrame& frame) { drawMutsGraph(painter, frame, c); };
}

} // namespace

class TestMutsGraph : public QObject
{
    Q_OBJECT

private slots:
    void normalizesByTwoLines();
    void normalizesByTheEdgeJump();
    void rangeOfCurves_data();
    void rangeOfCurves();
    void nothingLoadedLeavesItWhite();
    void rangesAroundTheEdge();
    void levelsAndEdges();
    void pointRows_data();
    void pointRows();
    void colorsAndWidthsOfSpectra();
    void chosenSpectrumIsWider();
    void selectedLieOverDisplayOnly();
    void fitLiesOnTop();
    void blankDoesNotSetTheRange();
    void blankWithoutAnEdge();
    void pointsJoinInFileOrder();
    void manySpectra();
    void absurdNumbers();
    void zoomSurvives();
};

void TestMutsGraph::normalizesByTwoLines()
{
    AXafsData data = spectrum({{8300, 0}, {8350, 0.5}, {8400, 1.25}});
    data.postVic.a = 1.0; // the lines part: 3 + lambda cubed above, 1 below
    const std::vector<QPointF> curve = normalizedCurve(data, Normalization::ByTwoLines);
    QCOMPARE(curve.size(), std::size_t(3));
    QCOMPARE(curve[1].x(), 8350.0);
    const double l = 12398.424360387684 / 8350;
    QCOMPARE(curve[1].y(), 1.0 / (2.0 + l * l * l)); // mu-t 2, less 1
}

void TestMutsGraph::normalizesByTheEdgeJump()
{
    AXafsData data = spectrum({{8300, 0}, {8400, 1.25}});
    data.postVic.a = 1.0;
    const double l = 12398.424360387684 / 8350;
    const double jump = 2.0 + l * l * l; // at the edge, for all points
    const std::vector<QPointF> curve = normalizedCurve(data, Normalization::ByEdgeJump);
    QCOMPARE(curve[0].y(), 0.0);
    QCOMPARE(curve[1].y(), 2.5 / jump);
}

void TestMutsGraph::rangeOfCurves_data()
{
    QTest::addColumn<QVector<QPointF>>("points");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    using Points = QVector<QPointF>;
    QTest::newRow("a twentieth around") << Points{{8300, -1}, {8400, 3}} << -1.2 << 3.2;
    QTest::newRow("beside the energies")
        << Points{{8300, 0}, {8299, -9}, {8401, 9}, {8400, 1}} << -0.05 << 1.05;
    QTest::newRow("no numbers")
        << Points{{8350, notANumber}, {8350, infinite}, {8350, 0}, {8360, 2}} << -0.1 << 2.1;
    QTest::newRow("one value") << Points{{8350, 2}, {8360, 2}} << 1.5 << 2.5;
    QTest::newRow("nothing there") << Points{{8500, 2}} << -0.05 << 1.05;
    QTest::newRow("nothing at all") << Points{} << -0.05 << 1.05;
}

void TestMutsGraph::rangeOfCurves()
{
    QFETCH(QVector<QPointF>, points);
    QFETCH(double, from);
    QFETCH(double, to);
    const std::vector<QPointF> curve(points.begin(), points.end());
    for (const AxisEnds& energies : {AxisEnds{8300, 8400}, AxisEnds{8400, 8300}}) {
        const AxisEnds range = curveRange({{}, curve}, energies);
        QCOMPARE(range.from, from);
        QCOMPARE(range.to, to);
    }
}

void TestMutsGraph::nothingLoadedLeavesItWhite()
{
    const AXafsData empty;
    MutsContent c = content();
    c.rows.resize(8);
    c.selected = {nullptr, &empty, nullptr, nullptr};
    c.displayOnly = {&empty};
    GraphPanel panel(painter(c));
    QVERIFY(panel.isWhite());
    QCOMPARE(panel.coord().valid, 0);
    QVERIFY(!panel.DispA->rangeSet);
}

void TestMutsGraph::rangesAroundTheEdge()
{
    const AXafsData data = spectrum({{8000, -7}, {8310, 0}, {8450, 2}, {8700, 9}});
    MutsContent c = content();
    c.selected = {&data};
    GraphPanel panel(painter(c));
    panel.picture();
    COMPARE_EXACT(panel.coord().rx0, 8300.0);
    COMPARE_EXACT(panel.coord().rx1, 8470.0);
    QCOMPARE(panel.coord().ry0, -0.1);
    QCOMPARE(panel.coord().ry1, 2.1);
}

void TestMutsGraph::levelsAndEdges()
{
    const AXafsData low = level(0.2);
    const AXafsData high = level(0.9);
    MutsContent c = content();
    c.selected = {&low, &high};
    GraphPanel panel(painter(c));
    QImage image = panel.picture();
    // 0.165 to 0.935: of the levels only a half lies inside, at 270 - 0.335 / 0.77 * 255 = 159.
    QCOMPARE(canvas::rowsOf(image, grey, 60, 16, 269), QVector<int>{159});
    // 8350 stands at 40 + 100; the two others are the ends of the axis, under the frame.
    QCOMPARE(canvas::columnsOf(image, green, 100, 41, 379), QVector<int>{140});
    // Zoomed out by a tenth about (210, 142) all of them are in view.
    canvas::move(panel.DispA, QPointF(210, 142), Qt::NoButton);
    for (int i = 0; i < 10; ++i)
        canvas::wheel(panel.DispA, QPointF(210, 142), QPoint(0, -120));
    image = panel.picture();
    QCOMPARE(canvas::rowsOf(image, grey, 60, 16, 269).size(), 3);
    QCOMPARE(canvas::columnsOf(image, green, 100, 41, 379).size(), 3);
}

void TestMutsGraph::pointRows_data()
{
    QTest::addColumn<bool>("use");
    QTest::addColumn<bool>("tRatio");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QVector<int>>("columns");
    QTest::newRow("neither") << false << false << blue << QVector<int>{240};
    QTest::newRow("used") << true << false << blue << QVector<int>{239, 240, 241};
    QTest::newRow("thickness ratio") << false << true << red << QVector<int>{240};
    QTest::newRow("both") << true << true << red << QVector<int>{239, 240, 241};
}

void TestMutsGraph::pointRows()
{
    QFETCH(bool, use);
    QFETCH(bool, tRatio);
    QFETCH(QColor, color);
    QFETCH(QVector<int>, columns);
    const AXafsData data = level(0.5); // black, in the middle of the range
    MutsContent c = content();
    c.selected = {&data};
    PointRow row;
    row.energy = 8400; // 40 + 200
    row.use = use;
    row.tRatio = tRatio;
    c.rows = {row, PointRow()}; // and a row without an energy
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    QCOMPARE(canvas::columnsOf(image, color, 100, 41, 379), columns);
    QCOMPARE(canvas::count(panel.plot(), color == red ? blue : red), 0);
}

void TestMutsGraph::colorsAndWidthsOfSpectra()
{
    std::vector<AXafsData> data;
    for (int i = 0; i < 6; ++i)
        data.push_back(level(0.1 * i));
    MutsContent c = content();
    c.selected = {&data[0], &data[1], &data[2], &data[3]};
    c.displayOnly = {&data[4], &data[5]};
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    const CColors palette;
    for (int i = 0; i < 6; ++i) {
        const QVector<int> rows = canvas::rowsOf(image, palette.colors[i], 300, 16, 269);
        QCOMPARE(rows.size(), i < 4 ? 2 : 1);
        const double y = 0.1 * i;
        // From -0.025 to 0.525.
        QVERIFY(qAbs(rows.last() - (270 - (y + 0.025) / 0.55 * 255)) <= 2);
    }
    // A selector without a spectrum keeps its color for itself.
    c.selected[1] = nullptr;
    GraphPanel without(painter(c));
    const QImage other = without.picture();
    QCOMPARE(canvas::rowsOf(other, palette.colors[1], 300, 16, 269).size(), 0);
    QCOMPARE(canvas::rowsOf(other, palette.colors[2], 300, 16, 269).size(), 2);
    QCOMPARE(canvas::rowsOf(other, palette.colors[4], 300, 16, 269).size(), 1);
}

void TestMutsGraph::chosenSpectrumIsWider()
{
    const AXafsData one = level(0.2);
    const AXafsData two = level(0.8);
    MutsContent c = content();
    c.selected = {nullptr, nullptr, nullptr, nullptr};
    c.displayOnly = {&one, &two};
    const CColors palette;
    for (const int chosen : {-1, 0, 1, 7}) {
        c.chosen = chosen;
        GraphPanel panel(painter(c));
        const QImage image = panel.picture();
        for (int i = 0; i < 2; ++i)
            QCOMPARE(canvas::rowsOf(image, palette.colors[4 + i], 300, 16, 269).size(),
                     i == chosen ? 3 : 1);
    }
}

void TestMutsGraph::selectedLieOverDisplayOnly()
{
    const AXafsData data = level(0.5);
    MutsContent c = content();
    c.selected = {&data, &data, nullptr, nullptr};
    c.displayOnly = {&data};
    c.chosen = 0;
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    const CColors palette;
    QCOMPARE(canvas::rowsOf(image, palette.colors[0], 300, 16, 269).size(), 2);
    QCOMPARE(canvas::rowsOf(image, palette.colors[1], 300, 16, 269).size(), 0);
    QCOMPARE(canvas::rowsOf(image, palette.colors[4], 300, 16, 269).size(), 1); // of three
}

void TestMutsGraph::fitLiesOnTop()
{
    const AXafsData target = level(0.5);
    AXafsData fit;
    fit.points = {{0.0, 8310, 0.5}, {0.0, 8460, 0.5}}; // normalized already, no Victreen lines
    MutsContent c = content();
    c.selected = {nullptr, nullptr, &target, nullptr};
    c.fit = &fit;
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    QCOMPARE(canvas::rowsOf(image, orange, 200, 16, 269).size(), 1);
    QCOMPARE(canvas::rowsOf(image, blue, 200, 16, 269).size(), 1); // of two
    QCOMPARE(canvas::columnsOf(image, orange, canvas::rowsOf(image, orange, 200, 16, 269).first(),
                               41, 379)
                 .first(),
             60); // 8310
}

void TestMutsGraph::blankDoesNotSetTheRange()
{
    const AXafsData data = spectrum({{8300, 0}, {8470, 1}});
    const AXafsData blank = spectrum({{8300, -0.5}, {8330, -0.8}, {8470, 2.5}});
    const QColor color = CColors().colors[3];
    MutsContent c = content();
    c.selected = {&data, nullptr, nullptr, &blank};
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    QCOMPARE(panel.coord().ry0, -0.05);
    QCOMPARE(panel.coord().ry1, 1.05);
    QVERIFY(canvas::count(image, color) > 0); // drawn all the same
    // On its own it leaves the scale of normalized spectra.
    c.selected[0] = nullptr;
    GraphPanel alone(painter(c));
    QVERIFY(canvas::count(alone.picture(), color) > 0);
    QCOMPARE(alone.coord().ry1, 1.05);
}

void TestMutsGraph::blankWithoutAnEdge()
{
    const AXafsData data = spectrum({{8300, 0}, {8470, 1}});
    const QColor color = CColors().colors[3];
    MutsContent c = content();
    // What lies beside the energies shown does not count.
    // What counts as well below the edge ends at 8325.
    struct Row {
        double energy;
        double value;
        bool drawn;
    };
    for (const Row& row : std::vector<Row>{{8310, 0.5, true},
                                           {8310, -0.5, true},
                                           {8310, 0.6, false},
                                           {8310, -0.6, false},
                                           {8310, notANumber, false},
                                           {8325, 0.6, true},
                                           {8340, 3.0, true},
                                           {8340, -1.0, true},
                                           {8340, 3.1, false},
                                           {8340, -1.1, false},
                                           {8340, infinite, false},
                                           {8340, notANumber, false}}) {
        const bool drawn = row.drawn;
        const AXafsData blank =
            spectrum({{8200, 50}, {8305, 0}, {row.energy, row.value}, {8400, 1}});
        c.selected = {&data, nullptr, nullptr, &blank};
        GraphPanel panel(painter(c));
        QCOMPARE(canvas::count(panel.picture(), color) > 0, drawn);
        // A target of the same kind is drawn.
        c.selected = {&data, nullptr, &blank, nullptr};
        GraphPanel target(painter(c));
        QVERIFY(canvas::count(target.picture(), CColors().colors[2]) > 0);
    }
}

void TestMutsGraph::pointsJoinInFileOrder()
{
    // There and back again: the way back crosses the way there.
    const AXafsData data = spectrum({{8320, 0}, {8440, 1}, {8440, 0}, {8320, 1}});
    MutsContent c = content();
    c.selected = {&data};
    GraphPanel panel(painter(c));
    const QImage image = panel.picture();
    // 8320 is 80, 8440 is 320; at 8350, a quarter of the way, both branches are there.
    const QVector<int> rows = canvas::rowsOf(image, Qt::black, 139, 16, 269);
    QVERIFY(rows.size() >= 4);
    QVERIFY(qAbs(rows.first() - (270 - 0.8 / 1.1 * 255)) <= 3);
    QVERIFY(qAbs(rows.last() - (270 - 0.3 / 1.1 * 255)) <= 3);
    QCOMPARE(canvas::rowsOf(image, Qt::black, 75, 16, 269).size(), 0);
    QVERIFY(canvas::rowsOf(image, Qt::black, 320, 16, 269).size() > 200); // 1 to 0
}

void TestMutsGraph::manySpectra()
{
    std::vector<AXafsData> data;
    for (int i = 0; i < 120; ++i)
        data.push_back(level(i / 120.0));
    MutsContent c = content();
    c.selected = {nullptr, nullptr, nullptr, nullptr};
    for (const AXafsData& spectrum : data)
        c.displayOnly.push_back(&spectrum);
    GraphPanel panel(painter(c));
    QVERIFY(canvas::count(panel.picture(), CColors(124).colors[123]) > 0);
}

void TestMutsGraph::absurdNumbers()
{
    for (const double v : {0.0, 1e300, -1e300, infinite, notANumber}) {
        AXafsData data = spectrum({{8300, 0}, {8350, v}, {v, 0.5}, {8400, 1}, {v, v}});
        data.edge = v;
        AXafsData single = spectrum({{8350, 0.5}});
        MutsContent c = content();
        c.selected = {&data, &single, nullptr, nullptr};
        c.fit = &data;
        PointRow row;
        row.energy = v;
        row.use = true;
        c.rows = {row};
        for (const double edge : {8350.0, v}) {
            for (const Normalization normalization :
                 {Normalization::ByTwoLines, Normalization::ByEdgeJump}) {
                c.edge = edge;
                c.normalization = normalization;
                c.postStartOffset = edge == v ? v : 120;
                GraphPanel panel(painter(c));
                QCOMPARE(panel.picture().size(), QSize(400, 300));
            }
        }
    }
}

void TestMutsGraph::zoomSurvives()
{
    const AXafsData data = spectrum({{8300, 0}, {8470, 1}});
    MutsContent c = content();
    c.selected = {&data};
    GraphPanel panel(painter(c));
    panel.picture();
    canvas::drag(panel.DispA, {QPointF(200, 100), QPointF(180, 100)}, Qt::ShiftModifier);
    panel.picture();
    QCOMPARE(panel.coord().rx0, 8310.0);
    c.edge = 8360; // the edge moves, the view does not
    panel.picture();
    QCOMPARE(panel.coord().rx0, 8310.0);
    canvas::doubleClick(panel.DispA, QPointF(200, 100));
    panel.picture();
    COMPARE_EXACT(panel.coord().rx0, 8310.0);
    COMPARE_EXACT(panel.coord().rx1, 8480.0);
}

QTEST_MAIN(TestMutsGraph)
#include "tst_MutsGraph.moc"
