#include "display/DispABase.h"
#include "display/PopBase.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/Exact.h"

#include <QGridLayout>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QtTest>

class TestDispABase : public QObject
{
    Q_OBJECT

private slots:
    void formDefaults();
    void popOutDefaults();
    void readsOutThePosition();
    void rangeIsSetOnce();
    void titlesInTheLabels();
    void titlesInTheGraph();
    void passesTheMouseOn();
    void ownerPaintsBeforeTheTitles();
    void titlePlaces_data();
    void titlePlaces();
    void nothingToDrawSuppressesTheTitles();
    void titleOfAFlatGraphIsNotCut();
    void popsOutAndDocks();
    void closingTheWindowDocks();
    void poppedOutCanvasKeepsItsView();
    void poppedOutCanvasComesToRest();
    void poppedOutFrameIsRepaintedWithTheCanvas();
    void deletedWhilePoppedOut();
};

void TestDispABase::formDefaults()
{
    const DispABase panel;
    QCOMPARE(panel.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(panel.Title->text(), QStringLiteral("TextLabel"));
    QCOMPARE(panel.XTitle->text(), QStringLiteral("x-title"));
    QCOMPARE(panel.YTitle->text(), QStringLiteral("y-title"));
    QCOMPARE(panel.label->text(), QStringLiteral(" x:"));
    QCOMPARE(panel.label_2->text(), QStringLiteral("y:"));
    QCOMPARE(panel.PopDockB->text(), QStringLiteral("P/D"));
    QCOMPARE(panel.PopDockB->maximumWidth(), 50);
    for (const QLineEdit* readOut : {panel.XPos, panel.YPos}) {
        QVERIFY(readOut->isReadOnly());
        QCOMPARE(readOut->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
    QCOMPARE(panel.frameShape(), QFrame::StyledPanel);
    QCOMPARE(panel.DispABFrame->frameShape(), QFrame::StyledPanel);
    QCOMPARE(panel.DispABFrame->frameShadow(), QFrame::Raised);
    QVERIFY(panel.DispABFrame->isAncestorOf(panel.DispA));
    QVERIFY(panel.DispA->hasMouseTracking());
    const auto* outer = qobject_cast<QGridLayout*>(panel.layout());
    QCOMPARE(outer->spacing(), 2);
    QCOMPARE(outer->itemAtPosition(1, 0)->widget(), static_cast<QWidget*>(panel.DispABFrame));
    QCOMPARE(panel.docked, true);
    QCOMPARE(panel.xTitleInGraph, false);
    QCOMPARE(panel.yTitleInGraph, false);
    QVERIFY(panel.xTitle.isEmpty());
}

void TestDispABase::popOutDefaults()
{
    const DispABase panel;
    QCOMPARE(panel.pop->objectName(), QStringLiteral("PopBase"));
    QCOMPARE(panel.pop->windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(panel.pop->size(), QSize(800, 600));
    QCOMPARE(panel.pop->parent(), nullptr);
    QCOMPARE(panel.pop->frameShape(), QFrame::StyledPanel);
    QCOMPARE(panel.pop->frameShadow(), QFrame::Raised);
    QCOMPARE(panel.pop->PopBaseLayout->spacing(), 0);
    QCOMPARE(panel.pop->PopBaseLayout->contentsMargins(), QMargins());
    QCOMPARE(panel.popLayout->verticalSpacing(), 0);
    QCOMPARE(panel.pop->PopBaseLayout->itemAtPosition(0, 0)->layout(),
             static_cast<QLayout*>(panel.popLayout));
    QVERIFY(!panel.pop->isVisible());
}

void TestDispABase::readsOutThePosition()
{
    DispABase panel;
    panel.receiveNowPos(8313.256789, -0.000012345678);
    QCOMPARE(panel.XPos->text(), QStringLiteral("8313.26"));
    QCOMPARE(panel.YPos->text(), QStringLiteral("-1.23457e-05"));
    panel.DispA->resize(400, 300);
    panel.DispA->coord.setWindow(0, 300, 400, 0);
    panel.DispA->coord.setRange(0, 0, 400, 300);
    canvas::move(panel.DispA, QPointF(100, 100), Qt::NoButton);
    QCOMPARE(panel.XPos->text(), QStringLiteral("100"));
    QCOMPARE(panel.YPos->text(), QStringLiteral("200"));
}

void TestDispABase::rangeIsSetOnce()
{
    DispABase panel;
    const ChCoord& coord = panel.DispA->coord;
    panel.setRangeOnce(1, 2, 3, 4);
    QVERIFY(panel.DispA->rangeSet);
    panel.setRangeOnce(5, 6, 7, 8);
    COMPARE_EXACT(coord.rx0, 1.0);
    COMPARE_EXACT(coord.ry0, 2.0);
    COMPARE_EXACT(coord.rx1, 3.0);
    COMPARE_EXACT(coord.ry1, 4.0);
    // A zoom survives; after a double click the next range counts.
    canvas::wheel(panel.DispA, QPointF(10, 10), QPoint(0, 120));
    const double zoomed = coord.rx0;
    panel.setRangeOnce(1, 2, 3, 4);
    COMPARE_EXACT(coord.rx0, zoomed);
    canvas::doubleClick(panel.DispA, QPointF(10, 10));
    panel.setRangeOnce(5, 6, 7, 8);
    COMPARE_EXACT(coord.rx0, 5.0);
}

void TestDispABase::titlesInTheLabels()
{
    DispABase panel;
    panel.setXYTitle(QStringLiteral("Eng.[eV]"), QStringLiteral("mut"));
    QCOMPARE(panel.XTitle->text(), QStringLiteral("Eng.[eV]"));
    QCOMPARE(panel.YTitle->text(), QStringLiteral("mut"));
    QCOMPARE(panel.xTitle, QStringLiteral("Eng.[eV]"));
    QCOMPARE(panel.yTitle, QStringLiteral("mut"));
}

void TestDispABase::titlesInTheGraph()
{
    DispABase panel;
    panel.xTitleInGraph = true;
    for (int i = 0; i < 3; ++i) {
        panel.setXYTitle(QStringLiteral("Eng.[eV]"), QStringLiteral("mut"));
        QCOMPARE(panel.XTitle->text(), QString());
        QCOMPARE(panel.YTitle->text(), QStringLiteral("mut"));
        QCOMPARE(panel.xTitle, QStringLiteral("Eng.[eV]"));
    }
    panel.yTitleInGraph = true;
    panel.setXYTitle(QStringLiteral("a"), QStringLiteral("b"));
    QCOMPARE(panel.YTitle->text(), QString());
    QCOMPARE(panel.yTitle, QStringLiteral("b"));
}

void TestDispABase::passesTheMouseOn()
{
    DispABase panel;
    QStringList names;
    const auto record = [&](void (DispABase::*signal)(MouseC*), const QString& name) {
        connect(&panel, signal, this, [&names, &panel, name](MouseC* mouse) {
            QCOMPARE(mouse, &panel.DispA->mouse);
            names << name;
        });
    };
    record(&DispABase::mPressed, QStringLiteral("mPressed"));
    record(&DispABase::mDragging, QStringLiteral("mDragging"));
    record(&DispABase::mReleased, QStringLiteral("mReleased"));
    record(&DispABase::mDClicked, QStringLiteral("mDClicked"));
    canvas::drag(panel.DispA, {QPointF(10, 10)});
    canvas::doubleClick(panel.DispA, QPointF(10, 10));
    QCOMPARE(names, (QStringList{QStringLiteral("mPressed"), QStringLiteral("mDragging"),
                                 QStringLiteral("mReleased"), QStringLiteral("mPressed"),
                                 QStringLiteral("mReleased"), QStringLiteral("mDClicked"),
                                 QStringLiteral("mReleased")}));
}

namespace
{

// A panel whose canvas is 400 x 300, painted white with the margins applied.
void preparePanel(DispABase& panel, QSize size = QSize(400, 300))
{
    panel.DispA->setFixedSize(size);
    QObject::connect(&panel, &DispABase::draw, &panel, [&panel](QStylePainter* painter) {
        panel.DispA->coord.applyMargins();
        painter->fillRect(panel.DispA->rect(), Qt::white);
    });
}

} // namespace

void TestDispABase::ownerPaintsBeforeTheTitles()
{
    DispABase panel;
    panel.xTitleInGraph = true;
    panel.setXYTitle(QStringLiteral("Eng.[eV]"), QString());
    preparePanel(panel);
    // White paint of the owner would have covered the title.
    QVERIFY(canvas::count(canvas::picture(panel.DispA), Qt::black) > 0);
}

void TestDispABase::titlePlaces_data()
{
    QTest::addColumn<bool>("xInGraph");
    QTest::addColumn<bool>("yInGraph");
    QTest::newRow("none") << false << false;
    QTest::newRow("x") << true << false;
    QTest::newRow("y") << false << true;
    QTest::newRow("both") << true << true;
}

void TestDispABase::titlePlaces()
{
    QFETCH(bool, xInGraph);
    QFETCH(bool, yInGraph);
    DispABase panel;
    panel.xTitleInGraph = xInGraph;
    panel.yTitleInGraph = yInGraph;
    panel.setXYTitle(QStringLiteral("HHHHHHHHHH"), QStringLiteral("HHHHHHHHHH"));
    preparePanel(panel);
    const QImage image = canvas::picture(panel.DispA);
    // Under the plot area: from y 274 to 295, its middle at x 210. Along the left edge: from x 0
    // to 21, its middle at y 150, reading upward.
    const QImage below = image.copy(40, 271, 340, 29);
    const QImage beside = image.copy(0, 0, 22, 270);
    QCOMPARE(canvas::count(below, Qt::white) != below.width() * below.height(), xInGraph);
    QCOMPARE(canvas::count(beside, Qt::white) != beside.width() * beside.height(), yInGraph);
    const auto middle = [](const QImage& part, bool alongX) {
        int first = 1000;
        int last = -1;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x) {
                if (part.pixel(x, y) == QColor(Qt::white).rgb())
                    continue;
                first = qMin(first, alongX ? x : y);
                last = qMax(last, alongX ? x : y);
            }
        }
        return (first + last) / 2;
    };
    if (xInGraph)
        QVERIFY(qAbs(middle(below, true) + 40 - 210) <= 1);
    if (yInGraph)
        QVERIFY(qAbs(middle(beside, false) - 150) <= 1);
    // Nothing within the plot area.
    QCOMPARE(canvas::count(image.copy(40, 16, 340, 254), Qt::white), 340 * 254);
}

void TestDispABase::nothingToDrawSuppressesTheTitles()
{
    DispABase panel;
    panel.xTitleInGraph = true;
    panel.yTitleInGraph = true;
    panel.setXYTitle(QStringLiteral("Eng.[eV]"), QStringLiteral("mut"));
    preparePanel(panel);
    connect(&panel, &DispABase::draw, this, [&panel] { panel.DispA->coord.valid = 0; });
    QCOMPARE(canvas::count(canvas::picture(panel.DispA), Qt::white), 400 * 300);
}

void TestDispABase::titleOfAFlatGraphIsNotCut()
{
    DispABase panel;
    panel.yTitleInGraph = true;
    panel.setXYTitle(QString(), QStringLiteral("TTTT"));
    preparePanel(panel, QSize(400, 120));
    const QImage image = canvas::picture(panel.DispA);
    const auto inkOf = [&image](const QRect& part) {
        QRect ink;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                if (qGray(image.pixel(x, y)) < 160)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    };
    // The bars of the letters lie across the title's direction; with one bar cut off, the title
    // falls into four pieces.
    const QRect beside = inkOf(QRect(0, 0, 38, 100));
    QVERIFY(!beside.isEmpty());
    int gaps = 0;
    for (int y = beside.top(); y <= beside.bottom(); ++y)
        gaps += qGray(image.pixel(beside.left(), y)) < 160 ? 0 : 1;
    QVERIFY2(gaps <= 5, qPrintable(QString::number(gaps)));
}

void TestDispABase::popsOutAndDocks()
{
    DispABase panel;
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QTest::mouseClick(panel.PopDockB, Qt::LeftButton);
    QCOMPARE(panel.docked, false);
    QVERIFY(QTest::qWaitForWindowExposed(panel.pop.get()));
    QVERIFY(panel.pop->isAncestorOf(panel.DispA));
    QVERIFY(panel.DispA->isVisible());
    QTRY_VERIFY(panel.DispA->width() > 700);
    QTest::mouseClick(panel.PopDockB, Qt::LeftButton);
    QCOMPARE(panel.docked, true);
    QVERIFY(!panel.pop->isVisible());
    QVERIFY(panel.isAncestorOf(panel.DispA));
    QTRY_VERIFY(panel.DispA->isVisible());
    const auto* outer = qobject_cast<QGridLayout*>(panel.layout());
    QCOMPARE(outer->itemAtPosition(1, 0)->widget(), static_cast<QWidget*>(panel.DispABFrame));
}

void TestDispABase::closingTheWindowDocks()
{
    DispABase panel;
    panel.show();
    QSignalSpy closed(panel.pop.get(), &PopBase::closed);
    for (int i = 0; i < 3; ++i) {
        panel.popDock();
        QVERIFY(QTest::qWaitForWindowExposed(panel.pop.get()));
        QVERIFY(panel.pop->close());
        QCOMPARE(closed.size(), i + 1);
        QCOMPARE(panel.docked, true);
        QVERIFY(!panel.pop->isVisible());
        QVERIFY(panel.isAncestorOf(panel.DispA));
    }
}

void TestDispABase::poppedOutCanvasKeepsItsView()
{
    DispABase panel;
    panel.show();
    panel.setRangeOnce(1, 2, 3, 4);
    canvas::wheel(panel.DispA, QPointF(10, 10), QPoint(0, 120));
    const double zoomed = panel.DispA->coord.rx1;
    panel.popDock();
    canvas::picture(panel.DispA);
    COMPARE_EXACT(panel.DispA->coord.rx1, zoomed);
    panel.popDock();
    canvas::picture(panel.DispA);
    COMPARE_EXACT(panel.DispA->coord.rx1, zoomed);
}

// Each repaint of the canvas asks the pop-out to repaint; that must not go in circles.
void TestDispABase::poppedOutCanvasComesToRest()
{
    DispABase panel;
    panel.show();
    panel.popDock();
    QVERIFY(QTest::qWaitForWindowExposed(panel.pop.get()));
    QCoreApplication::processEvents();
    int repaints = 0;
    connect(&panel, &DispABase::draw, this, [&repaints] { ++repaints; });
    panel.DispA->update();
    for (int i = 0; i < 50; ++i)
        QCoreApplication::processEvents();
    QVERIFY2(repaints >= 1 && repaints <= 2, qPrintable(QString::number(repaints)));
}

namespace
{

/// Tells whether a pixel of a widget was painted.
class PaintWatch : public QObject
{
public:
    PaintWatch(QWidget* widget, QPoint pixel) : m_pixel(pixel) { widget->installEventFilter(this); }

    bool painted = false;

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted |= static_cast<QPaintEvent*>(event)->region().contains(m_pixel);
        return false;
    }

private:
    QPoint m_pixel;
};

} // namespace

void TestDispABase::poppedOutFrameIsRepaintedWithTheCanvas()
{
    DispABase panel;
    panel.show();
    panel.popDock();
    QVERIFY(QTest::qWaitForWindowExposed(panel.pop.get()));
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
    PaintWatch corner(panel.pop.get(), QPoint(0, 0)); // of the frame, beside the canvas
    QCoreApplication::processEvents();
    QVERIFY(!corner.painted);
    panel.DispA->update();
    QTRY_VERIFY(corner.painted);
}

void TestDispABase::deletedWhilePoppedOut()
{
    auto panel = std::make_unique<DispABase>();
    panel->show();
    panel->popDock();
    const QPointer<DispArea> area = panel->DispA;
    panel.reset();
    QVERIFY(area.isNull());
}

QTEST_MAIN(TestDispABase)
#include "tst_DispABase.moc"
