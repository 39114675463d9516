// The window of the map: what it shows, what is under the pointer, and regions.

#include "app/Body.h"
#include "app/GraphMenu.h"
#include "app/MapWindow.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/PanelActions.h"
#include "text/NumberText.h"

#include <QComboBox>
#include <QLabel>
#include <QtTest>

#include <cmath>

namespace
{

constexpr int columns = 30;
constexpr int rows = 20;
const QColor highlight(255, 128, 0);

using Id = Displays::DispId;

} // namespace

/// The panel with its map, and the window of the map.
class Loaded : public LoadedPanel
{
public:
    Loaded()
    {
        panel().findChild<QAction*>(QStringLiteral("ShowMap"))->trigger();
        window().resize(760, 720);
        QApplication::processEvents();
        canvas::picture(area());
    }

    MapWindow& window() { return panel().mapWindow(); }
    DispArea* area() { return window().findChild<DispArea*>(QStringLiteral("MapCanvas")); }
    using LoadedPanel::area;
    QString mean() { return window().findChild<QLabel*>(QStringLiteral("MapMean"))->text(); }
    QString pointer() { return window().findChild<QLabel*>(QStringLiteral("MapPointer"))->text(); }

    /// The pixel of the canvas at a position of the stage; the map's positions count from 0.
    QPointF at(double x, double y)
    {
        const ChCoord& coord = area()->coord;
        return {std::round(coord.xToScreen(x)), std::round(coord.yToScreen(y))};
    }
};

namespace
{

/// "mean ± deviation" of some values, step by step.
QString plainMean(const QVector<double>& values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    const double mean = sum / values.size();
    double squares = 0.0;
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    return QStringLiteral("%1 ± %2").arg(textFromNumber(mean),
                                         textFromNumber(std::sqrt(squares / (values.size() - 1))));
}

/// What is said of the pixels that a question lets pass.
template <class Question>
QString plainRegion(const MapResults& map, const Question& isInside)
{
    QVector<double> valences;
    QVector<double> thicknesses;
    for (std::size_t i = 0; i < map.size(); ++i) {
        const double valence = 2.0 * map.a[i] + 3.0 * (1.0 - map.a[i]);
        if (!isInside(static_cast<int>(i) % columns, static_cast<int>(i) / columns, valence,
                      map.t[i]))
            continue;
        valences << valence;
        thicknesses << map.t[i];
    }
    return QStringLiteral("%1 pixels: Valence %2, t/ts %3")
        .arg(valences.size())
        .arg(plainMean(valences), plainMean(thicknesses));
}

} // namespace

class tst_MapWindow : public QObject
{
    Q_OBJECT

private slots:
    void entryIsInTheMenusOfTheMap()
    {
        LoadedPanel loaded;
        for (int position = 0; position < 9; ++position) {
            const bool ofTheMap =
                position == Id::DispHistA || position == Id::DispHistT || position == Id::DispTA;
            const auto* menu = loaded.area(position)->findChild<GraphMenu*>();
            QCOMPARE(menu->actions().last()->objectName() == QLatin1String("ShowMap"), ofTheMap);
        }
        auto* action = loaded.panel().findChild<QAction*>(QStringLiteral("ShowMap"));
        QCOMPARE(action->shortcut(), QKeySequence(QStringLiteral("Ctrl+M")));
        QVERIFY(action->text().contains(QLatin1Char('&')));
        QVERIFY(!loaded.panel().mapWindow().isVisible());
        action->trigger();
        QVERIFY(loaded.panel().mapWindow().isVisible());
        QCOMPARE(loaded.panel().mapWindow().objectName(), QStringLiteral("MapWindow"));
    }

    void withoutAMapItIsEmpty()
    {
        FourPs panel;
        MapWindow& window = panel.mapWindow();
        window.show();
        auto* area = window.findChild<DispArea*>(QStringLiteral("MapCanvas"));
        const QImage image = canvas::picture(area);
        QCOMPARE(canvas::count(image, Qt::white), image.width() * image.height());
        canvas::drag(area, {QPointF(10, 10), QPointF(100, 100)});
        canvas::move(area, QPointF(50, 50), Qt::NoButton);
        QCOMPARE(window.findChild<QLabel*>(QStringLiteral("MapMean"))->text(),
                 QStringLiteral("Drag over the map for the mean of a region."));
    }

    void showsThePictureOfTheMap_data()
    {
        QTest::addColumn<int>("quantity");
        QTest::newRow("valence") << 0;
        QTest::newRow("thickness") << 1;
        QTest::newRow("valence by thickness") << 2;
    }
    void showsThePictureOfTheMap()
    {
        QFETCH(int, quantity);
        Loaded loaded;
        auto* choice = loaded.window().findChild<QComboBox*>(QStringLiteral("MapQuantity"));
        choice->setCurrentIndex(quantity);
        emit choice->activated(quantity);
        const QImage image = canvas::picture(loaded.area());
        // The example's map has valences from 3 to 2 along the first axis, a quarter to once the
        // target's thickness along the second: one colour on a line of constant value, others along
        // it.
        const auto colour = [&](double x, double y) {
            return image.pixelColor(loaded.at(x, y).toPoint());
        };
        QVERIFY(colour(2, 3) != QColor(Qt::white));
        QCOMPARE(colour(2, 3) == colour(27, 3), quantity == 1);
        QCOMPARE(colour(2, 3) == colour(2, 17), quantity == 0);
        const MapColours::Code first = MapColours::code(
            stepOf(loaded.panel().mapPixels().valence(3 * columns + 2), {1.475, 3.525}, 256), 63);
        if (quantity == 0)
            QCOMPARE(colour(2, 3).rgb(), MapColours::table(MapQuantity::Valence)[first]);
    }

    void pointerReadsThePixel()
    {
        Loaded loaded;
        canvas::move(loaded.area(), loaded.at(7, 4), Qt::NoButton);
        const auto pixel = static_cast<std::size_t>(4 * columns + 7);
        const MapResults& map = loaded.panel().lastMap();
        const QString text = loaded.pointer();
        QVERIFY2(
            text.endsWith(QStringLiteral("  Valence: %1  t/ts: %2")
                              .arg(textFromNumber(2.0 * map.a[pixel] + 3.0 * (1.0 - map.a[pixel])),
                                   textFromNumber(map.t[pixel]))),
            qPrintable(text));
        canvas::move(loaded.area(), QPointF(1, 1), Qt::NoButton);
        QVERIFY(!loaded.pointer().contains(QStringLiteral("Valence")));
    }

    void draggedRectangleIsARegion()
    {
        Loaded loaded;
        canvas::drag(loaded.area(), {loaded.at(4, 3), loaded.at(6, 5), loaded.at(9, 8)});
        const QString expected =
            plainRegion(loaded.panel().lastMap(), [](int x, int y, double, double) {
                return x >= 4 && x <= 9 && y >= 3 && y <= 8;
            });
        QVERIFY(expected.startsWith(QLatin1String("36 pixels: ")));
        QCOMPARE(loaded.mean(), expected);
        // Its pixels are dots of their own colour in "t/a".
        QVERIFY(canvas::count(loaded.picture(Id::DispTA), highlight) > 0);
        // A click forgets it.
        canvas::drag(loaded.area(), {loaded.at(4, 3), loaded.at(4, 3)});
        QCOMPARE(loaded.mean(), QStringLiteral("Drag over the map for the mean of a region."));
        QCOMPARE(canvas::count(loaded.picture(Id::DispTA), highlight), 0);
    }

    void regionIsSeenOnTheMap()
    {
        Loaded loaded;
        const QImage before = canvas::picture(loaded.area());
        canvas::drag(loaded.area(), {loaded.at(4, 3), loaded.at(9, 8)});
        const QImage after = canvas::picture(loaded.area());
        QVERIFY(before.pixel(loaded.at(6, 6).toPoint()) != after.pixel(loaded.at(6, 6).toPoint()));
        QCOMPARE(before.pixel(loaded.at(12, 6).toPoint()), after.pixel(loaded.at(12, 6).toPoint()));
    }

    void clickWithShiftTakesNeighbours()
    {
        Loaded loaded;
        canvas::drag(loaded.area(), {loaded.at(5, 5), loaded.at(5, 5)}, Qt::ShiftModifier);
        QVERIFY2(loaded.mean().startsWith(QLatin1String("9 pixels: ")), qPrintable(loaded.mean()));
    }

    void dragWithShiftMovesTheView()
    {
        Loaded loaded;
        const double from = loaded.area()->coord.rx0;
        canvas::drag(loaded.area(), {loaded.at(5, 5), loaded.at(9, 9)}, Qt::ShiftModifier);
        QVERIFY(loaded.area()->coord.rx0 < from);
        QCOMPARE(loaded.mean(), QStringLiteral("Drag over the map for the mean of a region."));
    }

    void regionOfTheCloudIsOneOfTheMap()
    {
        Loaded loaded;
        loaded.picture(Id::DispTA);
        const ChCoord& coord = loaded.area(Id::DispTA)->coord;
        const QPointF from(std::round(coord.xToScreen(2.2)), std::round(coord.yToScreen(0.3)));
        const QPointF to(std::round(coord.xToScreen(2.7)), std::round(coord.yToScreen(0.7)));
        canvas::drag(loaded.area(Id::DispTA), {from, to});
        const double x0 = coord.screenToX(from.x());
        const double x1 = coord.screenToX(to.x());
        const double y0 = coord.screenToY(from.y());
        const double y1 = coord.screenToY(to.y());
        QCOMPARE(loaded.mean(),
                 plainRegion(loaded.panel().lastMap(), [=](int, int, double valence, double t) {
                     return valence >= x0 && valence <= x1 && t >= y0 && t <= y1;
                 }));
        QVERIFY(canvas::count(loaded.picture(Id::DispTA), highlight) > 0);
    }

    void followsTheCalculation()
    {
        Loaded loaded;
        canvas::drag(loaded.area(), {loaded.at(4, 3), loaded.at(9, 8)});
        const QString before = loaded.mean();
        const QImage picture = canvas::picture(loaded.area());
        user::type(loaded.panel().Valence1, QStringLiteral("1"));
        user::click(loaded.panel().CalcMapB);
        QVERIFY(canvas::picture(loaded.area()) != picture);
        QVERIFY(loaded.mean().startsWith(QLatin1String("36 pixels: ")));
        QVERIFY(loaded.mean() != before);
    }

    void goesWithTheMainWindow()
    {
        Body body;
        body.show();
        body.panel()->mapWindow().show();
        body.close();
        QVERIFY(!body.panel()->mapWindow().isVisible());
    }
};

QTEST_MAIN(tst_MapWindow)
#include "tst_MapWindow.moc"
