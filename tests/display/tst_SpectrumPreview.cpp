#include "display/SpectrumPreview.h"
#include "input/AXafsData.h"
#include "tests/support/Exact.h"
#include "tests/support/GraphPanel.h"

#include <QPainter>

#include <limits>

namespace
{

const QColor pink(255, 200, 200);
const QColor red(255, 0, 0);
const QColor green(0, 200, 0);
const QColor blue(0, 0, 200);

const PreviewCaptions captions{QStringLiteral("Edge Jump(1) : %1"),
                               QStringLiteral("Edge Jump(2) : %1")};

// 8000 to 8400 eV, mu-t 0 to 4, on a canvas of 400 x 300: 340 pixels for 440 eV.
AXafsData spectrum()
{
    AXafsData data;
    data.valid = true;
    for (const auto& point : std::vector<std::pair<double, double>>{
             {8000, 1}, {8100, 0}, {8200, 4}, {8300, 2}, {8400, 2}}) {
        data.points.push_back({0.0, point.first, point.second});
        data.energyMin = qMin(data.energyMin, point.first);
        data.energyMax = qMax(data.energyMax, point.first);
        data.mutMin = qMin(data.mutMin, point.second);
        data.mutMax = qMax(data.mutMax, point.second);
    }
    data.preEdgeEnd = 8120;
    data.edge = 8160;
    data.postEdgeStart = 8260;
    data.preVic.c = 0.5;
    data.postVic.c = 3.0;
    data.preVicNoC.a = 0.125;
    data.postVicNoC.a = 0.5;
    return data;
}

GraphPanel::Paint painter(const AXafsData* data)
{
    return [data](QPainter& painter, GraphFrame& frame) {
        drawSpectrumPreview(painter, frame, data, captions);
    };
}

int column(double energy)
{
    return static_cast<int>(40 + (energy - 7980) * 340 / 440);
}

int row(double mut)
{
    return static_cast<int>(270 - (mut + 0.2) * 255 / 4.4);
}

} // namespace

class TestSpectrumPreview : public QObject
{
    Q_OBJECT

private slots:
    void noSpectrumLeavesItWhite();
    void rangeHasRoomAround();
    void energiesOfTheFits();
    void curveInFileOrder();
    void victreenLines();
    void edgeJumpTexts();
    void looksLikeLinesOneAfterAnother();
    void singlePoint();
    void unsortedEnergies();
    void zoomSurvives();
    void absurdNumbers();
};

void TestSpectrumPreview::noSpectrumLeavesItWhite()
{
    const AXafsData empty;
    for (const AXafsData* data : {static_cast<const AXafsData*>(nullptr), &empty}) {
        GraphPanel panel(painter(data));
        QVERIFY(panel.isWhite());
        QCOMPARE(panel.coord().valid, 0);
        QVERIFY(!panel.DispA->rangeSet);
    }
}

void TestSpectrumPreview::rangeHasRoomAround()
{
    const AXafsData data = spectrum();
    GraphPanel panel(painter(&data));
    panel.picture();
    QCOMPARE(panel.coord().rx0, 7980.0);
    QCOMPARE(panel.coord().rx1, 8420.0);
    QCOMPARE(panel.coord().ry0, -0.2);
    QCOMPARE(panel.coord().ry1, 4.2);
    QCOMPARE(panel.coord().valid, 1);
}

void TestSpectrumPreview::energiesOfTheFits()
{
    const AXafsData data = spectrum();
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    QCOMPARE(canvas::columnsOf(image, pink, 250, 41, 379),
             (QVector<int>{column(8120), column(8260)}));
    QCOMPARE(canvas::columnsOf(image, red, 250, 41, 379), QVector<int>{column(8160)});
    QCOMPARE(QColor(image.pixel(column(8160), 16)), red);  // from top
    QCOMPARE(QColor(image.pixel(column(8160), 269)), red); // to bottom
}

void TestSpectrumPreview::curveInFileOrder()
{
    const AXafsData data = spectrum();
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    QCOMPARE(QColor(image.pixel(column(8000), row(1))), QColor(Qt::black));
    QCOMPARE(QColor(image.pixel(column(8100), row(0))), QColor(Qt::black));
    QCOMPARE(QColor(image.pixel(column(8200), row(4))), QColor(Qt::black));
    QCOMPARE(QColor(image.pixel(column(8350), row(2))), QColor(Qt::black));
}

void TestSpectrumPreview::victreenLines()
{
    const AXafsData data = spectrum();
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    // Over the spectrum's energies only.
    QCOMPARE(QColor(image.pixel(column(8050), row(0.5))), green);
    QCOMPARE(QColor(image.pixel(column(8390), row(0.5))), green);
    QCOMPARE(QColor(image.pixel(column(8050), row(3))), blue);
    QCOMPARE(QColor(image.pixel(column(8410), row(3))), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(column(7990), row(0.5))), QColor(Qt::white));
}

void TestSpectrumPreview::edgeJumpTexts()
{
    AXafsData data = spectrum();
    data.preVic.c = 0.5;
    data.postVic.c = 3.0; // jump 2.5
    const double l = 12398.424360387684 / 8160;
    const double jumpNoC = 0.375 * l * l * l;
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    // h = -25, b = -21, m = 40: boxes 120 wide from x 260, the first from y 19 to 40, the second
    // from y 44 to 65, the text of the first at the left, that of the second at the right.
    QImage expected = panel.picture();
    {
        QPainter p(&expected);
        p.setPen(Qt::black);
        for (const QRect& area : {QRect(260, 19, 120, 21), QRect(260, 44, 120, 21)})
            p.fillRect(area, Qt::white);
        const auto put = [&p](double y, int flags, const QString& text) {
            const QRectF box(260, y, 120, -21);
            QFont font;
            font.setPointSizeF(10);
            p.setFont(font);
            const double width =
                p.boundingRect(QRectF(260, y - 21, 1000, 1000), flags, text).width();
            font.setPointSizeF(10 / (width / 120));
            p.setFont(font);
            p.drawText(box, flags, text);
        };
        put(40, Qt::AlignLeft | Qt::AlignVCenter,
            QStringLiteral("Edge Jump(1) : ") + QString::number(jumpNoC, 'g', 6));
        put(65, Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("Edge Jump(2) : 2.5"));
    }
    QCOMPARE(image.copy(261, 16, 118, 50), expected.copy(261, 16, 118, 50));
}

void TestSpectrumPreview::looksLikeLinesOneAfterAnother()
{
    // A measured spectrum: more points than columns.
    AXafsData data = spectrum();
    data.points.clear();
    for (int i = 0; i <= 3000; ++i)
        data.points.push_back(
            {0.0, 8000 + i * 400.0 / 3000, 2 + 1.9 * std::sin(i * 0.7) * std::cos(i * 0.01)});
    data.preVic.a = 0.01;
    data.postVic.b = 0.02;
    GraphPanel panel(painter(&data));
    const QImage image = panel.plot();
    QImage expected(400, 300, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter p(&expected);
    const ChCoord& coord = panel.coord();
    const auto line = [&](double x1, double y1, double x2, double y2) {
        p.drawLine(QLine(int(coord.xToScreen(x1)), int(coord.yToScreen(y1)),
                         int(coord.xToScreen(x2)), int(coord.yToScreen(y2))));
    };
    p.setPen(pink);
    line(8120, 4.2, 8120, -0.2);
    line(8260, 4.2, 8260, -0.2);
    p.setPen(red);
    line(8160, 4.2, 8160, -0.2);
    for (int curve = 0; curve < 3; ++curve) {
        p.setPen(curve == 0 ? QColor(Qt::black) : curve == 1 ? green : blue);
        const auto value = [&](const SpectrumPoint& point) {
            return curve == 0   ? point.mut
                   : curve == 1 ? data.preVicAt(point.energy)
                                : data.postVicAt(point.energy);
        };
        for (std::size_t i = 1; i < data.points.size(); ++i)
            line(data.points[i].energy, value(data.points[i]), data.points[i - 1].energy,
                 value(data.points[i - 1]));
    }
    p.end();
    // Below the texts.
    QCOMPARE(image.copy(0, 60, image.width(), image.height() - 60),
             expected.copy(QRect(QPoint(41, 76), QPoint(379, 269))));
}

void TestSpectrumPreview::singlePoint()
{
    AXafsData data = spectrum();
    data.points = {{0.0, 8160, 1.0}};
    data.energyMin = data.energyMax = 8160;
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    // An axis without width: everything lies at infinity, the frame and the texts do not.
    QCOMPARE(panel.coord().valid, 1);
    QCOMPARE(QColor(image.pixel(40, 140)), QColor(150, 150, 150));
    QVERIFY(canvas::count(image.copy(261, 16, 118, 50), Qt::white) < 118 * 50);
    QCOMPARE(canvas::count(image, green) + canvas::count(image, blue), 0);
}

void TestSpectrumPreview::unsortedEnergies()
{
    AXafsData data = spectrum();
    std::swap(data.points[1], data.points[3]); // 8000, 8300, 8200, 8100, 8400: a zigzag
    GraphPanel panel(painter(&data));
    const QImage image = panel.picture();
    // From (8000, 1) to (8300, 2) and back through (8200, 4) and (8100, 0): three branches at 8150.
    QVERIFY(canvas::rowsOf(image, Qt::black, column(8150), 16, 269).size() >= 3);
}

void TestSpectrumPreview::zoomSurvives()
{
    const AXafsData data = spectrum();
    GraphPanel panel(painter(&data));
    panel.picture();
    canvas::move(panel.DispA, QPointF(200, 150), Qt::NoButton);
    canvas::wheel(panel.DispA, QPointF(200, 150), QPoint(0, 120));
    panel.picture();
    QCOMPARE(panel.coord().rx1 - panel.coord().rx0, 400.0);
    canvas::doubleClick(panel.DispA, QPointF(200, 150));
    panel.picture();
    QCOMPARE(panel.coord().rx1 - panel.coord().rx0, 440.0);
}

void TestSpectrumPreview::absurdNumbers()
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const double v : {0.0, 1e300, -1e300, infinite, std::nan("")}) {
        AXafsData data = spectrum();
        data.points.push_back({0.0, v, 1});
        data.points.push_back({0.0, 8200, v});
        data.points.push_back({0.0, 8210, 1});
        data.edge = v;
        data.preVic.c = v;
        GraphPanel panel(painter(&data));
        QCOMPARE(panel.picture().size(), QSize(400, 300));
        data.energyMax = v;
        data.mutMin = v;
        GraphPanel other(painter(&data));
        QCOMPARE(other.picture().size(), QSize(400, 300));
    }
}

QTEST_MAIN(TestSpectrumPreview)
#include "tst_SpectrumPreview.moc"
