#include "display/PopBase.h"
#include "input/AXafsData.h"
#include "tests/support/Exact.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/PanelActions.h"
#include "tests/support/SpectrumFile.h"
#include "text/NumberText.h"

#include <QtTest>

#include <cmath>
#include <functional>

namespace
{

const QColor frameGrey(150, 150, 150);
const QColor barA(255, 200, 200);
const QColor barT(200, 255, 200);

bool isWhite(const QImage& image)
{
    return canvas::count(image, Qt::white) == image.width() * image.height();
}

/// A canvas' plot area, without margins and frame.
QImage plot(const LoadedPanel& loaded, int position)
{
    const ChCoord& coord = loaded.area(position)->coord;
    const QImage image = loaded.picture(position);
    return image.copy(QRect(QPoint(int(coord.px0) + 1, int(coord.py1) + 1),
                            QPoint(int(coord.px1) - 1, int(coord.py0) - 1)));
}

QPointF middle(const LoadedPanel& loaded, int position)
{
    return QRectF(loaded.area(position)->rect()).center();
}

} // namespace

/// Counts how often a widget is painted.
class Paints : public QObject
{
    Q_OBJECT

public:
    explicit Paints(QWidget* widget) { widget->installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }
};

class TestGraphWindow : public QObject
{
    Q_OBJECT

private slots:
    void hiddenUntilAsked();
    void withoutData_data();
    void withoutData();
    void withData_data();
    void withData();
    void zoomAndReset_data();
    void zoomAndReset();
    void popOutAndDock_data();
    void popOutAndDock();
    void dragsMarkers_data();
    void dragsMarkers();
    void dragFollowsLive();
    void dragInAPreview_data();
    void dragInAPreview();
    void edgeCarriesTheRelativeLines();
    void poppedOutGraphFollows();
    void doubleClickForgetsFits();
    void normalizationButtons();
    void normalizedByBothLinesOrByTheJump();
    void chosenSpectrumIsWider();
    void removedSpectrumIsGone();
    void removedSpectrumIsTheChosenOne();
    void displayOnlySpectraFollowTheEdge();
    void fitIsShownAmongTheSpectra();
    void thicknessGraphFollowsTheMap();
    void repaintsWithEachChange_data();
    void repaintsWithEachChange();
    void histogramsShowTheMap();
    void thicknessAgainstValence();
    void fourPointGeometry();
    void repaintsWriteNoMessages();
    void absurdSettings_data();
    void absurdSettings();
};

void TestGraphWindow::hiddenUntilAsked()
{
    FourPs panel;
    QVERIFY(!panel.displays->isVisible());
    QVERIFY(panel.displays->isWindow());
    user::click(panel.ShowDAB);
    QVERIFY(panel.displays->isVisible());
    for (int position = 0; position < 8; ++position)
        QVERIFY(panel.displays->panel(position)->isVisible());
    QVERIFY(!panel.displays->panel(8)->isVisible());
}

namespace
{
void addPanels()
{
    QTest::addColumn<int>("position");
    const char* names[] = {"Ref1",          "Ref2",          "Target", "Muts", "LCF vs 4PS",
                           "Histgram of a", "Histgram of t", "t/a",    "M2/M3"};
    for (int position = 0; position < 9; ++position)
        QTest::newRow(names[position]) << position;
}
} // namespace

void TestGraphWindow::withoutData_data()
{
    addPanels();
}

void TestGraphWindow::withoutData()
{
    QFETCH(int, position);
    FourPs panel;
    panel.displays->show();
    QVERIFY(isWhite(canvas::picture(panel.displays->panel(position)->DispA)));
    QCOMPARE(panel.displays->panel(position)->XTitle->text(), QString());
    QCOMPARE(panel.displays->panel(position)->YTitle->text(), QString());
}

void TestGraphWindow::withData_data()
{
    addPanels();
}

void TestGraphWindow::withData()
{
    QFETCH(int, position);
    LoadedPanel loaded;
    const QImage image = loaded.picture(position);
    const ChCoord& coord = loaded.area(position)->coord;
    QCOMPARE(coord.valid, 1);
    for (const double x : {coord.px0, coord.px1})
        for (const double y : {coord.py0, coord.py1})
            QCOMPARE(QColor(image.pixel(int(x), int(y))), frameGrey);
    QVERIFY(!isWhite(plot(loaded, position)));
    // Range labels and titles.
    QVERIFY(!isWhite(image.copy(0, 0, int(coord.px0) - 1, image.height())));
    QVERIFY(!isWhite(image.copy(0, int(coord.py0) + 1, image.width(), 1000)
                         .copy(0, 0, image.width(), image.height() - int(coord.py0) - 1)));
    const QVector<QPair<QString, QString>> titles{
        {QStringLiteral("Eng.[eV]"), QStringLiteral("mut")},
        {QStringLiteral("Eng.[eV]"), QStringLiteral("mut")},
        {QStringLiteral("Eng.[eV]"), QStringLiteral("mut")},
        {QStringLiteral("Eng.[eV]"), QStringLiteral("mut")},
        {QStringLiteral("LCF"), QStringLiteral("4ps")},
        {QStringLiteral("Valence"), QStringLiteral("Num.")},
        {QStringLiteral("Thick."), QStringLiteral("Num.")},
        {QStringLiteral("Valence"), QStringLiteral("Thick.")},
        {QStringLiteral("M2"), QStringLiteral("M3")}};
    QCOMPARE(loaded.graph(position)->xTitle, titles[position].first);
    QCOMPARE(loaded.graph(position)->yTitle, titles[position].second);
}

void TestGraphWindow::zoomAndReset_data()
{
    addPanels();
}

void TestGraphWindow::zoomAndReset()
{
    QFETCH(int, position);
    LoadedPanel loaded;
    const QImage before = loaded.picture(position);
    const ChCoord& coord = loaded.area(position)->coord;
    const double from = coord.rx0;
    const double width = coord.rx1 - coord.rx0;
    canvas::move(loaded.area(position), middle(loaded, position), Qt::NoButton);
    canvas::wheel(loaded.area(position), middle(loaded, position), QPoint(0, 120));
    QVERIFY(loaded.picture(position) != before);
    QCOMPARE(coord.rx1 - coord.rx0, width / 1.1);
    loaded.panel().displays->update();
    loaded.picture(position);
    QCOMPARE(coord.rx1 - coord.rx0, width / 1.1);
    if (position == Displays::DispLCFvs4PS)
        return; // there a double click forgets the points too
    canvas::doubleClick(loaded.area(position), QPointF(1, 1));
    QCOMPARE(loaded.picture(position), before);
    COMPARE_EXACT(coord.rx0, from);
}

void TestGraphWindow::popOutAndDock_data()
{
    addPanels();
}

void TestGraphWindow::popOutAndDock()
{
    QFETCH(int, position);
    LoadedPanel loaded;
    DispABase* graph = loaded.graph(position);
    const QImage docked = loaded.picture(position);
    graph->popDock();
    QVERIFY(QTest::qWaitForWindowExposed(graph->pop.get()));
    QTRY_VERIFY(graph->DispA->width() > 700);
    const QImage popped = loaded.picture(position);
    QVERIFY(popped.width() > docked.width() || popped.height() > docked.height());
    QVERIFY(!isWhite(plot(loaded, position)));
    QCOMPARE(QColor(popped.pixel(int(graph->DispA->coord.px0), int(graph->DispA->coord.py0))),
             frameGrey);
    graph->pop->close();
    QVERIFY(graph->docked);
    if (position == Displays::DispM2M3)
        return; // its panel is never shown and gives the canvas no size
    QTRY_COMPARE(graph->DispA->size(), docked.size());
    QCOMPARE(loaded.picture(position), docked);
}

namespace
{

/// The line edits of the marker lines: the three of the edge, then the rows' energies.
QVector<QLineEdit*> fields(FourPs& panel)
{
    QVector<QLineEdit*> edits{panel.EdgeE, panel.PreEEndDE, panel.PostEStartDE};
    for (const AEPoint* point : panel.ePoints)
        edits << point->Energy;
    return edits;
}

QStringList texts(FourPs& panel)
{
    QStringList result;
    for (const QLineEdit* edit : fields(panel))
        result << edit->text();
    return result;
}

constexpr int firstRow = 3;

/// Where a line stands: the two bounds are typed from the edge.
double energyOf(FourPs& panel, int line)
{
    const double number = numberFromText(fields(panel)[line]->text());
    const bool relative = line == 1 || line == 2;
    return relative ? number + numberFromText(panel.EdgeE->text()) : number;
}

} // namespace

void TestGraphWindow::dragsMarkers_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("edge") << 0;
    QTest::newRow("pre-edge end") << 1;
    QTest::newRow("post-edge start") << 2;
    for (int row = 0; row < 8; ++row)
        QTest::addRow("energy point %d", row + 1) << firstRow + row;
}

void TestGraphWindow::dragsMarkers()
{
    QFETCH(int, line);
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    user::type(panel.ePoints[6]->Energy, QStringLiteral("8420"));
    user::type(panel.ePoints[7]->Energy, QStringLiteral("8435"));
    DispArea* area = loaded.area(Displays::DispMuts);
    for (int i = 0; i < 4; ++i) { // all energies in view, none on another
        canvas::move(area, QPointF(area->width() * 0.5, area->height() - 2), Qt::NoButton);
        canvas::wheel(area, QPointF(), QPoint(0, -120));
    }
    const QStringList before = texts(panel);
    const int messages = user::messages(panel).size();
    const double x = area->coord.xToScreen(energyOf(panel, line));
    QVERIFY(x > 0 && x < area->width());
    canvas::press(area, QPointF(x, 50));
    canvas::move(area, QPointF(x + 3, 50));
    canvas::move(area, QPointF(x + 7, 90));
    const double energy = area->coord.screenToX(area->mouse.x);
    QStringList expected = before;
    expected[line] =
        textFromNumber(line == 1 || line == 2 ? energy - numberFromText(before[0]) : energy);
    QVERIFY(expected[line] != before[line]);
    QCOMPARE(texts(panel), expected);
    QCOMPARE(user::messages(panel).size(), messages); // not yet
    canvas::release(area, QPointF(x + 7, 90));
    QCOMPARE(texts(panel), expected);
    QVERIFY(user::messages(panel).size() > messages);
    // Recalculated once: map, target and fit.
    QCOMPARE(user::messagesSince(panel, messages).filter(QStringLiteral("Result of LCF")).size(),
             1);
}

void TestGraphWindow::dragFollowsLive()
{
    LoadedPanel loaded(false);
    DispArea* area = loaded.area(Displays::DispMuts);
    const QImage before = loaded.picture(Displays::DispMuts);
    const QImage previewBefore = loaded.picture(Displays::DispRef1);
    const double x = area->coord.xToScreen(8350);
    canvas::press(area, QPointF(x, 50));
    canvas::move(area, QPointF(x + 12, 50));
    const double edge = numberFromText(loaded.panel().EdgeE->text());
    QVERIFY(edge > 8350);
    for (const AXafsFileSelect* select : loaded.panel().xafsSelects) {
        COMPARE_EXACT(select->data()->edge, edge);
        COMPARE_EXACT(select->data()->preEdgeEnd, edge - 50);
        COMPARE_EXACT(select->data()->postEdgeStart, edge + 100);
    }
    QVERIFY(loaded.picture(Displays::DispMuts) != before);
    QVERIFY(loaded.picture(Displays::DispRef1) != previewBefore);
    canvas::release(area, QPointF(x + 12, 50));
}

void TestGraphWindow::dragInAPreview_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("line");
    const char* panels[] = {"Ref1", "Ref2", "Target"};
    const char* lines[] = {"edge", "pre-edge end", "post-edge start"};
    for (int position = 0; position < 3; ++position)
        for (int line = 0; line < 3; ++line)
            QTest::addRow("%s, %s", panels[position], lines[line]) << position << line;
}

void TestGraphWindow::dragInAPreview()
{
    QFETCH(int, position);
    QFETCH(int, line);
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    DispArea* area = loaded.area(position);
    canvas::move(area, QPointF(area->coord.xToScreen(8380), area->height() * 0.5), Qt::NoButton);
    for (int i = 0; i < 8; ++i) // the three lines apart
        canvas::wheel(area, QPointF(), QPoint(0, 120));
    const QStringList before = texts(panel);
    const int messages = user::messages(panel).size();
    const double x = area->coord.xToScreen(energyOf(panel, line));
    canvas::press(area, QPointF(x, 50));
    canvas::move(area, QPointF(x - 6, 50));
    const double energy = area->coord.screenToX(area->mouse.x);
    QStringList expected = before;
    expected[line] = textFromNumber(line == 0 ? energy : energy - numberFromText(before[0]));
    QCOMPARE(texts(panel), expected);
    QVERIFY(expected != before);
    COMPARE_EXACT(panel.TargetFile->data()->preEdgeEnd, energyOf(panel, 1));
    COMPARE_EXACT(panel.TargetFile->data()->postEdgeStart, energyOf(panel, 2));
    QCOMPARE(user::messages(panel).size(), messages);
    canvas::release(area, QPointF(x - 6, 50));
    QVERIFY(user::messages(panel).size() > messages);
}

void TestGraphWindow::edgeCarriesTheRelativeLines()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    DispArea* area = loaded.area(Displays::DispMuts);
    const double x = area->coord.xToScreen(8350);
    canvas::drag(area, {QPointF(x, 50), QPointF(x + 20, 50)});
    QCOMPARE(panel.PreEEndDE->text(), QStringLiteral("-50"));
    QCOMPARE(panel.PostEStartDE->text(), QStringLiteral("100"));
    COMPARE_EXACT(panel.RefFile1->data()->preEdgeEnd, energyOf(panel, 0) - 50);
}

void TestGraphWindow::poppedOutGraphFollows()
{
    LoadedPanel loaded(false);
    DispABase* graph = loaded.graph(Displays::DispMuts);
    graph->popDock();
    QVERIFY(QTest::qWaitForWindowExposed(graph->pop.get()));
    QTRY_VERIFY(graph->DispA->width() > 700);
    QCoreApplication::processEvents();
    int repaints = 0;
    connect(graph, &DispABase::draw, this, [&repaints] { ++repaints; });
    user::type(loaded.panel().EdgeE, QStringLiteral("8352"));
    QTRY_VERIFY(repaints > 0);
    // And by its own lines.
    const double x = graph->DispA->coord.xToScreen(8352);
    canvas::drag(graph->DispA, {QPointF(x, 50), QPointF(x + 20, 50)});
    QVERIFY(energyOf(loaded.panel(), 0) > 8352);
}

void TestGraphWindow::doubleClickForgetsFits()
{
    LoadedPanel loaded(false);
    const int position = Displays::DispLCFvs4PS;
    QVERIFY(!isWhite(loaded.picture(position)));
    canvas::doubleClick(loaded.area(position), middle(loaded, position));
    QVERIFY(isWhite(loaded.picture(position)));
    user::click(loaded.panel().LCFB);
    const QImage image = plot(loaded, position);
    const int red = canvas::count(image, Qt::red);
    const int black = canvas::count(image, Qt::black);
    QVERIFY(red > 0);
    QVERIFY(black > 0);
    // A second fit of the same result leaves the picture as it is.
    user::click(loaded.panel().LCFB);
    QCOMPARE(plot(loaded, position), image);
    // The other graphs forget nothing.
    canvas::doubleClick(loaded.area(Displays::DispMuts), QPointF(1, 1));
    QCOMPARE(plot(loaded, position), image);
}

void TestGraphWindow::normalizationButtons()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    const auto pictureWith = [&](QRadioButton* button) {
        button->setChecked(true);
        return loaded.picture(Displays::DispMuts);
    };
    const QImage byLines = pictureWith(panel.NBy2Vics);
    const QImage byJump = pictureWith(panel.NByEJ);
    QVERIFY(byLines != byJump);
    QCOMPARE(pictureWith(panel.NNone), byJump);
    QCOMPARE(pictureWith(panel.NBySubPre), byJump);
    QCOMPARE(pictureWith(panel.NBy2Vics), byLines);
}

// Zero below the edge; behind it the lines part, so that the jump at the edge is the least of all.
void TestGraphWindow::normalizedByBothLinesOrByTheJump()
{
    const auto post = spectra::victreen(11.0, -3.06, 0.0);
    const SpectrumPoints points =
        spectra::sampled(spectra::grid(8200.5, 8900, 1.0),
                         spectra::step(8350, spectra::victreen(0.0, 0.0, 0.0), post));
    const QTemporaryDir dir;
    const QString file = spectra::write(dir, "apart.dat", spectra::fileText(points));
    const auto highest = [&file](QRadioButton* FourPs::*button) {
        FourPs panel;
        (panel.*button)->setChecked(true);
        panel.RefFile1->setFile(file);
        panel.displays->show();
        DispArea* area = panel.displays->panel(Displays::DispMuts)->DispA;
        canvas::picture(area);
        return area->coord.ry1;
    };
    // A twentieth of the curve's height is left above it.
    const double room = 1.05;
    QVERIFY(std::fabs(highest(&FourPs::NBy2Vics) - room) < 1e-6);
    QVERIFY(std::fabs(highest(&FourPs::NByEJ) - room * post(8449.5) / post(8350)) < 1e-6);
}

void TestGraphWindow::chosenSpectrumIsWider()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    panel.SelectedFs->setCurrentIndex(0);
    const QImage first = loaded.picture(Displays::DispMuts);
    panel.SelectedFs->setCurrentIndex(1);
    const QImage second = loaded.picture(Displays::DispMuts);
    QVERIFY(first != second);
    // The fifth color of the palette, then the sixth.
    const QColor fifth(200, 200, 0);
    const QColor sixth(240, 0, 240);
    QVERIFY(canvas::count(first, fifth) > canvas::count(second, fifth));
    QVERIFY(canvas::count(first, sixth) < canvas::count(second, sixth));
}

void TestGraphWindow::removedSpectrumIsGone()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    const QColor sixth(240, 0, 240);
    panel.SelectedFs->setCurrentIndex(1);
    QVERIFY(canvas::count(loaded.picture(Displays::DispMuts), sixth) > 0);
    user::click(panel.RemoveAFile);
    QCOMPARE(canvas::count(loaded.picture(Displays::DispMuts), sixth), 0);
    user::click(panel.RemoveAFile);
    QCOMPARE(canvas::count(loaded.picture(Displays::DispMuts), QColor(200, 200, 0)), 0);
}

void TestGraphWindow::removedSpectrumIsTheChosenOne()
{
    const auto pictureWithout = [](int index) {
        LoadedPanel loaded(false);
        loaded.panel().SelectedFs->setCurrentIndex(index);
        user::click(loaded.panel().RemoveAFile);
        return loaded.picture(Displays::DispMuts);
    };
    const auto pictureWithOnly = [](const char* name) {
        LoadedPanel loaded(false);
        user::click(loaded.panel().RemoveAFile);
        user::click(loaded.panel().RemoveAFile);
        loaded.panel().receiveNewDispFiles({loaded.file(name)});
        return loaded.picture(Displays::DispMuts);
    };
    const QImage target = pictureWithOnly("target.dat");
    const QImage ref1 = pictureWithOnly("ref1.dat");
    QVERIFY(target != ref1);
    QCOMPARE(pictureWithout(0), target);
    QCOMPARE(pictureWithout(1), ref1);
}

// A spectrum that is both analysed and displayed has one curve, whatever the lines are fitted to.
void TestGraphWindow::displayOnlySpectraFollowTheEdge()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    panel.SelectedFs->setCurrentIndex(-1); // none of them is wide
    const auto seen = [&loaded] {
        const QImage picture = loaded.picture(Displays::DispMuts);
        return canvas::count(picture, QColor(200, 200, 0)) +
               canvas::count(picture, QColor(240, 0, 240));
    };
    QCOMPARE(seen(), 0);
    user::type(panel.PostEStartDE, QStringLiteral("20"));
    QCOMPARE(seen(), 0);
    user::type(panel.PreEEndDE, QStringLiteral("30"));
    QCOMPARE(seen(), 0);
    panel.SelectedFs->setCurrentIndex(1);
    QVERIFY(seen() > 0);
}

void TestGraphWindow::fitIsShownAmongTheSpectra()
{
    LoadedPanel loaded(false); // a fit was made
    QVERIFY(canvas::count(loaded.picture(Displays::DispMuts), QColor(255, 128, 0)) > 0);
}

void TestGraphWindow::thicknessGraphFollowsTheMap()
{
    LoadedPanel loaded;
    const QImage first = loaded.picture(Displays::DispTA);
    loaded.panel().TypeTMKisExact->setChecked(true);
    loaded.panel().TRLSquareNB->setChecked(true);
    QCOMPARE(loaded.picture(Displays::DispTA), first); // no new map yet
    user::type(loaded.panel().ePoints[2]->Mut1, QStringLiteral("0.7"));
    user::click(loaded.panel().CalcMapB);
    const QImage second = loaded.picture(Displays::DispTA);
    QVERIFY(second != first);
    user::click(loaded.panel().CalcMapB);
    QCOMPARE(loaded.picture(Displays::DispTA), second);
}

void TestGraphWindow::repaintsWithEachChange_data()
{
    QTest::addColumn<user::Act>("act");
    QTest::addColumn<int>("position");
    const auto row = [](const char* name, const user::Act& act, int position = Displays::DispMuts) {
        QTest::newRow(name) << act << position;
    };
    row("normalization", [](FourPs& panel) { panel.NNone->setChecked(true); });
    row("normalization by the edge jump", [](FourPs& panel) { panel.NByEJ->setChecked(true); });
    row("displayed file", [](FourPs& panel) { panel.SelectedFs->setCurrentIndex(1); });
    row("new displayed file",
        [](FourPs& panel) { panel.receiveNewDispFiles({panel.SelectedFs->itemText(0)}); });
    row("energy",
        [](FourPs& panel) { user::type(panel.ePoints[1]->Energy, QStringLiteral("8380")); });
    row("edge", [](FourPs& panel) { user::type(panel.EdgeE, QStringLiteral("8351")); });
    row("column of Ref 1", [](FourPs& panel) { panel.receiveNewRef1({}); });
    row("column of the blank", [](FourPs& panel) { panel.receiveNewBlank({}); });
    row("fit", [](FourPs& panel) { panel.lcf(); });
    row(
        "points of fits", [](FourPs& panel) { panel.clearLCFvs4PS(nullptr); },
        Displays::DispLCFvs4PS);
    row(
        "map", [](FourPs& panel) { panel.calcMap(); }, Displays::DispHistA);
}

void TestGraphWindow::repaintsWithEachChange()
{
    QFETCH(user::Act, act);
    QFETCH(int, position);
    LoadedPanel loaded;
    QVERIFY(QTest::qWaitForWindowExposed(loaded.panel().displays));
    const Paints paints(loaded.area(position));
    int before = -1;
    while (before != paints.count) { // what was due already
        before = paints.count;
        QCoreApplication::processEvents();
    }
    act(loaded.panel());
    QTRY_VERIFY(paints.count > before);
}

void TestGraphWindow::histogramsShowTheMap()
{
    LoadedPanel loaded;
    QVERIFY(canvas::count(loaded.picture(Displays::DispHistA), barA) > 0);
    QVERIFY(canvas::count(loaded.picture(Displays::DispHistT), barT) > 0);
    // The x range is what is typed now.
    const ChCoord& coord = loaded.area(Displays::DispHistA)->coord;
    COMPARE_EXACT(coord.rx0, 1.5);
    COMPARE_EXACT(coord.rx1, 3.5);
    user::type(loaded.panel().HgAFrom, QStringLiteral("1"));
    canvas::doubleClick(loaded.area(Displays::DispHistA), QPointF(1, 1));
    loaded.picture(Displays::DispHistA);
    COMPARE_EXACT(coord.rx0, 1.0);
}

void TestGraphWindow::thicknessAgainstValence()
{
    LoadedPanel loaded;
    const QImage image = loaded.picture(Displays::DispTA);
    const ChCoord& coord = loaded.area(Displays::DispTA)->coord;
    // A dot for each pixel of the map.
    const MapResults& map = loaded.panel().lastMap();
    QCOMPARE(map.size(), std::size_t(600));
    for (std::size_t i = 0; i < map.size(); i += 7) {
        const QPoint place(int(coord.xToScreen(2 * map.a[i] + 3 * (1 - map.a[i]))),
                           int(coord.yToScreen(map.t[i])));
        QVERIFY(canvas::count(image.copy(QRect(place - QPoint(1, 1), QSize(3, 3))), Qt::black) > 0);
    }
    const QRect aside(QPoint(int(coord.xToScreen(3.2)), 20), QSize(20, 100));
    QCOMPARE(canvas::count(image.copy(aside), Qt::black), 0);
    // Other valences, other places, at the next repaint.
    loaded.panel().Valence2->setText(QStringLiteral("3.3"));
    QVERIFY(canvas::count(loaded.picture(Displays::DispTA).copy(aside), Qt::black) > 0);
}

void TestGraphWindow::fourPointGeometry()
{
    LoadedPanel loaded(false);
    const QImage image = loaded.picture(Displays::DispM2M3);
    for (const QColor& color : {QColor(255, 255, 0), QColor(255, 0, 255), QColor(0, 255, 255),
                                QColor(255, 0, 0), QColor(0, 0, 255)})
        QVERIFY(canvas::count(image, color) > 0);
    // Without a V point only the line of equal absorption stays.
    user::click(loaded.panel().ePoints[2]->UseCB);
    const QImage without = loaded.picture(Displays::DispM2M3);
    QVERIFY(canvas::count(without, QColor(255, 255, 0)) > 0);
    QCOMPARE(canvas::count(without, QColor(0, 255, 255)), 0);
}

void TestGraphWindow::repaintsWriteNoMessages()
{
    LoadedPanel loaded;
    const int messages = user::messages(loaded.panel()).size();
    for (int position = 0; position < 9; ++position)
        loaded.picture(position);
    QCOMPARE(user::messages(loaded.panel()).size(), messages);
}

void TestGraphWindow::absurdSettings_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"0", "1e9", "-1e9", "1e300", "-1e300", "inf", "-inf", "nan", "", "x"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TestGraphWindow::absurdSettings()
{
    QFETCH(QString, text);
    LoadedPanel loaded;
    FourPs& panel = loaded.panel();
    QVector<QLineEdit*> edits = fields(panel);
    edits << panel.Valence1 << panel.Valence2 << panel.HgAFrom << panel.HgATo << panel.HgTFrom
          << panel.HgTTo;
    for (QLineEdit* edit : edits) {
        const QString before = edit->text();
        user::type(edit, text);
        for (int position = 0; position < 9; ++position) {
            loaded.area(position)->rangeSet = false;
            QVERIFY(!loaded.picture(position).isNull());
        }
        user::type(edit, before);
    }
    for (QLineEdit* edit : edits) // and all of them at once
        user::type(edit, text);
    for (int position = 0; position < 9; ++position) {
        loaded.area(position)->rangeSet = false;
        canvas::wheel(loaded.area(position), QPointF(), QPoint(0, 120));
        canvas::drag(loaded.area(position), {QPointF(50, 50), QPointF(80, 70)});
        QVERIFY(!loaded.picture(position).isNull());
    }
}

QTEST_MAIN(TestGraphWindow)
#include "tst_GraphWindow.moc"
